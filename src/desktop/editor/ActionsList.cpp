#include "editor/ActionsList.h"

#include "controls/FocusReason.h"
#include "controls/Twips.h"
#include "controls/Visibility.h"
#include "feedback/MessageBox.h"

#include <QEvent>

#include <algorithm>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

constexpr int RangeBoxWidth = 750; // twips
constexpr int DashWidth = 100;

bool IsDigit(QChar character) { return character >= u'0' && character <= u'9'; }

} // namespace

ActionsList::ActionsList(GUI& gui, UndoStack& undo, const ComponentFactory& components)
    : RowList(gui, undo, components, gui.LVActions,
              {gui.cmdActionsEdit, gui.cmdActionsAdd, gui.cmdActionsInsert, gui.cmdActionsRemove,
               gui.cmdActionsUp, gui.cmdActionsDown, gui.cmdQuickActions},
              {.kind = RowKind::Actions,
               .numberlessType = NumberlessType,
               .numberlessOpens = false,
               .numberNeedsHighlight = false,
               .browsingSelection = QAbstractItemView::ExtendedSelection,
               .resetColumns = &GUI::ResetActionsListView},
              {.slot = Slot::Actions,
               .quickList = QuickAssignDialog::List::Actions,
               .prepareQuick = &QuickAssignDialog::PrepareActionsTypes,
               .quickCaption = "Quick Actions Editor for "}) {
    ConnectRangeBox(gui.txtActionsDTMFRangeLow, &ListRow::low);
    ConnectRangeBox(gui.txtActionsDTMFRangeHigh, &ListRow::high);
}

bool ActionsList::MayMakeRows() {
    if (NodePicker().ListCount() == 0) {
        Inform("Please check the \"Max Number of each Node\" in Partition Settings.");
        return false;
    }
    return true;
}

bool ActionsList::InsertsOtherwise(bool oneSelected) {
    if (!oneSelected) {
        Add_Click();
    }
    return !oneSelected;
}

void ActionsList::ChooseDefaultType() {
    NodePicker().SetListIndex(std::max(0, NodePicker().IndexOf(QStringLiteral("MSG"))));
}

ListRow ActionsList::MakeRow(int position, const Reference& target) const {
    const std::string digits = std::to_string(position);
    return ActionRow({0, target, digits, digits});
}

void ActionsList::ChooseNumberless(Slot /*slot*/) {
    if (const int row = List().SelectedItem(); row >= 0) {
        WriteNumberless(row);
    }
}

QString ActionsList::UnavailableName(int row) const {
    return RefersToMessage(List().Row(row).typeID) ? QStringLiteral("MSG") : RowList::UnavailableName(row);
}

bool ActionsList::IsNodeTypeAvailable(Slot slot, const QString& name) const {
    // Both are messages, under their own names.
    const bool message = name.compare(QLatin1String("M_ON"), Qt::CaseInsensitive) == 0 ||
                         name.compare(QLatin1String("M_OFF"), Qt::CaseInsensitive) == 0;
    return RowList::IsNodeTypeAvailable(slot, message ? QStringLiteral("MSG") : name);
}

void ActionsList::MouseUp() {
    for (QLineEdit* box : {Form().txtActionsDTMFRangeLow, Form().txtActionsDTMFRangeHigh}) {
        if (!IsHiddenByCode(*box)) {
            // A click beside the rows has taken the focus from where is typed.
            box->setFocus(Qt::MouseFocusReason);
            box->end(false);
            return;
        }
    }
}

std::vector<QWidget*> ActionsList::RangeEditors() const {
    return {Form().txtActionsDTMFRangeLow, Form().txtActionsDash, Form().txtActionsDTMFRangeHigh};
}

void ActionsList::PlaceRangeEditors(const QRect& row) {
    int left = row.left();
    const auto place = [&](QLineEdit* box, int twips) {
        box->setGeometry(left, row.top(), Pixels(twips, List()), row.height());
        Form().ShowWhole(*box);
        left += box->width();
    };
    place(Form().txtActionsDTMFRangeLow, RangeBoxWidth);
    place(Form().txtActionsDash, DashWidth);
    place(Form().txtActionsDTMFRangeHigh, RangeBoxWidth);
}

void ActionsList::FillRangeEditors(int row) {
    Form().txtActionsDTMFRangeLow->setText(List().Row(row).low);
    Form().txtActionsDTMFRangeHigh->setText(List().Row(row).high);
    // It got the focus, and with it the selection, before it got its text.
    if (QLineEdit* low = Form().txtActionsDTMFRangeLow; low->hasFocus()) {
        low->selectAll();
    }
}

void ActionsList::ConnectRangeBox(QLineEdit* box, QString ListRow::*end) {
    box->setInputMethodHints(Qt::ImhDigitsOnly);
    connect(box, &QLineEdit::textChanged, this, [this, box, end] { RangeChange(*box, end); });
    box->installEventFilter(this);
}

void ActionsList::RangeChange(QLineEdit& box, QString ListRow::*end) {
    Handle(box, "Change", [&] {
        const QString text = box.text();
        QString digits;
        std::ranges::copy_if(text, std::back_inserter(digits), IsDigit);
        if (digits != text) {
            box.setText(digits);
        } else if (const int row = List().SelectedItem(); row >= 0 && !text.isEmpty()) {
            ListRow content = List().Row(row);
            content.*end = digits;
            List().SetRow(row, std::move(content));
        }
    });
}

void ActionsList::RangeLostFocus(QLineEdit& box, QString ListRow::*end) {
    Handle(box, "LostFocus", [&] {
        if (const int row = List().SelectedItem(); row >= 0 && box.text().isEmpty()) {
            box.setText(List().Row(row).*end);
        }
    });
}

bool ActionsList::eventFilter(QObject* watched, QEvent* event) {
    const bool low = watched == Form().txtActionsDTMFRangeLow;
    if ((low || watched == Form().txtActionsDTMFRangeHigh) && MovesFocus(*event)) {
        QLineEdit& box = low ? *Form().txtActionsDTMFRangeLow : *Form().txtActionsDTMFRangeHigh;
        if (event->type() == QEvent::FocusIn) {
            Handle(box, "GotFocus", [&] { box.selectAll(); });
        } else {
            RangeLostFocus(box, low ? &ListRow::low : &ListRow::high);
        }
    }
    return RowList::eventFilter(watched, event);
}

} // namespace KAL_AUTO_Node
