#include "quickassign/QuickAssignDialog.h"

#include "controls/LabelledPopup.h"
#include "feedback/MousePointer.h"
#include "platform/NumericValue.h"
#include "rules/Rows.h"

#include <array>
#include <utility>

namespace KAL_AUTO_Node {

QuickAssignDialog::QuickAssignDialog(GUI& gui, const ComponentFactory& components)
    : gui_(gui), rules_(components), form_(&gui) {
    connect(form_.cmbNodeTypes, &ComboBox::Click, this, [this] {
        Handle([this] { rules_.LoadQuickAssignNumbers(gui_, form_); });
        // A range needs numbers to choose from.
        const bool numbered = form_.cmbFrom->ListCount() > 0 && form_.cmbTo->ListCount() > 0;
        form_.cmdAdd->setEnabled(numbered);
        form_.cmdRemove->setEnabled(numbered);
    });
    connect(form_.cmdAdd, &QPushButton::clicked, this,
            [this] { Apply(&QuickAssignDialog::AddPromptsRange, &QuickAssignDialog::AddActionsRange); });
    connect(form_.cmdRemove, &QPushButton::clicked, this, [this] {
        Apply(&QuickAssignDialog::RemovePromptsRange, &QuickAssignDialog::RemoveActionsRange);
    });
    for (NumberBox* box : {form_.cmbFrom, form_.cmbTo}) {
        new LabelledPopup(*box, [this](int number) {
            return rules_.LabelOfNode(gui_, form_.cmbNodeTypes->SelectedData(), number);
        });
    }
    connect(form_.cmdClose, &QPushButton::clicked, &form_, &QDialog::reject);
}

template <class Body>
void QuickAssignDialog::Handle(Body&& body) {
    try {
        body();
    } catch (...) {
        failure_ = std::current_exception();
        form_.reject();
    }
}

void QuickAssignDialog::RaiseFailure() {
    if (failure_) {
        std::rethrow_exception(std::exchange(failure_, nullptr));
    }
}

void QuickAssignDialog::PreparePromptsTypes() {
    NodeRules::LoadQuickAssignPromptsTypes(gui_, form_);
    RaiseFailure();
}

void QuickAssignDialog::PrepareActionsTypes() {
    NodeRules::LoadQuickAssignActionsTypes(gui_, form_);
    RaiseFailure();
}

void QuickAssignDialog::ShowModal() {
    form_.exec();
    RaiseFailure();
}

QuickAssignDialog::Range QuickAssignDialog::ChosenRange() const {
    if (!form_.cmbFrom->Offers(form_.cmbFrom->Text()) || !form_.cmbTo->Offers(form_.cmbTo->Text())) {
        return {1, 0};
    }
    return {NumericValue(form_.cmbFrom->Text().toStdString()),
            NumericValue(form_.cmbTo->Text().toStdString())};
}

void QuickAssignDialog::Apply(Change prompts, Change actions) {
    Handle([&] {
        const Hourglass busy;
        (this->*(Caller == List::Prompts ? prompts : actions))();
    });
    form_.accept();
}

template <class MakeRow>
void QuickAssignDialog::AddRange(ListView& list, MakeRow makeRow) {
    Reference target{form_.cmbNodeTypes->SelectedData(), form_.cmbNodeTypes->Text().toStdString(), 0, {}};
    const auto [first, last] = ChosenRange();
    if (first > last) {
        return;
    }
    std::vector<ListRow> rows;
    for (auto number = first; number <= last; ++number) {
        target.number = static_cast<int>(number);
        rows.push_back(makeRow(target));
    }
    list.Insert(list.Count(), std::move(rows));
    list.EnsureVisible(list.Count() - 1);
}

void QuickAssignDialog::AddPromptsRange() {
    const auto [first, last] = ChosenRange();
    if (first <= last) {
        RemoveEmptyRow(*gui_.LVPrompts);
    }
    AddRange(*gui_.LVPrompts, PromptRow);
}

void QuickAssignDialog::AddActionsRange() {
    AddRange(*gui_.LVActions, [](const Reference& target) { return ActionRow({0, target, "0", "100"}); });
}

void QuickAssignDialog::RemoveRange(ListView& list) {
    const QString name = form_.cmbNodeTypes->Text();
    const auto [first, last] = ChosenRange();
    std::vector<int> removed;
    for (int place = 0; place < list.Count(); ++place) {
        const ListRow& row = list.Row(place);
        if (row.name == name && row.number >= first && row.number <= last) {
            removed.push_back(place);
        }
    }
    list.Remove(removed);
}

void QuickAssignDialog::RemovePromptsRange() {
    RemoveRange(*gui_.LVPrompts);
    if (gui_.LVPrompts->Count() == 0) {
        gui_.LVPrompts->Insert(0, {EmptyRow(QStringLiteral("EMPTY"))});
        gui_.SetNodePickerWidth(Slot::Prompts, GUI::WidePicker);
    }
}

void QuickAssignDialog::RemoveActionsRange() { RemoveRange(*gui_.LVActions); }

} // namespace KAL_AUTO_Node
