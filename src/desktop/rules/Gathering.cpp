#include "rules/Gathering.h"

#include "form/GUI.h"
#include "form/ValueBoxes.h"
#include "nodes/AutoNode.h"
#include "platform/RuntimeError.h"
#include "rules/Rows.h"

#include <algorithm>

namespace KAL_AUTO_Node {

namespace {

int WholeNumber(const QString& text, const QObject& control) {
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    if (!isNumber) {
        throw RuntimeError(ErrorNumber::TypeMismatch, "Type mismatch: \"" + text.toStdString() + "\" in " +
                                                          control.objectName().toStdString() +
                                                          " is no number");
    }
    return number;
}

} // namespace

std::vector<Action> GatherActions(const GUI& gui) {
    std::vector<Action> actions;
    for (const ListRow& row : gui.LVActions->Rows()) {
        actions.push_back(ActionOf(row, static_cast<int>(actions.size()) + 1));
    }
    return actions;
}

AutoNode GatherNode(const GUI& gui) {
    AutoNode node;
    node.type = gui.NodeName(AutoType).toStdString();
    node.label = gui.txtDescription->text().toStdString();
    node.settings.terminatingDigit = gui.cmbTermDigit->Text().toStdString();
    for (const ValueBox& rule : ValueBoxes) {
        const NumberBox& box = *(gui.*rule.box);
        node.settings.*rule.setting.value = WholeNumber(box.Text(), box);
    }
    for (const ListRow& row : gui.LVPrompts->Rows()) {
        node.prompts.push_back({static_cast<int>(node.prompts.size()) + 1, TargetOf(row)});
    }
    node.actions = GatherActions(gui);
    for (std::size_t branch = 0; branch < node.branches.size(); ++branch) {
        node.branches[branch] = TargetOf(gui.LVExceptions->Row(static_cast<int>(branch)));
    }
    return node;
}

AutoNode AsShown(const GUI& gui, AutoNode node) {
    const auto named = [&](Reference& target) { target.type = gui.NodeName(target.typeID).toStdString(); };
    node.type = gui.NodeName(AutoType).toStdString();
    node.label = node.label.value_or("");
    node.settings.terminatingDigit = TerminatingDigits.at(TerminatingDigitOf(node.settings));
    for (const SettingField& rule : SettingFields) {
        node.settings.*rule.value = ValueOf(rule, node.settings);
    }
    for (Prompt& prompt : node.prompts) {
        named(prompt.target);
    }
    for (Action& action : node.actions) {
        named(action.target);
        const auto [low, high] = RangeOf(action);
        action = {action.sequence, action.target, std::string(low), std::string(high)};
    }
    std::ranges::for_each(node.branches, named);
    return node;
}

} // namespace KAL_AUTO_Node
