#pragma once

#include "platform/RuntimeError.h"
#include "store/CreateServerStore.h"
#include "testing/TestServer.h"

#include <SQLiteCpp/SQLiteCpp.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

using Texts = std::vector<std::string>;

// How often what is done at random is done: $KAL_TEST_ROUNDS, or often enough for each run of all tests.
inline int Rounds(int otherwise) {
    const char* const given = std::getenv("KAL_TEST_ROUNDS");
    return given != nullptr ? std::atoi(given) : otherwise;
}

inline std::string BytesOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

inline void WriteFile(const std::filesystem::path& file, const std::string& bytes) {
    std::ofstream(file, std::ios::binary) << bytes;
}

// What is told where something fails.
inline std::string FailureOf(const std::function<void()>& what) {
    try {
        what();
    } catch (const RuntimeError& error) {
        return error.what();
    }
    return "";
}

// An environment variable that gets back what it held.
class EnvironmentVariable {
  public:
    explicit EnvironmentVariable(const char* name) : name_(name) {
        if (const char* value = std::getenv(name)) {
            before_ = value;
        }
    }

    ~EnvironmentVariable() {
        if (before_) {
            Set(*before_);
        } else {
            Unset();
        }
    }

    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

    void Set(const std::string& value) const { setenv(name_, value.c_str(), 1); }

    void Unset() const { unsetenv(name_); }

  private:
    const char* name_;
    std::optional<std::string> before_;
};

// A folder that is gone with its content at the end.
class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "KAL_AUTO_Node.XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("no temporary folder");
        }
        path_ = name;
    }

    ~TemporaryFolder() {
        // Processes that were ended may write there for a moment yet.
        std::error_code failure;
        for (int tries = 0; tries < 100 && (std::filesystem::remove_all(path_, failure), failure); ++tries) {
            usleep(10'000);
        }
    }

    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] const std::filesystem::path& Path() const { return path_; }

  private:
    std::filesystem::path path_;
};

// A store of its own where the component looks for it, as long as it lives; looked at and changed with raw
// SQL. Where there is a server for tests, it lies there, and a link to it in its place.
class TestStore {
  public:
    explicit TestStore(StoreContent content = StoreContent::Demo) {
        programData_.Set(Folder().string());
        if (TestDatabase::HasServer()) {
            server_.emplace(
                content == StoreContent::Demo ? "demo" : "empty",
                [&](const std::string& address) { CreateServerStore(Folder() / "made", address, content); });
            CreateServerStore(File(), server_->Address(), StoreContent::Empty);
        } else {
            CreateStore(File(), content);
        }
    }

    [[nodiscard]] static bool OnServer() { return TestDatabase::HasServer(); }

    // Where all of it lies.
    [[nodiscard]] const std::filesystem::path& Folder() const { return folder_.Path(); }

    [[nodiscard]] std::filesystem::path File() const {
        return Folder() / "Brevank" / "Parlon+" / "Database" / "NewDB.mdb";
    }

    void Execute(const std::string& sql) const {
        if (server_) {
            server_->Rows(sql);
            return;
        }
        SQLite::Database database(File().string(), SQLite::OPEN_READWRITE, 2000);
        database.exec(sql);
    }

    // All rows, fields joined by '|', Null as "NULL".
    [[nodiscard]] std::vector<std::string> Rows(const std::string& sql) const {
        if (server_) {
            return server_->Rows(sql);
        }
        SQLite::Database database(File().string(), SQLite::OPEN_READWRITE, 2000);
        return Rows(database, sql);
    }

    [[nodiscard]] static std::vector<std::string> Rows(SQLite::Database& database, const std::string& sql) {
        SQLite::Statement statement(database, sql);
        std::vector<std::string> rows;
        while (statement.executeStep()) {
            std::string row;
            for (int column = 0; column < statement.getColumnCount(); ++column) {
                const SQLite::Column field = statement.getColumn(column);
                row += (column > 0 ? "|" : "") + (field.isNull() ? "NULL" : field.getString());
            }
            rows.push_back(row);
        }
        return rows;
    }

    // The first field of the first row; empty where there is none.
    [[nodiscard]] std::string Value(const std::string& sql) const {
        const auto rows = Rows(sql);
        return rows.empty() ? std::string() : rows.front();
    }

    // The names of tables, and of a table's columns in order; on a server in lower case.
    [[nodiscard]] std::vector<std::string> Tables() const {
        return Rows(server_ ? "SELECT tablename FROM pg_tables WHERE schemaname = 'public'"
                            : "SELECT name FROM sqlite_master WHERE type = 'table'");
    }

    [[nodiscard]] std::vector<std::string> Columns(const std::string& table) const {
        return Rows(server_ ? "SELECT attname FROM pg_attribute WHERE attrelid = '" + table +
                                  "'::regclass AND attnum > 0 ORDER BY attnum"
                            : "SELECT name FROM pragma_table_info('" + table + "')");
    }

    // What its engine is called, and where it lies, as reports tell it.
    [[nodiscard]] std::string Engine() const { return server_ ? "PostgreSQL" : "SQLite"; }

    [[nodiscard]] std::string Place() const {
        return server_ ? server_->Place() : "file '" + File().string() + '\'';
    }

    // From now on a kind of write, "INSERT ON Node_AUTO", fails where the condition holds; or does nothing.
    void Refuse(const std::string& write, const std::string& condition = "TRUE",
                const std::string& message = "the disk is on fire") const {
        Hinder(write, condition,
               server_ ? "RAISE EXCEPTION '" + message + '\'' : "ABORT, '" + message + '\'');
    }

    void Skip(const std::string& write) const { Hinder(write, "TRUE", server_ ? "RETURN NULL" : "IGNORE"); }

    void Allow() const {
        Execute(server_ ? "DROP FUNCTION IF EXISTS fail CASCADE" : "DROP TRIGGER IF EXISTS failing");
    }

  private:
    void Hinder(const std::string& write, const std::string& condition, const std::string& what) const {
        Allow();
        const std::string trigger = "CREATE TRIGGER failing BEFORE " + write;
        Execute(server_ ? "CREATE FUNCTION fail() RETURNS trigger LANGUAGE plpgsql AS $$ BEGIN " + what +
                              "; END $$; " + trigger + " FOR EACH ROW WHEN (" + condition +
                              ") EXECUTE FUNCTION fail()"
                        : trigger + " WHEN " + condition + " BEGIN SELECT RAISE(" + what + "); END");
    }

    TemporaryFolder folder_;
    EnvironmentVariable programData_{"PROGRAMDATA"};
    mutable std::optional<TestDatabase> server_;
};

} // namespace KAL_AUTO_Node
