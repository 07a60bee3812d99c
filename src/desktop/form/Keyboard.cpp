// The editor window without a mouse: the order of its controls, its keys, and where the focus goes.

#include "form/GUI.h"
#include "form/Shortcuts.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QRegularExpression>

#include <algorithm>
#include <iterator>
#include <utility>

namespace KAL_AUTO_Node {

void GUI::OrderTabs() {
    std::vector<QWidget*> order = {cmdFirst,      cmdPrevious,    cmbNode,        cmdNext,
                                   cmdLast,       txtDescription, cmbNumDigits,   cmbTermDigit,
                                   cmbRetryLimit, cmbSelTimeOut,  cmbDigitTimeOut};
    const auto append = [&](const auto& controls) { std::ranges::copy(controls, std::back_inserter(order)); };
    // Each list is followed by the editors that float over it.
    order.push_back(LVPrompts);
    append(Pickers(Slot::Prompts));
    append(std::initializer_list<QWidget*>{cmdPromptsAdd, cmdPromptsInsert, cmdPromptsRemove, cmdPromptsEdit,
                                           cmdPromptsUp, cmdPromptsDown, cmdQuickPrompts, LVActions,
                                           txtActionsDTMFRangeLow, txtActionsDTMFRangeHigh});
    append(Pickers(Slot::Actions));
    append(std::initializer_list<QWidget*>{cmdActionsAdd, cmdActionsInsert, cmdActionsRemove, cmdActionsEdit,
                                           cmdActionsUp, cmdActionsDown, cmdQuickActions, LVExceptions});
    for (const Branch& exception : Branches) {
        append(Pickers(exception.slot));
    }
    append(std::initializer_list<QWidget*>{cmdExceptionsEdit, cmdExceptionsDefault});
    append(findBar_->findChildren<QWidget*>(QRegularExpression("^(txt|cmd)")));
    append(std::initializer_list<QWidget*>{cmdOK, cmdCancel, cmdApply});
    for (std::size_t i = 1; i < order.size(); ++i) {
        setTabOrder(order[i - 1], order[i]);
    }
    // Not on the label, which the first key would change.
    LVPrompts->setFocus();
}

void GUI::MakeShortcuts() {
    latestList_ = LVPrompts;
    for (const auto& [list, key] :
         {std::pair{LVPrompts, "Alt+1"}, {LVActions, "Alt+2"}, {LVExceptions, "Alt+3"}}) {
        list->header()->setToolTip(list->accessibleName());
        NameKey(*list->header(), key);
        list->header()->setToolTip(list->header()->toolTip() + "; the Menu key shows what can be done there");
        OnKey(*this, key, [this, list = list] {
            list->setFocus(Qt::ShortcutFocusReason);
            BringIntoSight(*list);
        });
        connect(list, &ListView::ItemClick, this, [this, list = list] { BringIntoSight(*list); });
    }
    OnKey(*this, FindKey, [this] { Find(*latestList_); });
    connect(findBar_, &FindBar::Found, this, &GUI::BringIntoSight);
    for (const auto& [button, key] : {std::pair{cmdFirst, "Alt+Home"},
                                      {cmdPrevious, "Alt+PgUp"},
                                      {cmdNext, "Alt+PgDown"},
                                      {cmdLast, "Alt+End"},
                                      {cmdApply, "Ctrl+S"}}) {
        PressOnKey(*button, key);
    }
    // The same key for the same button of each list: that of the list used last.
    using Buttons = std::vector<QPushButton*>;
    for (const auto& [buttons, key] : {std::pair{Buttons{cmdPromptsAdd, cmdActionsAdd}, "Alt+A"},
                                       {Buttons{cmdPromptsInsert, cmdActionsInsert}, "Alt+I"},
                                       {Buttons{cmdPromptsRemove, cmdActionsRemove}, "Alt+R"},
                                       {Buttons{cmdPromptsEdit, cmdActionsEdit, cmdExceptionsEdit}, "Alt+E"},
                                       {Buttons{cmdPromptsUp, cmdActionsUp}, "Alt+U"},
                                       {Buttons{cmdPromptsDown, cmdActionsDown}, "Alt+D"},
                                       {Buttons{cmdQuickPrompts, cmdQuickActions}, "Alt+Q"}}) {
        for (QPushButton* button : buttons) {
            NameKey(*button, key);
        }
        OnKey(*this, key, [this, buttons = buttons] {
            const auto button =
                std::ranges::find(buttons, latestList_->parentWidget(), &QWidget::parentWidget);
            if (button != buttons.end()) {
                (*button)->click();
            }
        });
    }
}

void GUI::FocusMoved(QWidget* /*from*/, QWidget* to) {
    for (ListView* list : {LVPrompts, LVActions, LVExceptions}) {
        if (to != nullptr && list->parentWidget()->isAncestorOf(to)) {
            latestList_ = list;
        }
    }
    if (to != nullptr && Frame1->isAncestorOf(to)) {
        latestInput_ = to;
    }
}

QWidget* GUI::HeirOf(QWidget* control) const {
    QWidget* const first = control == cmdApply ? latestInput_.data() : control;
    if (first == cmdFirst || first == cmdPrevious || first == cmdNext || first == cmdLast) {
        return cmbNode;
    }
    // No button, which the same key pressed again would press.
    const auto canHave = [](const QWidget* widget) {
        return widget->isVisible() && widget->isEnabled() && (widget->focusPolicy() & Qt::TabFocus) != 0 &&
               qobject_cast<const QPushButton*>(widget) == nullptr;
    };
    // A list comes before its editors and its buttons.
    QWidget* heir = first;
    while (heir != nullptr && !canHave(heir)) {
        heir = heir->previousInFocusChain();
        heir = heir == first ? nullptr : heir;
    }
    return heir == nullptr ? txtDescription : heir;
}

bool GUI::focusNextPrevChild(bool next) {
    QWidget* control = focusWidget();
    if (control == nullptr || control->isEnabled()) {
        return QDialog::focusNextPrevChild(next);
    }
    // To the next control, as the toolkit would do, a person who presses the same key again would do what she
    // did not mean.
    HeirOf(control)->setFocus(Qt::OtherFocusReason);
    return true;
}

void GUI::keyPressEvent(QKeyEvent* event) {
    // Wherever the focus went meanwhile, the search ends before the window does.
    if (event->key() == Qt::Key_Escape && findBar_->isVisible()) {
        findBar_->Close();
        return;
    }
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const bool editing =
        IsEditing(*cmdPromptsEdit) || IsEditing(*cmdActionsEdit) || IsEditing(*cmdExceptionsEdit);
    // The default button must not save and close while a row is edited, nor for one Enter too many on a
    // button that moves to another node and had to leave the focus to the selector.
    if (!enter || (!editing && !cmbNode->hasFocus())) {
        QDialog::keyPressEvent(event);
    }
}

} // namespace KAL_AUTO_Node
