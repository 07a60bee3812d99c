#include "form/GUI.h"

#include "controls/Accessibility.h"
#include "controls/ArrowIcon.h"
#include "controls/CompactStyle.h"
#include "controls/LabelledPopup.h"
#include "controls/Making.h"
#include "controls/Twips.h"
#include "controls/WindowPlace.h"
#include "feedback/ErrorReport.h"
#include "form/Stored.h"
#include "platform/RuntimeError.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QLineEdit>
#include <QScrollArea>

#include <algorithm>
#include <iterator>

namespace KAL_AUTO_Node {

namespace {

constexpr std::array<ListColumn, 7> PromptsColumns = {{{"#", 0},
                                                       {"Order", 1600},
                                                       {"Command/Node", 1600},
                                                       {"Label", 1600},
                                                       {"NodeName", 0},
                                                       {"NodeTypeID", 0},
                                                       {"NodeNumber", 0}}};

constexpr std::array<ListColumn, 9> ActionsColumns = {{{"#", 0},
                                                       {"Entry", 1600},
                                                       {"Command/Node", 1600},
                                                       {"Label", 1600},
                                                       {"NodeName", 0},
                                                       {"NodeTypeID", 0},
                                                       {"NodeNumber", 0},
                                                       {"DTMFRangeLow", 0},
                                                       {"DTMFRangeHigh", 0}}};

constexpr std::array<ListColumn, 7> ExceptionsColumns = {{{"#", 0},
                                                          {"", 900},
                                                          {"Command/Node", 1600},
                                                          {"Label", 1600},
                                                          {"NodeName", 0},
                                                          {"NodeTypeID", 0},
                                                          {"NodeNumber", 0}}};

// The pickers that float over the rows of a slot, in the order of the slots.
struct PickerNames {
    const char* node;
    const char* number;
    const char* spoken; // for assistive technology
};

constexpr std::array<PickerNames, SlotSets.size()> PickerNamesOf = {{
    {"cmbPromptsNode", "cmbPromptsNumber", "Prompt"},
    {"cmbActionsNode", "cmbActionsNumber", "Action"},
    {"cmbExceptionsTimeoutNode", "cmbExceptionsTimeoutNumber", "Timeout exception"},
    {"cmbExceptionsInvalidNode", "cmbExceptionsInvalidNumber", "Invalid exception"},
    {"cmbExceptionsAbortNode", "cmbExceptionsAbortNumber", "Abort exception"},
    {"cmbExceptionsStarNode", "cmbExceptionsStarNumber", "Star exception"},
    {"cmbExceptionsPoundNode", "cmbExceptionsPoundNumber", "Pound exception"},
}};

constexpr const char* EditCaption = "Edit";
constexpr const char* EditOffCaption = "Edit Off";

// As wide as its longer caption, so that the list beside it stays as it is.
QPushButton* EditButton(QWidget* parent, const char* name, const char* hint) {
    QPushButton* button = Button(parent, name, EditOffCaption, hint);
    button->setMinimumWidth(button->sizeHint().width());
    button->setText(QString::fromLatin1(EditCaption));
    return button;
}

QPushButton* ArrowButton(QWidget* parent, const char* name, Arrow arrow, const char* hint) {
    QPushButton* button = Button(parent, name, "", hint);
    button->setIcon(ArrowIcon(arrow));
    button->setAccessibleName(button->toolTip());
    return button;
}

ListView* List(QWidget* parent, const char* name, const char* spokenName) {
    auto* list = Named(new ListView(parent), name);
    list->setAccessibleName(QString::fromLatin1(spokenName));
    return list;
}

} // namespace

GUI::GUI() {
    OfferAccessibleInterfaces();
    setObjectName(QStringLiteral("GUI"));
    setWindowTitle(QStringLiteral("AUTO Node Editor"));
    setWindowFlags(Qt::Window | Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowMinMaxButtonsHint |
                   Qt::WindowCloseButtonHint);
    // A host without windows of its own must not end because the editor closes.
    setAttribute(Qt::WA_QuitOnClose, false);
    CreateControls();
    CreateInPlaceEditors();
    LayOut();
    OrderTabs();
    MakeShortcuts();
    connect(qApp, &QApplication::focusChanged, this, &GUI::FocusMoved);
}

// The toolkit moves the focus of what it takes down.
GUI::~GUI() { disconnect(qApp, &QApplication::focusChanged, this, nullptr); }

void GUI::CreateControls() {
    // Before the buttons, because assistive technology reads what a window holds in the order of its making.
    upper_ = new QScrollArea(this);
    Frame1 = Named(new QFrame(this), "Frame1");

    cmdFirst = ArrowButton(Frame1, "cmdFirst", Arrow::First, "First node");
    cmdPrevious = ArrowButton(Frame1, "cmdPrevious", Arrow::Previous, "Previous node");
    cmbNode = Named(new PickList(Frame1), "cmbNode");
    cmbNode->setAccessibleName(QStringLiteral("Node"));
    cmbNode->setMinimumContentsLength(12);
    auto* listPopup = new ListPopupStyle;
    listPopup->setParent(this);
    cmbNode->setStyle(listPopup);
    cmbNode->setMaxVisibleItems(20);
    cmdNext = ArrowButton(Frame1, "cmdNext", Arrow::Next, "Next node");
    cmdLast = ArrowButton(Frame1, "cmdLast", Arrow::Last, "Last node");
    lblRecordPosition = Named(new QLabel(QStringLiteral("n/m"), Frame1), "lblRecordPosition");

    txtDescription = Named(new QLineEdit(Frame1), "txtDescription");
    // A longer stored label would lose its end by being shown.
    txtDescription->setMaxLength(LongestLabel);
    cmbNumDigits = Named(new NumberBox(Frame1), "cmbNumDigits");
    cmbTermDigit = Named(new PickList(Frame1), "cmbTermDigit");
    cmbRetryLimit = Named(new NumberBox(Frame1), "cmbRetryLimit");
    cmbSelTimeOut = Named(new NumberBox(Frame1), "cmbSelTimeOut");
    cmbDigitTimeOut = Named(new NumberBox(Frame1), "cmbDigitTimeOut");

    fraPrompts = Named(new QGroupBox(QStringLiteral("Prompts"), Frame1), "fraPrompts");
    LVPrompts = List(fraPrompts, "LVPrompts", "Prompts");
    cmdPromptsAdd = Button(fraPrompts, "cmdPromptsAdd", "Add", "Add a prompt at the end");
    cmdPromptsInsert =
        Button(fraPrompts, "cmdPromptsInsert", "Insert", "Insert a prompt before the selected one");
    cmdPromptsRemove = Button(fraPrompts, "cmdPromptsRemove", "Remove", "Remove the selected prompts");
    cmdPromptsEdit = EditButton(fraPrompts, "cmdPromptsEdit", "Edit the prompts in place");
    cmdPromptsUp = Button(fraPrompts, "cmdPromptsUp", "Up", "Move the selected prompt up");
    cmdPromptsDown = Button(fraPrompts, "cmdPromptsDown", "Down", "Move the selected prompt down");
    cmdQuickPrompts =
        Button(fraPrompts, "cmdQuickPrompts", "Quick", "Add or remove a run of prompts in one step");

    fraActions = Named(new QGroupBox(QStringLiteral("Actions"), Frame1), "fraActions");
    LVActions = List(fraActions, "LVActions", "Actions");
    cmdActionsAdd = Button(fraActions, "cmdActionsAdd", "Add", "Add an action at the end");
    cmdActionsInsert =
        Button(fraActions, "cmdActionsInsert", "Insert", "Insert an action before the selected one");
    cmdActionsRemove = Button(fraActions, "cmdActionsRemove", "Remove", "Remove the selected actions");
    cmdActionsEdit = EditButton(fraActions, "cmdActionsEdit", "Edit the actions in place");
    cmdActionsUp = Button(fraActions, "cmdActionsUp", "Up", "Move the selected action up");
    cmdActionsDown = Button(fraActions, "cmdActionsDown", "Down", "Move the selected action down");
    cmdQuickActions =
        Button(fraActions, "cmdQuickActions", "Quick", "Add or remove a run of actions in one step");

    fraExceptions = Named(new QGroupBox(QStringLiteral("Exceptions"), Frame1), "fraExceptions");
    LVExceptions = List(fraExceptions, "LVExceptions", "Exceptions");
    cmdExceptionsEdit = EditButton(fraExceptions, "cmdExceptionsEdit", "Edit the exceptions in place");
    cmdExceptionsDefault =
        Button(fraExceptions, "cmdExceptionsDefault", "Default", "Set all five exceptions to their defaults");

    cmdOK = Button(this, "cmdOK", "OK", "Save the changes and close");
    cmdCancel = Button(this, "cmdCancel", "Cancel", "Close; asks about changes that are not saved");
    cmdApply = Button(this, "cmdApply", "Apply", "Save the changes");
    cmdApply->setEnabled(false);
    StatusBar1 = Named(new StatusBar(this), "StatusBar1");
    findBar_ = new FindBar(this);

    ImageList1 = Named(new ImageList(this), "ImageList1");
}

void GUI::CreateInPlaceEditors() {
    const auto frameOf = [this](Slot slot) {
        return slot == Slot::Prompts ? fraPrompts : slot == Slot::Actions ? fraActions : fraExceptions;
    };
    const auto rangeBox = [this](const char* name, const char* spokenName) {
        auto* box = Named(new QLineEdit(fraActions), name);
        box->setAccessibleName(QString::fromLatin1(spokenName));
        connect(box, &QLineEdit::textChanged, this, [this, box] { ShowWhole(*box); });
        return box;
    };
    txtActionsDTMFRangeLow = rangeBox("txtActionsDTMFRangeLow", "First digits of the range");
    txtActionsDTMFRangeHigh = rangeBox("txtActionsDTMFRangeHigh", "Last digits of the range");
    txtActionsDash = rangeBox("txtActionsDash", "to");
    txtActionsDash->setText(QStringLiteral("-"));
    txtActionsDash->setFrame(false);
    txtActionsDash->setAlignment(Qt::AlignCenter);
    txtActionsDash->setReadOnly(true);
    txtActionsDash->setFocusPolicy(Qt::NoFocus);
    auto* compact = new CompactStyle;
    compact->setParent(this);
    for (std::size_t i = 0; i < SlotSets.size(); ++i) {
        const auto& [nodeName, numberName, spokenName] = PickerNamesOf[i];
        QGroupBox* frame = frameOf(static_cast<Slot>(i));
        editors_[i] = {Named(new PickList(frame), nodeName), Named(new NumberBox(frame), numberName), 0};
        editors_[i].node->setStyle(compact);
        editors_[i].number->setStyle(compact);
        SetNodePickerWidth(static_cast<Slot>(i), NarrowPicker);
        editors_[i].node->setAccessibleName(QString::fromLatin1(spokenName) + " node type");
        editors_[i].number->setAccessibleName(QString::fromLatin1(spokenName) + " node number");
    }
}

TypeCatalogue& GUI::Lists() {
    if (!nodeLists_) {
        throw RuntimeError(ErrorNumber::InvalidProcedureCall, "The reference lists are not there");
    }
    return *nodeLists_;
}

QString GUI::NodeName(int nodeTypeID) const {
    return QString::fromStdString(Lists().NodeNameCollection[nodeTypeID]);
}

bool GUI::IsEditing(const QPushButton& editButton) {
    return editButton.text() == QLatin1String(EditOffCaption);
}

void GUI::ShowEditing(QPushButton& editButton, bool editing) {
    editButton.setText(QString::fromLatin1(editing ? EditOffCaption : EditCaption));
}

void GUI::ResetListView(const char* procedure, ListView* list, std::span<const ListColumn> columns,
                        QAbstractItemView::SelectionMode selection) {
    Reporting(procedure, [&] {
        list->SetColumns(columns);
        list->setSelectionMode(selection);
        list->setIconSize(ImageList1->ImageSize);
    });
}

void GUI::ResetPromptsListView() {
    ResetListView("ResetPromptsListView", LVPrompts, PromptsColumns,
                  IsEditing(*cmdPromptsEdit) ? QAbstractItemView::SingleSelection
                                             : QAbstractItemView::ExtendedSelection);
}

void GUI::ResetActionsListView() {
    ResetListView("ResetActionsListView", LVActions, ActionsColumns,
                  IsEditing(*cmdActionsEdit) ? QAbstractItemView::SingleSelection
                                             : QAbstractItemView::ExtendedSelection);
}

void GUI::ResetExceptionsListView() {
    ResetListView("ResetExceptionsListView", LVExceptions, ExceptionsColumns,
                  QAbstractItemView::SingleSelection);
}

void GUI::SetNodePickerWidth(Slot slot, int twips) {
    editors_[static_cast<std::size_t>(slot)].nodeWidth = twips;
    NodePicker(slot)->resize(NodePickerWidth(slot), NodePicker(slot)->height());
}

int GUI::NodePickerWidth(Slot slot) const { return Pixels(Editors(slot).nodeWidth, *NodePicker(slot)); }

std::array<QWidget*, 2> GUI::Pickers(Slot slot) const { return {NodePicker(slot), NumberPicker(slot)}; }

std::vector<QWidget*> GUI::InPlaceEditors() const {
    std::vector<QWidget*> editors;
    std::ranges::copy(Pickers(Slot::Prompts), std::back_inserter(editors));
    std::ranges::copy(
        std::array<QWidget*, 3>{txtActionsDTMFRangeLow, txtActionsDTMFRangeHigh, txtActionsDash},
        std::back_inserter(editors));
    std::ranges::copy(Pickers(Slot::Actions), std::back_inserter(editors));
    for (const Branch& exception : Branches) {
        std::ranges::copy(Pickers(exception.slot), std::back_inserter(editors));
    }
    return editors;
}

bool GUI::event(QEvent* event) {
    if (event->type() == QEvent::WindowBlocked) {
        Frame1->setUpdatesEnabled(true);
    }
    return QDialog::event(event);
}

void GUI::reject() {
    const QWidget* modal = QApplication::activeModalWidget();
    if (!IsActing() && (modal == nullptr || modal == this)) {
        Reporting("ShowNodeEditor", [this] { UnloadWindow(); });
    }
}

bool GUI::UnloadWindow() {
    bool cancel = false;
    if (Unload) {
        const Acting unloading(*this);
        Unload(cancel);
    }
    if (!cancel) {
        if (isVisible()) {
            KeepPlace(*this);
        }
        done(QDialog::Accepted);
    }
    return !cancel;
}

} // namespace KAL_AUTO_Node
