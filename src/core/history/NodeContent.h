#pragma once

#include "nodes/AutoNode.h"
#include "nodes/Identity.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

class DataBase;

// A row of the register.
struct RegisterEntry {
    std::string type;
    std::optional<std::string> label;
    std::optional<std::string> dateModified;

    friend bool operator==(const RegisterEntry&, const RegisterEntry&) = default;
};

// All that the store holds of an AUTO node; nothing where there is no record, or no register row.
struct NodeContent {
    std::optional<AutoNode> node;
    std::optional<RegisterEntry> entry;
    bool entryRead = true; // else it is not known whether there is a register row

    friend bool operator==(const NodeContent&, const NodeContent&) = default;
};

// A content as somebody has seen it, and the node's newest version then; 0 where there was none.
struct SeenNode {
    NodeContent content;
    std::int64_t version = 0;
};

// As Differences of nodes, and of what the register says.
[[nodiscard]] std::vector<std::string> Differences(const NodeContent& before, const NodeContent& after);

// The node with what somebody else has stored of it and what was made of it here, each beside what it was
// before; what was stored comes first where both have added rows. Nothing where both have changed the same
// part, or where the register's label, which a save writes, would become another than it was given there.
[[nodiscard]] std::optional<AutoNode> MergeContents(const NodeContent& before, const NodeContent& stored,
                                                    const AutoNode& own);

// The register's row of an AUTO node, and whether it could be read: where only the store can, that holds up
// nothing.
void ReadEntry(DataBase& dataBase, const NodePlace& place, NodeContent& content);

[[nodiscard]] NodeContent ReadContent(DataBase& dataBase, const NodePlace& place);

// Takes the first places off the rest: as many as are read together, which saves ways to a server and holds
// little in memory.
[[nodiscard]] std::span<const NodePlace> TakeTogether(std::span<const NodePlace>& rest);

using TakeContent = std::function<void(const NodePlace& place, NodeContent content)>;

// Reads many nodes, in order.
void ReadContents(DataBase& dataBase, std::span<const NodePlace> places, const TakeContent& take);

// Makes the store hold exactly that of the node; a register row of which nothing is known stays. Part of a
// transaction.
void WriteContent(DataBase& dataBase, const NodePlace& place, const NodeContent& content);

// The text in which the history keeps a content, with its version, and back: also from texts of older and of
// newer programs, of which a member that is missing has its default. Raises StoreNotRecognized for another
// text.
inline constexpr int ContentVersion = 3; // those of version 1 do not tell it
[[nodiscard]] std::string TextOf(const NodePlace& place, const NodeContent& content);
[[nodiscard]] NodeContent ContentOf(const std::string& text);

} // namespace KAL_AUTO_Node
