#include "editor/EditorWindow.h"

#include "controls/FocusReason.h"
#include "controls/LabelledPopup.h"
#include "controls/Twips.h"
#include "editor/Handler.h"
#include "feedback/MessageBox.h"
#include "form/Shortcuts.h"
#include "form/ValueBoxes.h"
#include "rules/DuplicateRanges.h"

#include <algorithm>
#include <utility>

namespace KAL_AUTO_Node {

EditorWindow::EditorWindow(const ComponentFactory& components, NodeRules& filling)
    : components_(components), prompts_(gui_, undo_, components), actions_(gui_, undo_, components),
      exceptions_(gui_, undo_), ways_(gui_, rules_, filling) {
    OnKey(gui_, UndoKey, [this] { undo_.Undo(); });
    for (const char* key : {RedoKey, OtherRedoKey}) {
        OnKey(gui_, key, [this] { undo_.Redo(); });
    }
    ConnectHandlers();
    WatchFocus();
    LabelPopups();
}

void EditorWindow::LabelPopups() {
    new LabelledPopup(*gui_.cmbNode, [this](int number) {
        return rules_ ? rules_->LabelOfNode(gui_, AutoType, number) : QString();
    });
    for (std::size_t i = 0; i < SlotSets.size(); ++i) {
        const auto slot = static_cast<Slot>(i);
        new LabelledPopup(*gui_.NumberPicker(slot), [this, slot](int number) {
            return rules_ ? rules_->LabelOfNode(gui_, gui_.NodePicker(slot)->SelectedData(), number)
                          : QString();
        });
    }
}

void EditorWindow::ConnectHandlers() {
    gui_.Unload = [this](bool& cancel) { Form_Unload(cancel); };
    connect(gui_.cmdApply, &QPushButton::clicked, this, &EditorWindow::cmdApply_Click);
    connect(gui_.cmdOK, &QPushButton::clicked, this, &EditorWindow::cmdOK_Click);
    connect(gui_.cmdCancel, &QPushButton::clicked, this, &EditorWindow::cmdCancel_Click);
    connect(gui_.cmbNode, &ComboBox::Click, this, &EditorWindow::cmbNode_Click);

    const auto navigation = [this](QPushButton* button, int (*target)(int, int)) {
        connect(button, &QPushButton::clicked, this, [this, button, target] { Navigate(*button, target); });
    };
    navigation(gui_.cmdFirst, [](int, int) { return 0; });
    navigation(gui_.cmdPrevious, [](int index, int) { return std::max(0, index - 1); });
    navigation(gui_.cmdNext, [](int index, int last) { return std::min(last, index + 1); });
    navigation(gui_.cmdLast, [](int, int last) { return last; });

    connect(gui_.txtDescription, &QLineEdit::textChanged, this, &EditorWindow::MarkChanged);
    connect(gui_.cmbTermDigit, &ComboBox::Click, this, &EditorWindow::MarkChanged);
    for (const ValueBox& rule : ValueBoxes) {
        connect(gui_.*rule.box, &ComboBox::Click, this, &EditorWindow::ValueBox_Click);
    }

    for (ReferenceList* list : lists_) {
        connect(list, &ReferenceList::EditingBegan, this, [this, list] {
            TurnOffEditMode(list != &prompts_, list != &actions_, list != &exceptions_);
        });
        connect(list, &ReferenceList::Followed, &ways_, &Wayfinder::Follow);
        connect(list, &ReferenceList::AskedAbout, &ways_, &Wayfinder::TellAbout);
    }
}

void EditorWindow::WatchFocus() {
    for (const ReferenceList* list : lists_) {
        const PerList<bool> others{list != &prompts_, list != &actions_, list != &exceptions_};
        endedByFocus_[list->Parts().list] = others;
        for (QPushButton* button : list->Parts().buttons) {
            if (button != list->Parts().edit) {
                endedByFocus_[button] = others;
            }
        }
    }
    for (QWidget* field :
         std::initializer_list<QWidget*>{gui_.txtDescription, gui_.cmbNumDigits, gui_.cmbTermDigit,
                                         gui_.cmbRetryLimit, gui_.cmbSelTimeOut, gui_.cmbDigitTimeOut}) {
        endedByFocus_[field] = {true, true, true};
    }
    for (const auto& [control, ended] : endedByFocus_) {
        control->installEventFilter(this);
    }
}

bool EditorWindow::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn && MovesFocus(*event)) {
        if (const auto ended = endedByFocus_.find(watched); ended != endedByFocus_.end()) {
            TurnOffEditMode(ended->second[0], ended->second[1], ended->second[2]);
        }
    }
    return QObject::eventFilter(watched, event);
}

void EditorWindow::Form_Load() {
    rules_ = std::make_unique<NodeRules>(components_);

    constexpr int panelMargin = 100; // twips
    gui_.StatusBar1->SetPanelWidth(gui_.width() - Pixels(panelMargin, gui_));
    gui_.StatusBar1->hide();

    for (std::size_t i = 0; i < lists_.size(); ++i) {
        savedProcedures_[i] = lists_[i]->Parts().list->ExchangeWindowProcedure(
            [this](ListView& list, WindowMessage message) { return ListViewWindowProc(list, message); });
    }
}

void EditorWindow::Form_Unload(bool& cancel) {
    // Until it is clear that nothing gets lost.
    cancel = true;
    if (AskToSaveChanges() == QMessageBox::Cancel) {
        return;
    }
    rules_.reset();
    for (std::size_t i = 0; i < lists_.size(); ++i) {
        lists_[i]->Parts().list->ExchangeWindowProcedure(std::move(savedProcedures_[i]));
    }
    cancel = false;
}

