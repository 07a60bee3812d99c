#include "store/Connection.h"

#include "platform/RuntimeError.h"
#include "store/SqliteConnection.h"

namespace KAL_AUTO_Node {

namespace {

// The first bytes of every SQLite file, with their NUL.
constexpr std::string_view SqliteSignature{"SQLite format 3\0", 16};

[[noreturn]] void FailUnrecognized(const std::filesystem::path& file) {
    throw RuntimeError(ErrorNumber::StoreNotRecognized,
                       "Unrecognized database format '" + file.string() + "'");
}

// Asks the file system alone.
void RequireFile(const std::filesystem::path& file) {
    std::error_code failure;
    if (!std::filesystem::exists(file, failure)) {
        const std::string why = failure ? ": " + failure.message() : "";
        throw RuntimeError(ErrorNumber::StoreNotFound, "Could not find file '" + file.string() + "'" + why);
    }
    if (!std::filesystem::is_regular_file(file, failure) || std::filesystem::is_empty(file, failure)) {
        FailUnrecognized(file);
    }
}

std::unique_ptr<SqliteConnection> OpenSqlite(const std::filesystem::path& file) {
    try {
        return std::make_unique<SqliteConnection>(file);
    } catch (const RuntimeError&) {
        RequireFile(file); // may know better why
        throw;
    }
}

} // namespace

std::unique_ptr<Connection> OpenStore(const std::filesystem::path& file) {
    auto sqlite = OpenSqlite(file);
    RequireFile(file); // the engine takes an empty file for an empty store
    if (sqlite->Recognizes()) {
        return sqlite;
    }
    // Here the stores of other engines can be told.
    if (sqlite->FirstBytes(SqliteSignature.size()) == SqliteSignature) {
        throw RuntimeError(ErrorNumber::StoreFailure, "The file '" + file.string() + "' is damaged",
                           "SQLite");
    }
    FailUnrecognized(file);
}

} // namespace KAL_AUTO_Node
