#include "bench/Desk.h"

#include "history/NodeSave.h"

#include <QApplication>

#include <stdexcept>

namespace KAL_AUTO_Node {

Desk::Desk(Place place, ComponentFactory components)
    : components_(std::move(components)), rules_(components_), window_(components_, rules_) {
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

std::vector<Performed> CommandsOf(Place place, const std::function<void(Desk&)>& work,
                                  ComponentFactory components) {
    const Recording recording;
    Desk desk(place, std::move(components));
    Recording::Statements();
    work(desk);
    return Recording::Commands();
}

std::vector<Performed> LookUpsOfLoad(Place place) {
    const Recording recording;
    Desk desk(place);
    Recording::Statements();
    desk.Rules().LoadData(desk.Form(), static_cast<std::int16_t>(place.node));
    return Recording::HistoryCommands();
}

void Desk::Check() {
    NodeSave save(dataBase_, history_, {PartitionOf(Form()), Form().nodeNumber});
    rules_.CheckForUnReferencedNodes(Form(), save);
}

void Settle() { QApplication::processEvents(); }

} // namespace KAL_AUTO_Node
