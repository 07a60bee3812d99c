#include "bench/Desk.h"

#include "form/ValueBoxes.h"
#include "rules/Today.h"

#include <QApplication>

#include <stdexcept>

namespace KAL_AUTO_Node {

Desk::Desk(Place place, ComponentFactory components)
    : components_(std::move(components)), window_(components_), rules_(components_) {
    window_.Form_Load();
    GUI& gui = Form();
    gui.CreateNodeLists();
    gui.ConfigID = BenchConfig;
    gui.PartitionID = static_cast<std::int16_t>(place.partition);
    gui.nodeNumber = static_cast<std::int16_t>(place.node);
    NodeRules::ResetAllGUIListView(gui);
    NodeRules::HideInPlaceEditors(gui);
    const bool filled =
        rules_.LoadNodeName(gui) && rules_.LoadPromptsNode(gui) && rules_.LoadActionsNode(gui) &&
        rules_.LoadExceptionsNode(gui) && NodeRules::LoadStaticConstants(gui) &&
        rules_.LoadExistingNodesInRecordSelector(gui, gui.nodeNumber) && rules_.LoadData(gui, gui.nodeNumber);
    if (!filled) {
        throw std::runtime_error("the editor could not be filled");
    }
    gui.cmdApply->setEnabled(false);
    gui.show();
    Settle();
}

RawStore::Node Desk::Content() {
    GUI& gui = Form();
    const auto cell = [](const ListView& list, int row, int column) {
        return list.Cell(row, column).toStdString();
    };
    const auto exception = [&](Slot slot, int column) {
        return cell(*gui.LVExceptions, static_cast<int>(slot) - static_cast<int>(Slot::Timeout), column);
    };
    const std::string config = std::to_string(gui.ConfigID);
    const std::string partition = std::to_string(gui.PartitionID);
    const std::string number = std::to_string(gui.nodeNumber);
    const std::string type = std::to_string(AutoType);
    const std::string label = gui.txtDescription->text().toStdString();

    RawStore::Node node;
    node.owner = {config, partition, number};
    node.record = {gui.cmbNumDigits->Text().toStdString(),
                   gui.cmbTermDigit->Text().toStdString(),
                   gui.cmbSelTimeOut->Text().toStdString(),
                   gui.cmbDigitTimeOut->Text().toStdString(),
                   gui.cmbRetryLimit->Text().toStdString(),
                   exception(Slot::Timeout, NodeNameColumn),
                   exception(Slot::Timeout, NodeNumberColumn),
                   exception(Slot::Invalid, NodeNameColumn),
                   exception(Slot::Invalid, NodeNumberColumn),
                   exception(Slot::Abort, NodeNameColumn),
                   exception(Slot::Abort, NodeNumberColumn),
                   gui.NodeName(AutoType).toStdString(),
                   label,
                   exception(Slot::Timeout, NodeTypeIDColumn),
                   exception(Slot::Invalid, NodeTypeIDColumn),
                   exception(Slot::Abort, NodeTypeIDColumn),
                   exception(Slot::Star, NodeTypeIDColumn),
                   exception(Slot::Pound, NodeTypeIDColumn),
                   exception(Slot::Star, NodeNameColumn),
                   exception(Slot::Star, NodeNumberColumn),
                   exception(Slot::Pound, NodeNameColumn),
                   exception(Slot::Pound, NodeNumberColumn),
                   config,
                   partition,
                   type,
                   number};
    node.registerRow = {label, Today(), config, partition, type, number};
    for (int row = 0; row < gui.LVPrompts->Count(); ++row) {
        const auto text = [&](int column) { return cell(*gui.LVPrompts, row, column); };
        node.prompts.push_back({config, partition, std::to_string(row + 1), text(NodeTypeIDColumn),
                                text(NodeNumberColumn), number, text(NodeNameColumn)});
    }
    for (int row = 0; row < gui.LVActions->Count(); ++row) {
        const auto text = [&](int column) { return cell(*gui.LVActions, row, column); };
        node.actions.push_back({config, partition, std::to_string(row + 1), text(NodeTypeIDColumn),
                                text(NodeNumberColumn), number, text(DTMFRangeLowColumn),
                                text(DTMFRangeHighColumn), text(NodeNameColumn)});
    }
    // The check leaves what it looks up in the window's scratch lists.
    rules_.CheckForUnReferencedNodes(gui);
    for (int i = 0; i < gui.lstNodeTypeID->ListCount(); ++i) {
        node.references.emplace_back(gui.lstNodeTypeID->List(i).toStdString(),
                                     gui.lstNodeNumber->List(i).toStdString());
    }
    return node;
}

void Settle() { QApplication::processEvents(); }

} // namespace KAL_AUTO_Node
