#pragma once

#include "nodes/AutoNode.h"
#include "nodes/Identity.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>

namespace KAL_AUTO_Node {

class DataBase;
class ReadAhead;

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

    friend bool operator==(const NodeContent&, const NodeContent&) = default;
};

[[nodiscard]] NodeContent ReadContent(DataBase& dataBase, Partition partition, std::int16_t number);
void ReadContentAhead(ReadAhead& ahead, Partition partition, std::int16_t number);

// Takes the first places off the rest: as many as are read together, which saves ways to a server and holds
// little in memory.
[[nodiscard]] std::span<const NodePlace> TakeTogether(std::span<const NodePlace>& rest);

using TakeContent = std::function<void(const NodePlace& place, NodeContent content)>;

// Reads many nodes, in order.
void ReadContents(DataBase& dataBase, std::span<const NodePlace> places, const TakeContent& take);

// Makes the store hold exactly that of the node. Part of a transaction.
void WriteContent(DataBase& dataBase, Partition partition, std::int16_t number, const NodeContent& content);

// The text in which the history keeps a content, and back. Raises StoreNotRecognized for another text.
[[nodiscard]] std::string TextOf(Partition partition, std::int16_t number, const NodeContent& content);
[[nodiscard]] NodeContent ContentOf(const std::string& text);

} // namespace KAL_AUTO_Node
