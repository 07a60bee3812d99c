#include "store/CreateStore.h"

#include "platform/RuntimeError.h"

#include <SQLiteCpp/SQLiteCpp.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

namespace KAL_AUTO_Node {

namespace {

constexpr const char* Schema =
#include "store/Schema.inc"
    ;

constexpr const char* Demo =
#include "store/Demo.inc"
    ;

[[noreturn]] void Fail(const std::filesystem::path& file, const std::string& why) {
    throw RuntimeError(ErrorNumber::StoreFailure, "Cannot create the store '" + file.string() + "': " + why);
}

void CreateEmptyFile(const std::filesystem::path& file) {
    std::error_code failure;
    std::filesystem::create_directories(file.parent_path(), failure);
    if (failure) {
        Fail(file, failure.message());
    }
    // Exclusive, so that of two programs that start at once only one makes the store.
    std::FILE* created = std::fopen(file.c_str(), "wbx");
    if (created == nullptr) {
        Fail(file, std::strerror(errno));
    }
    std::fclose(created);
}

} // namespace

void CreateStore(const std::filesystem::path& file, StoreContent content) {
    CreateEmptyFile(file);
    try {
        SQLite::Database database(file.string(), SQLite::OPEN_READWRITE);
        // Readers and one writer side by side, and a save that reaches the disk in one go.
        database.exec("PRAGMA journal_mode = WAL");
        SQLite::Transaction all(database);
        database.exec(Schema);
        if (content == StoreContent::Demo) {
            database.exec(Demo);
        }
        all.commit();
    } catch (const SQLite::Exception& error) {
        std::error_code ignored;
        std::filesystem::remove(file, ignored);
        Fail(file, error.what());
    }
}

} // namespace KAL_AUTO_Node
