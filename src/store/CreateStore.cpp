#include "store/CreateStore.h"

#include "platform/NewFile.h"
#include "platform/RuntimeError.h"
#include "store/PostgresConnection.h"
#include "store/StoreFormat.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <sqlite3.h>

#include <memory>
#include <new>
#include <stdexcept>
#include <string>

namespace KAL_AUTO_Node {

namespace {

constexpr const char* Schema =
#include "store/Schema.inc"
    ;

constexpr const char* HistoryTables =
#include "store/HistoryTables.inc"
    ;

constexpr const char* Demo =
#include "store/Demo.inc"
    ;

// The engine would take the journal of a store that is gone for one of the new store's.
void RequireFree(const std::filesystem::path& file) {
    for (const char* ending : {"", "-journal", "-wal"}) {
        const std::filesystem::path other = file.string() + ending;
        std::error_code ignored;
        if (std::filesystem::exists(std::filesystem::symlink_status(other, ignored))) {
            throw std::runtime_error("'" + other.filename().string() + "' exists already");
        }
    }
}

// A store as its file holds it, made in memory, so that no half of one ever lies on disk.
std::string StoreImage(StoreContent content) {
    SQLite::Database database(":memory:", SQLite::OPEN_READWRITE);
    SQLite::Transaction all(database);
    database.exec(Schema);
    database.exec(HistoryTables);
    if (content == StoreContent::Demo) {
        database.exec(Demo);
    }
    database.exec("PRAGMA application_id = " + std::to_string(StoreApplicationId));
    database.exec("PRAGMA user_version = " + std::to_string(StoreVersion));
    all.commit();

    sqlite3_int64 size = 0;
    const std::unique_ptr<unsigned char, void (*)(void*)> bytes(
        sqlite3_serialize(database.getHandle(), "main", &size, 0), &sqlite3_free);
    if (!bytes) {
        throw std::bad_alloc();
    }
    std::string image(reinterpret_cast<const char*>(bytes.get()), static_cast<std::size_t>(size));
    // The file format's numbers for who writes and who reads it: a write-ahead log, for readers and one
    // writer side by side, and a save that reaches the disk in one go.
    image[18] = image[19] = 2;
    return image;
}

// Writes the file into its place; the folders above it stay only with it.
void PlaceFile(const std::filesystem::path& file, std::string_view content, NewFile::Readers readers) {
    NewFolders folders(file.parent_path());
    NewFile made(file, readers);
    made.Write(content);
    made.Place();
    folders.Keep();
}

ServerStore MakeTables(PostgresConnection& server, StoreContent content) {
    if (server.HasTable("Node_AUTO")) {
        if (content == StoreContent::Demo) {
            throw std::runtime_error("there is a store on " + server.Place() + " already");
        }
        return ServerStore::Found;
    }
    server.Begin(std::nullopt);
    server.RunScript(Schema);
    server.RunScript(HistoryTables);
    if (content == StoreContent::Demo) {
        server.RunScript(Demo);
    }
    server.RunScript(("COMMENT ON TABLE Node_AUTO IS '" + VersionComment() + '\'').c_str());
    server.Commit();
    return ServerStore::Made;
}

[[noreturn]] void Fail(const std::filesystem::path& file, const std::runtime_error& error) {
    throw RuntimeError(ErrorNumber::StoreFailure,
                       "Cannot create the store '" + file.string() + "': " + error.what());
}

} // namespace

void CreateStore(const std::filesystem::path& file, StoreContent content) {
    try {
        const std::string image = StoreImage(content);
        RequireFree(file);
        PlaceFile(file, image, NewFile::Readers::Any);
    } catch (const std::runtime_error& error) {
        Fail(file, error);
    }
}

ServerStore CreateServerStore(const std::filesystem::path& file, const std::string& uri,
                              StoreContent content) {
    try {
        RequireFree(file);
        PostgresConnection server(uri, PostgresConnection::Wanted::Database);
        const ServerStore store = MakeTables(server, content);
        PlaceFile(file, uri + '\n', NewFile::Readers::Owner);
        return store;
    } catch (const std::runtime_error& error) {
        Fail(file, error);
    }
}

} // namespace KAL_AUTO_Node