long EditorWindow::ListViewWindowProc(ListView& list, WindowMessage message) {
    const auto found = std::ranges::find(
        lists_, &list, [](const ReferenceList* candidate) { return candidate->Parts().list; });
    if (found == lists_.end()) {
        return 0;
    }
    // Five rows need no scrolling, so the exceptions' editors hide only when the columns may change.
    if (message == WindowMessage::ParentNotify || *found != &exceptions_) {
        (*found)->HideEditors();
    }
    const auto& previous = savedProcedures_[static_cast<std::size_t>(found - lists_.begin())];
    return previous ? previous(list, message) : 0;
}

void EditorWindow::TurnOffEditMode(bool prompts, bool actions, bool exceptions) {
    const PerList<bool> ended{prompts, actions, exceptions};
    for (std::size_t i = 0; i < lists_.size(); ++i) {
        if (ended[i] && lists_[i]->Editing()) {
            lists_[i]->Edit_Click();
        }
    }
}

QMessageBox::StandardButton EditorWindow::AskToSaveChanges() {
    if (!gui_.cmdApply->isEnabled()) {
        return QMessageBox::No;
    }
    const auto answer =
        MsgBox(QStringLiteral("Do you want to save changes?"), QMessageBox::Question,
               QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, QStringLiteral("Confirmation"));
    if (answer != QMessageBox::Yes) {
        return answer;
    }
    return Save() ? QMessageBox::Yes : QMessageBox::Cancel;
}

bool EditorWindow::Save() {
    if (const auto duplicate = CheckForDuplicateRanges(gui_)) {
        Inform(
            QStringLiteral("Duplicate entries are not allowed in the Actions.  Please update the Actions."));
        ShowDuplicate(*duplicate);
        return false;
    }
    const bool accepted =
        components_.Create<TextValidator>()->ValidateText(gui_.txtDescription->text().toStdString());
    if (!accepted) {
        Inform(
            QStringLiteral("Double quotes and continuous single quotes are not allowed in the Label field"));
        return false;
    }
    if (!rules_->SaveChanges(gui_, gui_.nodeNumber)) {
        return false;
    }
    gui_.cmdApply->setEnabled(false);
    return true;
}

void EditorWindow::ShowDuplicate(const QString& key) {
    try {
        gui_.LVActions->Select(gui_.LVActions->RowOfKey(key));
        gui_.LVActions->setFocus(Qt::OtherFocusReason);
    } catch (const std::exception&) {
        // The message has told enough; pointing at the row is a courtesy.
    }
}

template <class Body>
void EditorWindow::Act(const QObject& control, Body&& body) {
    const GUI::Acting acting(gui_);
    Handle(control, "Click", std::forward<Body>(body));
}

template <class Body>
void EditorWindow::Press(const QPushButton& button, Body&& body) {
    if (!gui_.IsActing()) {
        Act(button, std::forward<Body>(body));
    }
}

void EditorWindow::cmdApply_Click() {
    Press(*gui_.cmdApply, [this] {
        EndEditing();
        Save();
    });
}

void EditorWindow::cmdOK_Click() {
    Press(*gui_.cmdOK, [this] {
        EndEditing();
        bool goes = true;
        if (gui_.cmdApply->isEnabled()) {
            goes = false; // also where what is stored was loaded instead
            Act(*gui_.cmdApply, [&] { goes = Save(); });
        }
        if (goes) {
            gui_.UnloadWindow();
        }
    });
}

void EditorWindow::cmdCancel_Click() {
    Press(*gui_.cmdCancel, [this] {
        EndEditing();
        if (AskToSaveChanges() != QMessageBox::Cancel) {
            gui_.cmdApply->setEnabled(false);
            gui_.UnloadWindow();
        }
    });
}

void EditorWindow::Navigate(const QPushButton& button, int (*target)(int index, int last)) {
    Press(button, [&] {
        EndEditing();
        if (AskToSaveChanges() == QMessageBox::Cancel) {
            return;
        }
        gui_.cmdApply->setEnabled(false);
        PickList& selector = *gui_.cmbNode;
        const int index = target(selector.ListIndex(), selector.ListCount() - 1);
        if (index != selector.ListIndex()) {
            selector.SetListIndex(index);
        }
        gui_.nodeNumber = static_cast<std::int16_t>(selector.SelectedData());
    });
}

void EditorWindow::cmbNode_Click() {
    Act(*gui_.cmbNode, [this] {
        EndEditing();
        PickList& selector = *gui_.cmbNode;
        const auto chosen = static_cast<std::int16_t>(selector.SelectedData());
        if (chosen == gui_.nodeNumber) {
            return;
        }
        const auto putBack = [&] {
            if (const int shown = selector.IndexOfData(gui_.nodeNumber); shown >= 0) {
                selector.SetListIndex(shown);
            }
        };
        try {
            if (AskToSaveChanges() == QMessageBox::Cancel) {
                putBack();
                return;
            }
        } catch (...) {
            // The node is still the one shown.
            putBack();
            throw;
        }
        rules_->LoadData(gui_, chosen);
        gui_.cmdApply->setEnabled(false);
        ways_.Left(std::exchange(gui_.nodeNumber, chosen));
    });
}

void EditorWindow::ValueBox_Click() {
    MarkChanged();
    EndEditing();
}

} // namespace KAL_AUTO_Node
