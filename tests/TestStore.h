#pragma once

#include "store/CreateStore.h"

#include <SQLiteCpp/SQLiteCpp.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

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
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] const std::filesystem::path& Path() const { return path_; }

  private:
    std::filesystem::path path_;
};

// A store of its own where the component looks for it, as long as it lives; looked at and changed with raw
// SQL.
class TestStore {
  public:
    explicit TestStore(StoreContent content = StoreContent::Demo) {
        programData_.Set(Folder().string());
        CreateStore(File(), content);
    }

    // Where all of it lies.
    [[nodiscard]] const std::filesystem::path& Folder() const { return folder_.Path(); }

    [[nodiscard]] std::filesystem::path File() const {
        return Folder() / "Brevank" / "Parlon+" / "Database" / "NewDB.mdb";
    }

    void Execute(const std::string& sql) const {
        SQLite::Database database(File().string(), SQLite::OPEN_READWRITE, 2000);
        database.exec(sql);
    }

    // All rows, fields joined by '|', Null as "NULL".
    [[nodiscard]] std::vector<std::string> Rows(const std::string& sql) const {
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

  private:
    TemporaryFolder folder_;
    EnvironmentVariable programData_{"PROGRAMDATA"};
};

} // namespace KAL_AUTO_Node
