#pragma once

#include "platform/RuntimeError.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

struct sqlite3;

namespace KAL_AUTO_Node {

// The embedded engine's own interface, in the component's terms: its failures are RuntimeErrors in its words.

struct CloseSqlite {
    void operator()(sqlite3* database) const noexcept;
};

using SqliteHandle = std::unique_ptr<sqlite3, CloseSqlite>;

// Raises the engine's result as an error, unless it is none. The database, where there is one, knows more of
// it. What stays so for longer than a moment has a number of its own where that matters.
void RequireSqlite(int result, sqlite3* database = nullptr, ErrorNumber ofDenial = ErrorNumber::StoreFailure);

// Opens a file that must exist, to be written where that is possible. Nothing is read yet.
[[nodiscard]] SqliteHandle OpenSqliteFile(const std::filesystem::path& file);
// The same file where nobody can write it.
[[nodiscard]] SqliteHandle OpenUnchanging(const std::filesystem::path& file);
[[nodiscard]] SqliteHandle OpenInMemory();

// Runs statements without parameters and rows; the engine's result.
[[nodiscard]] int RunSqlite(sqlite3* database, const char* sql) noexcept;
// The same for the first field of the first row; empty where there is none.
[[nodiscard]] int AskSqlite(sqlite3* database, const char* sql, std::string& answer);

// The whole store as its file holds it, in one state.
[[nodiscard]] std::string ImageOf(sqlite3* database);
// A store as a file holds it, to be read from memory.
[[nodiscard]] SqliteHandle OpenImage(std::string_view image);

// What a store's file holds whose log can neither be made nor written here; nothing where some of it may
// stand in the log, or it never rests.
[[nodiscard]] std::optional<std::string> BytesAtRest(const std::filesystem::path& file);

} // namespace KAL_AUTO_Node
