#pragma once

#include "nodes/Identity.h"
#include "nodes/NodeLists.h"
#include "nodes/Slots.h"

#include <array>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

namespace KAL_AUTO_Node {

class DataBase;
class ReadAhead;

// The names of node types and their IDs.
class TypeNames {
  public:
    TypeNames() = default;
    explicit TypeNames(DataBase& dataBase);

    void Add(int typeID, std::string name) { names_.emplace_back(typeID, std::move(name)); }

    [[nodiscard]] const auto& All() const { return names_; }

    // The name of a type; its ID as text where it has none.
    [[nodiscard]] std::string Name(int typeID) const;

    // "AUTO 12"
    [[nodiscard]] std::string Text(const NodeKey& node) const { return node.Text(Name(node.typeID)); }

    [[nodiscard]] bool Knows(int typeID) const;
    [[nodiscard]] std::optional<int> ID(std::string_view name) const;
    // The type that a person means by its name, whatever the case, or by its ID. Raises InvalidProcedureCall
    // where there is none.
    [[nodiscard]] int Meant(const std::string& text) const;
    // The node that a person means by its type, likewise, and its number: "MSG 12".
    [[nodiscard]] NodeKey MeantNode(std::string_view text) const;

  private:
    std::vector<std::pair<int, std::string>> names_; // by ID
};

// How a reference stands in a place, by the types that there are.
enum class Standing {
    Fine,
    Numberless,    // it leads to no node there, whatever its number
    NotNamed,      // no type has that ID
    NotOffered,    // the place may not refer to the type, or the partition has no nodes of it
    BeyondMaximum, // of the type
};

// What the store says about the node types of a partition: their names, their highest numbers, and what each
// place of an AUTO node may refer to. It is read once, step by step; each step fills its part row by row, so
// that what was read before an error is there.
class TypeCatalogue : public NodeLists {
  public:
    using Offer = std::function<void(int typeID, const std::string& name)>;

    // Names and highest numbers of all types. The second message types have the message type's where they
    // have none of their own, and so raise InvalidProcedureCall where that is not listed.
    void ReadNames(DataBase& dataBase, Partition partition);
    // The types that a place may refer to: those that have numbers, or that are offered all the same, are
    // handed over; the others are noted as not available. Needs the names.
    void ReadOffered(
        DataBase& dataBase, Partition partition, Slot slot, const Offer& offer = [](int, const auto&) {});
    // Fetches from a server what all these steps read, and the AUTO nodes.
    static void Fetch(ReadAhead& ahead, DataBase& dataBase, Partition partition);
    // All of it.
    void Read(ReadAhead& ahead, DataBase& dataBase, Partition partition);

    [[nodiscard]] const TypeNames& Names() const { return names_; }

    // Whether the type may have a node of that number: none above its highest.
    [[nodiscard]] bool HasNumber(const NodeKey& node) const;
    [[nodiscard]] Standing Judge(Slot slot, const NodeKey& target) const;

  private:
    TypeNames names_;
    std::array<std::unordered_set<int>, SlotSets.size()> offered_;
};

// The highest number of a type, at most the highest that a node can have; nothing where no limit is stored.
[[nodiscard]] std::optional<int> ReadMaxNodeNumber(DataBase& dataBase, Partition partition, int typeID);

// Why a node, by its text, is none of the partition's.
[[nodiscard]] std::string AboveHighest(const std::string& node, int highest);

// The numbers that are offered of a type at once: those of the message type for all message types.
[[nodiscard]] int ReadAssignableNumbers(DataBase& dataBase, Partition partition, int typeID);

} // namespace KAL_AUTO_Node
