#include "store/CreateStore.h"

#include "platform/NewFile.h"
#include "platform/RuntimeError.h"
#include "store/DataBase.h"
#include "store/Scripts.h"
#include "store/SqliteHandle.h"
#include "store/StoreFormat.h"

#include <algorithm>
#include <array>
#include <optional>
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
            throw RuntimeError(ErrorNumber::StoreFailure,
                               "'" + other.filename().string() + "' exists already");
        }
    }
}

// A store as its file holds it, made in memory, so that no half of one ever lies on disk.
std::string StoreImage(StoreContent content) {
    const SqliteHandle database = OpenInMemory();
    const auto run = [&](const std::string& sql) {
        RequireSqlite(RunSqlite(database.get(), sql.c_str()), database.get());
    };
    run("BEGIN");
    run(SchemaScript);
    run(HistoryScript);
    if (content == StoreContent::Demo) {
        run(DemoScript);
    }
    run("PRAGMA application_id = " + std::to_string(StoreApplicationId));
    run("PRAGMA user_version = " + std::to_string(StoreVersion));
    run("COMMIT");
    std::string image = ImageOf(database.get());
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

// What fails of the file itself, but not of what fills it, is told with its name.
template <class Work>
void Creating(const std::filesystem::path& file, Work work) {
    try {
        work();
    } catch (const RuntimeError& error) {
        throw RuntimeError(ErrorNumber::StoreFailure,
                           "Cannot create the store '" + file.string() + "': " + error.what());
    }
}

void Create(const std::filesystem::path& file, StoreContent content,
            const std::function<void(const std::filesystem::path&)>& fill) {
    const std::string image = StoreImage(content);
    std::optional<NewFolders> folders;
    std::optional<NewFile> made;
    Creating(file, [&] {
        RequireFree(file);
        folders.emplace(file.parent_path());
        made.emplace(file).Write(image);
    });
    fill(made->Name());
    Creating(file, [&] {
        made->Place();
        folders->Keep();
    });
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
            throw RuntimeError(ErrorNumber::StoreFailure, "what was written is not all in its file");
        }
    });
}

} // namespace KAL_AUTO_Node
