#include "rules/Gathering.h"

#include "form/GUI.h"
#include "form/ValueBoxes.h"
#include "nodes/AutoNode.h"
#include "platform/RuntimeError.h"

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

Reference TargetOf(const ListView& list, int row) {
    const ListRow& is = list.Row(row);
    return {is.typeID, is.name.toStdString(), is.number, {}};
}

} // namespace

AutoNode GatherNode(const GUI& gui) {
    AutoNode node;
    node.type = gui.NodeName(AutoType).toStdString();
    node.label = gui.txtDescription->text().toStdString();
    node.settings.terminatingDigit = gui.cmbTermDigit->Text().toStdString();
    for (const ValueBoxRule& rule : ValueBoxRules) {
        const NumberBox& box = *(gui.*rule.box);
        node.settings.*rule.setting.value = WholeNumber(box.Text(), box);
    }
    for (int row = 0; row < gui.LVPrompts->Count(); ++row) {
        node.prompts.push_back({row + 1, TargetOf(*gui.LVPrompts, row)});
    }
    for (int row = 0; row < gui.LVActions->Count(); ++row) {
        node.actions.push_back({row + 1, TargetOf(*gui.LVActions, row),
                                gui.LVActions->Row(row).low.toStdString(),
                                gui.LVActions->Row(row).high.toStdString()});
    }
    for (std::size_t branch = 0; branch < node.branches.size(); ++branch) {
        node.branches[branch] = TargetOf(*gui.LVExceptions, static_cast<int>(branch));
    }
    return node;
}

} // namespace KAL_AUTO_Node
