#pragma once

#include "nodes/Identity.h"
#include "nodes/TypeCatalogue.h"
#include "store/DataBase.h"
#include "store/ReferenceColumns.h"

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace KAL_AUTO_Node {

// A reference of a node of any type, as it is stored.
struct StoredReference {
    NodeKey holder;
    std::size_t column = 0; // by its position among all
    int row = 0;            // its number among the rows of the holder; 0 where the holder has one row
    std::optional<int> typeID;
    std::string type;
    std::optional<int> number;

    [[nodiscard]] const ReferenceColumn& Column() const { return AllReferenceColumns()[column]; }
};

// Whether what it refers to is played there, and the call does not go on with it.
[[nodiscard]] bool IsPlayed(const ReferenceColumn& column);

// Where a reference stands: "prompt 3", "Timeout", "row 2, Prompt".
[[nodiscard]] std::string PlaceText(const ReferenceColumn& column, int row);

// The references of the nodes that are no AUTO nodes.
void ReadOtherReferences(DataBase& dataBase, Partition partition,
                         const std::function<void(const StoredReference& reference)>& take);

// All references to a node, in the order of their holders; those under all of its types where it is a
// message.
[[nodiscard]] std::vector<StoredReference> ReadUses(DataBase& dataBase, Partition partition,
                                                    const TypeNames& names, const NodeKey& node);
// The labels of the nodes that have them.
[[nodiscard]] std::map<NodeKey, std::string> LabelsOfHolders(DataBase& dataBase, Partition partition,
                                                             const std::vector<StoredReference>& uses);
// To one of many nodes; the partition is read once through.
[[nodiscard]] std::vector<StoredReference> ReadUses(DataBase& dataBase, Partition partition,
                                                    const TypeNames& names, const std::set<NodeKey>& nodes);

} // namespace KAL_AUTO_Node
