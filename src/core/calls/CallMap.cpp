#include "calls/CallMap.h"

#include "calls/Flow.h"
#include "nodes/Overview.h"
#include "nodes/PartitionReader.h"
#include "platform/RuntimeError.h"
#include "store/DataBase.h"

namespace KAL_AUTO_Node {

const Menu* CallMap::MenuOf(const Target& target) const {
    const auto found = target.typeID == AutoType ? menus.find(target.number) : menus.end();
    return found == menus.end() ? nullptr : &found->second;
}

void CallMap::Put(int number, std::optional<AutoNode> node) {
    menus.erase(number);
    if (node) {
        menus.emplace(number, Menu(number, std::move(*node)));
    }
}

const Menu& CallMap::RequireMenu(int number) const {
    const auto found = menus.find(number);
    if (found == menus.end()) {
        throw RuntimeError(ErrorNumber::InvalidProcedureCall,
                           NodeTextIn(partition, number) + " does not exist");
    }
    return found->second;
}

std::string CallMap::LabelOf(const NodeKey& node) const {
    const auto found = labels.find(node);
    return found == labels.end() ? std::string() : found->second;
}

std::optional<Reason> CallMap::EndAt(const Target& target) const {
    if (target.typeID == AutoType) {
        return MenuOf(target) == nullptr ? std::optional(Reason::MissingNode) : std::nullopt;
    }
    if (!target.hasNumber) {
        return Reason::NoTarget;
    }
    return RefersToNode(target.typeID) && !labels.contains(target.Key()) ? Reason::MissingNode
                                                                         : Reason::NotFollowed;
}

const std::vector<OtherWay>& CallMap::WaysFrom(const Target& target) const {
    static const std::vector<OtherWay> none;
    const auto found = others.find(target.Key());
    return found == others.end() || target.typeID == AutoType ? none : found->second;
}

CallMap ReadCallMap(DataBase& dataBase, const TypeNames& names, Partition partition) {
    CallMap map;
    map.partition = partition;
    ReadRegister(dataBase, partition, [&](const NodeKey& node, std::string_view, std::string_view label) {
        map.labels.emplace_hint(map.labels.end(), node, label);
    });
    Flow flow;
    ReadWholeAutoNodes(
        dataBase, partition,
        [&](int number, const AutoNode& node) {
            flow.Add(number, node);
            map.menus.emplace_hint(map.menus.end(), number, Menu(number, node));
        },
        [](Slot, int, int) {});
    ReadOtherReferences(dataBase, partition, [&](const StoredReference& reference) {
        const ReferenceColumn& column = reference.Column();
        const auto typeID = column.hasTypeID ? reference.typeID : names.ID(reference.type);
        if (!typeID || !reference.number || !RefersToNode(*typeID)) {
            return;
        }
        if (*typeID == AutoType) {
            flow.AddReferenceTo(*reference.number);
        }
        const NodeKey& holder = reference.holder;
        if (!map.labels.contains(holder)) {
            return;
        }
        (IsPlayed(column) ? map.played : map.others)[holder].push_back(
            {PlaceText(column, reference.row), {*typeID, *reference.number, true, reference.type}});
        if (!IsPlayed(column) && *typeID == AutoType) {
            flow.AddWayTo(*reference.number);
        }
    });
    map.entries = flow.Entries();
    return map;
}

} // namespace KAL_AUTO_Node
