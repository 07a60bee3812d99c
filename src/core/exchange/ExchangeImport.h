#pragma once

#include "nodes/AutoNode.h"
#include "nodes/Identity.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

class DataBase;
struct RowPlan;

// What an import changes, or would.
struct ExchangeReport {
    struct Table {
        std::string name;
        std::uint64_t added = 0;
        std::uint64_t changed = 0;
        std::uint64_t removed = 0;
        // Which rows, but for those of AUTO nodes, which are told as nodes; the first of them where they are
        // many.
        std::vector<std::string> rows;
        std::uint64_t untold = 0; // rows that are not among them
    };

    std::optional<Partition> scope; // nothing for a whole store
    std::vector<Table> tables;      // in which something changes, in the text's order
};

// An AUTO node that changes: as it was, and as it is then; nothing for no node.
using ExchangeNode = std::function<void(const NodePlace& place, const std::optional<AutoNode>& before,
                                        const std::optional<AutoNode>& after)>;

enum class Import { Carry, OnlyTell };

// Told of while it runs: how many rows of the text were compared.
using ImportProgress = std::function<void(std::uint64_t rows)>;

// Makes the store, or the partition, hold exactly the rows that a text form (docs/exchange.md) holds; tables
// that it does not name stay as they are. All in one step or, with OnlyTell or after an error, nothing. Each
// AUTO node that changes is kept as it was in the history first, with the note. Raises StoreNotRecognized,
// naming the file and the line, for a text that is not right, and Busy while one of the nodes is being saved.
// Nobody is kept from writing but for the time in which the changes are written, which are planned on one
// state of the store before. With OnlyTell the plan, where one is asked for, becomes what would change.
[[nodiscard]] ExchangeReport ImportExchange(
    DataBase& dataBase, const std::filesystem::path& file, Import how, const ExchangeNode& tell,
    const ImportProgress& progress = [](std::uint64_t) {}, const std::string& note = {},
    RowPlan* plan = nullptr);

} // namespace KAL_AUTO_Node
