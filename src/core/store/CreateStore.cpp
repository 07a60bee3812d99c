#include "store/CreateStore.h"

#include "platform/NewFile.h"
#include "platform/RuntimeError.h"
#include "store/DataBase.h"
#include "store/Scripts.h"
#include "store/StoreFormat.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>

namespace KAL_AUTO_Node {

namespace {

// The engine would take the journal of a store that is gone for one of the new store's.
constexpr std::array<const char*, 2> JournalEndings = {"-journal", "-wal"};

void RequireFree(const std::filesystem::path& file) {
    for (const char* ending : {"", JournalEndings[0], JournalEndings[1]}) {
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
    database.exec(SchemaScript);
    database.exec(HistoryScript);
    if (content == StoreContent::Demo) {
        database.exec(DemoScript);
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

bool HasJournal(const std::filesystem::path& file) {
    return std::ranges::any_of(
        JournalEndings, [&](const char* ending) { return std::filesystem::exists(file.string() + ending); });
}

void RemoveJournals(const std::filesystem::path& file) {
    for (const char* ending : JournalEndings) {
        std::filesystem::remove(file.string() + ending);
    }
}

// Under the name that the store has until it is whole. Its journals are carried over and gone at the end.
void Fill(const std::filesystem::path& file, const std::function<void(DataBase&)>& fill) {
    DataBase dataBase(file);
    Transaction all(dataBase);
    fill(dataBase);
    all.Commit();
    dataBase.Flush();
}

void Create(const std::filesystem::path& file, StoreContent content,
            const std::function<void(const std::filesystem::path&)>& fill) {
    try {
        const std::string image = StoreImage(content);
        RequireFree(file);
        NewFolders folders(file.parent_path());
        NewFile made(file);
        made.Write(image);
        fill(made.Name());
        made.Place();
        folders.Keep();
    } catch (const RuntimeError&) {
        throw;
    } catch (const std::runtime_error& error) {
        throw RuntimeError(ErrorNumber::StoreFailure,
                           "Cannot create the store '" + file.string() + "': " + error.what());
    }
}

} // namespace

void CreateStore(const std::filesystem::path& file, StoreContent content) {
    Create(file, content, [](const std::filesystem::path&) {});
}

void CreateStore(const std::filesystem::path& file, const std::function<void(DataBase&)>& fill) {
    Create(file, StoreContent::Empty, [&](const std::filesystem::path& begun) {
        // Of one that was killed.
        RemoveJournals(begun);
        Fill(begun, fill);
        if (HasJournal(begun)) {
            throw std::runtime_error("what was written is not all in its file");
        }
    });
}

} // namespace KAL_AUTO_Node
