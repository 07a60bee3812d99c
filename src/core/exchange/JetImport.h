#pragma once

#include "exchange/JetProcess.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

class DataBase;

// What became of a Jet file's content.
struct JetReport {
    struct Table {
        std::string name;
        std::optional<std::uint32_t>
            stored; // rows by the file's own count; nothing where it has no such table
        std::uint32_t taken = 0;
    };

    std::vector<Table> tables; // all of the system's, in the schema's order

    // Of the file's that the system does not know: tables, and columns as "Node_AUTO.Remark".
    std::vector<std::string> unknown;
    // What was taken otherwise than it stands there, or is missing.
    std::vector<std::string> remarks;
    // Rows and values that were not taken, each with its reason; the first of them where they are many.
    std::vector<std::string> notTaken;
    std::uint64_t rowsNotTaken = 0;
    std::uint64_t valuesNotTaken = 0;
    // What the file says that it holds, and does not.
    std::vector<std::string> damage;
};

// Told of while it runs: the table that is being taken, how many rows were, and how many the file counts.
using JetProgress = std::function<void(const std::string& table, std::uint32_t taken, std::uint32_t stored)>;

enum class Damage { Refuse, Accept };

// Takes all tables of the system that a Jet file holds, value for value, into a store whose tables are empty;
// raises DuplicateKey for another. Yes/No becomes -1 and 0, dates and times the store's text (JetText.h).
// Rows of a list that have one sequence number stay in their order and get numbers of their own. Raises
// StoreNotRecognized, naming the file, where it cannot be read, holds none of the tables, or holds fewer rows
// than it counts and that is refused. Part of a transaction.
[[nodiscard]] JetReport ImportJet(DataBase& dataBase, const JetReader& reader,
                                  const std::filesystem::path& file, Damage damage,
                                  const JetProgress& progress);

} // namespace KAL_AUTO_Node
