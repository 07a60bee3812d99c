#include "upkeep/RemoveNode.h"

#include "history/History.h"
#include "nodes/NodeTypes.h"
#include "nodes/Templates.h"
#include "store/Batch.h"
#include "upkeep/NodeRows.h"

#include <array>
#include <functional>

namespace KAL_AUTO_Node {

namespace {

RepointPlan PlanRemoval(DataBase& dataBase, History& history, const TypeNames& names,
                        const RemoveOrder& order) {
    const auto& [typeID, number] = order.node;
    const std::string name = order.node.Text(names.Name(typeID));
    RepointPlan plan;
    if (number == TemplateNumber) {
        plan.obstacles.push_back(name + " is the partition's template");
    } else if (auto why = WhyNotTouched(dataBase, history, names, order.partition, order.node)) {
        plan.obstacles.push_back(std::move(*why));
    } else if (typeID != AutoType && !order.forget) {
        plan.obstacles.push_back("no history keeps " + name + "; with --forget it is removed for good");
    }
    if (!plan.obstacles.empty()) {
        return plan;
    }
    if (order.instead) {
        const std::array map{Replacement{{typeID, number}, *order.instead}};
        return PlanRepoint(dataBase, history, names, order.partition, map, {false, order.node});
    }
    for (const StoredReference& use : ReadUses(dataBase, order.partition, names, order.node)) {
        if (use.holder != order.node) {
            plan.obstacles.push_back(use.holder.Text(names.Name(use.holder.typeID)) + ", " +
                                     PlaceText(use.Column(), use.row) + " refers to " + name);
        }
    }
    return plan;
}

RepointPlan PlanMove(DataBase& dataBase, History& history, const TypeNames& names, Partition partition,
                     const NodeKey& node, int number) {
    RepointPlan plan;
    const auto& [typeID, old] = node;
    if (old == TemplateNumber) {
        plan.obstacles.push_back(node.Text(names.Name(typeID)) + " is the partition's template");
    }
    for (auto why :
         {WhyNotTouched(dataBase, history, names, partition, node),
          HasCopyRule(typeID) ? WhyNotNew(dataBase, names, partition, {typeID, number}) : std::nullopt}) {
        if (why) {
            plan.obstacles.push_back(std::move(*why));
        }
    }
    if (!plan.obstacles.empty()) {
        return plan;
    }
    const std::array map{Replacement{{typeID, old}, {typeID, number}}};
    return PlanRepoint(dataBase, history, names, partition, map, {true, {}});
}

// Plans and, in one transaction, carries out.
RepointPlan InOneStep(DataBase& dataBase, History& history, Carry carry,
                      const std::function<RepointPlan()>& plan,
                      const std::function<void(const RepointPlan&)>& write) {
    if (carry == Carry::OnlyTell) {
        return plan();
    }
    history.Require();
    Transaction all(dataBase);
    RepointPlan planned = plan();
    if (planned.obstacles.empty()) {
        write(planned);
        all.Commit();
        dataBase.Flush();
    }
    return planned;
}

} // namespace

RepointPlan RemoveNode(DataBase& dataBase, History& history, const TypeNames& names, const RemoveOrder& order,
                       const std::string& date, Carry carry) {
    return InOneStep(
        dataBase, history, carry, [&] { return PlanRemoval(dataBase, history, names, order); },
        [&](const RepointPlan& plan) {
            std::set<NodePlace> kept;
            if (order.node.typeID == AutoType) {
                kept.insert(PlaceOf(order.partition, order.node.number));
            }
            CarryOut(dataBase, history, order.partition, plan, "remove", date, kept);
            DeleteRows(dataBase, order.partition, order.node);
        });
}

RepointPlan MoveNode(DataBase& dataBase, History& history, const TypeNames& names, Partition partition,
                     const NodeKey& node, int number, const std::string& date, Carry carry) {
    return InOneStep(
        dataBase, history, carry, [&] { return PlanMove(dataBase, history, names, partition, node, number); },
        [&](const RepointPlan& plan) {
            std::set<NodePlace> kept;
            if (node.typeID == AutoType) {
                kept = {PlaceOf(partition, node.number), PlaceOf(partition, number)};
            }
            CarryOut(dataBase, history, partition, plan, "move", date, kept);
            RenumberRows(dataBase, partition, node, number, date);
        });
}

} // namespace KAL_AUTO_Node
