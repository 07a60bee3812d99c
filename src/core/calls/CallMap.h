#pragma once

#include "calls/Outcomes.h"
#include "nodes/Identity.h"
#include "nodes/References.h"

#include <map>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

class DataBase;

// A reference of a node of another type by which a call may go on.
struct OtherWay {
    std::string place; // "row 2"
    Target target;
};

// A partition as its callers meet it.
struct CallMap {
    Partition partition;
    std::map<int, Menu> menus;             // AUTO nodes by number, the template among them
    std::map<NodeKey, std::string> labels; // of the nodes that are registered
    std::map<NodeKey, std::vector<OtherWay>>
        others; // of registered nodes of other types, where they have any
    std::map<NodeKey, std::vector<OtherWay>> played; // what they play, likewise
    std::vector<int> entries; // the AUTO nodes at which calls may enter: none but themselves refers to them,
                              // or nodes of other types lead to them; by number

    [[nodiscard]] const Menu* MenuOf(const Target& target) const;
    // Lets a node be that; nothing for no node. Where calls may enter stays.
    void Put(int number, std::optional<AutoNode> node);
    // Raises InvalidProcedureCall where there is none.
    [[nodiscard]] const Menu& RequireMenu(int number) const;
    [[nodiscard]] std::string LabelOf(const NodeKey& node) const;
    // Why a call is not followed beyond it; nothing for an AUTO node.
    [[nodiscard]] std::optional<Reason> EndAt(const Target& target) const;
    // None where it has none.
    [[nodiscard]] const std::vector<OtherWay>& WaysFrom(const Target& target) const;
};

// Reads the partition once through.
[[nodiscard]] CallMap ReadCallMap(DataBase& dataBase, const TypeNames& names, Partition partition);

} // namespace KAL_AUTO_Node
