#include "store/SqliteHandle.h"

#include <sqlite3.h>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <new>
#include <sys/stat.h>
#include <tuple>
#include <unistd.h>

namespace KAL_AUTO_Node {

namespace {

// Asks the file system alone: to open a file here would take away the locks on it.
bool IsProtected(const std::string& file) {
    return faccessat(AT_FDCWD, file.c_str(), W_OK, AT_EACCESS) != 0 && errno == EACCES;
}

// The engine's words for a result, and what to do where they name the file though the folder may be what it
// could not write. Of a file that was protected while it was open here the engine only says that writing
// failed: it gives the journal the file's rights, and cannot write it the next time.
std::string Words(int result, std::string words, sqlite3* database) {
    const char* const name = database != nullptr ? sqlite3_db_filename(database, "main") : nullptr;
    const std::string file = name != nullptr ? name : "";
    const bool failed = (result & 0xFF) == SQLITE_IOERR || (result & 0xFF) == SQLITE_CANTOPEN;
    if ((result & 0xFF) == SQLITE_READONLY ||
        (failed && !file.empty() && (IsProtected(file) || IsProtected(file + "-journal")))) {
        words +=
            "; the engine needs the right to write the store's file and the folder that it lies in, where "
            "it keeps its journal";
    }
    return words;
}

// What stays so for longer than a moment.
bool IsDenied(int result) {
    return result == SQLITE_READONLY || result == SQLITE_PERM || result == SQLITE_AUTH ||
           result == SQLITE_ERROR;
}

SqliteHandle Open(const std::string& name, int flags) {
    sqlite3* database = nullptr;
    const int result = sqlite3_open_v2(name.c_str(), &database,
                                       flags | SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
    SqliteHandle opened(database);
    RequireSqlite(result, database);
    return opened;
}

} // namespace

void CloseSqlite::operator()(sqlite3* database) const noexcept { sqlite3_close_v2(database); }

void RequireSqlite(int result, sqlite3* database, ErrorNumber ofDenial) {
    if (result == SQLITE_OK) {
        return;
    }
    const int cause = database != nullptr ? sqlite3_extended_errcode(database) : result;
    const bool duplicate = cause == SQLITE_CONSTRAINT_PRIMARYKEY || cause == SQLITE_CONSTRAINT_UNIQUE;
    throw RuntimeError(
        duplicate              ? ErrorNumber::DuplicateKey
        : cause == SQLITE_BUSY ? ErrorNumber::StoreLocked
        : IsDenied(result)     ? ofDenial
                               : ErrorNumber::StoreFailure,
        Words(cause, database != nullptr ? sqlite3_errmsg(database) : sqlite3_errstr(result), database),
        "SQLite");
}

SqliteHandle OpenSqliteFile(const std::filesystem::path& file) { return Open(file.string(), 0); }

SqliteHandle OpenUnchanging(const std::filesystem::path& file) {
    std::string address = "file:";
    for (const char c : std::filesystem::absolute(file).string()) {
        // What would end the path.
        address += c == '%' ? "%25" : c == '?' ? "%3f" : c == '#' ? "%23" : std::string(1, c);
    }
    return Open(address + "?immutable=1", SQLITE_OPEN_URI);
}

SqliteHandle OpenInMemory() { return Open(":memory:", 0); }

int RunSqlite(sqlite3* database, const char* sql) noexcept {
    return sqlite3_exec(database, sql, nullptr, nullptr, nullptr);
}

int AskSqlite(sqlite3* database, const char* sql, std::string& answer) {
    answer.clear();
    return sqlite3_exec(
        database, sql,
        [](void* text, int, char** fields, char**) {
            static_cast<std::string*>(text)->assign(fields[0] != nullptr ? fields[0] : "");
            return 0;
        },
        &answer, nullptr);
}

std::string ImageOf(sqlite3* database) {
    sqlite3_int64 size = 0;
    const std::unique_ptr<unsigned char, void (*)(void*)> bytes(sqlite3_serialize(database, "main", &size, 0),
                                                                &sqlite3_free);
    if (!bytes) {
        RequireSqlite(sqlite3_errcode(database), database);
        throw std::bad_alloc();
    }
    return {reinterpret_cast<const char*>(bytes.get()), static_cast<std::size_t>(size)};
}

SqliteHandle OpenImage(std::string_view image) {
    // The engine frees it, also where it refuses it.
    auto* const bytes = static_cast<unsigned char*>(sqlite3_malloc64(image.size() + 1));
    if (bytes == nullptr) {
        throw std::bad_alloc();
    }
    std::memcpy(bytes, image.data(), image.size());
    if (image.size() > 19) {
        bytes[18] = bytes[19] = 1; // without a log, for which there is no place
    }
    SqliteHandle opened = OpenInMemory();
    const auto size = static_cast<sqlite3_int64>(image.size());
    RequireSqlite(sqlite3_deserialize(opened.get(), "main", bytes, size, size,
                                      SQLITE_DESERIALIZE_FREEONCLOSE | SQLITE_DESERIALIZE_READONLY),
                  opened.get());
    return opened;
}

std::optional<std::string> BytesAtRest(const std::filesystem::path& file) {
    const std::string log = file.string() + "-wal";
    const auto state = [&] {
        struct stat of {};

        struct stat ofLog {};

        const bool isThere = stat(file.c_str(), &of) == 0;
        const bool hasLog = stat(log.c_str(), &ofLog) == 0 && ofLog.st_size > 0;
        return std::tuple(isThere && !hasLog, of.st_ino, of.st_size, of.st_mtim.tv_sec, of.st_mtim.tv_nsec);
    };
    for (int attempt = 0; attempt < 3; ++attempt) {
        const auto before = state();
        std::ifstream stream(file, std::ios::binary);
        std::string bytes(std::get<0>(before) ? static_cast<std::size_t>(std::get<2>(before)) : 0, '\0');
        if (!stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size())) || !std::get<0>(before)) {
            return std::nullopt;
        }
        if (state() == before) {
            return bytes;
        }
    }
    return std::nullopt;
}

} // namespace KAL_AUTO_Node
