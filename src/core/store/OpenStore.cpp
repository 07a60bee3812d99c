#include "platform/RuntimeError.h"
#include "store/Scripts.h"
#include "store/ServerLink.h"
#include "store/ServerModule.h"
#include "store/SqliteConnection.h"

namespace KAL_AUTO_Node {

namespace {

// The first bytes of every SQLite file, with their NUL.
constexpr std::string_view SqliteSignature{"SQLite format 3\0", 16};

// What a Jet file has after its first four bytes.
constexpr std::string_view JetSignature = "Standard Jet DB";

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

std::unique_ptr<SqliteConnection> OpenSqlite(const std::filesystem::path& file, const Waits& waits) {
    try {
        return std::make_unique<SqliteConnection>(file, waits);
    } catch (const RuntimeError&) {
        RequireFile(file); // may know better why
        throw;
    }
}

} // namespace

std::unique_ptr<Connection> OpenScratchStore() {
    auto scratch = std::make_unique<SqliteConnection>(":memory:");
    scratch->RunScript(SchemaScript);
    return scratch;
}

std::unique_ptr<Connection> OpenStore(const std::filesystem::path& file, const Waits& waits) {
    auto sqlite = OpenSqlite(file, waits);
    RequireFile(file); // the engine takes an empty file for an empty store
    if (sqlite->Recognizes()) {
        return sqlite;
    }
    const std::string head = sqlite->FirstBytes(LongestLink);
    if (head.starts_with(SqliteSignature)) {
        throw RuntimeError(ErrorNumber::StoreFailure, "The file '" + file.string() + "' is damaged",
                           "SQLite");
    }
    if (IsLink(head)) {
        return OpenServer(LinkIn(head), ServerUse::Store, waits);
    }
    if (std::string_view(head).substr(4).starts_with(JetSignature)) {
        throw RuntimeError(ErrorNumber::StoreNotRecognized,
                           "The file '" + file.string() +
                               "' is a Jet database. \"auto-node import FILE\" makes a store of it; move it "
                               "elsewhere first");
    }
    FailUnrecognized(file);
}

} // namespace KAL_AUTO_Node
