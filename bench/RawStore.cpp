#include "bench/RawStore.h"

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <stdexcept>

namespace KAL_AUTO_Node {

namespace {

std::string_view Text(sqlite3_stmt* row, int column) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(row, column));
    return text == nullptr
               ? std::string_view()
               : std::string_view(text, static_cast<std::size_t>(sqlite3_column_bytes(row, column)));
}

int Column(sqlite3_stmt* statement, std::string_view name) {
    for (int column = 0; column < sqlite3_column_count(statement); ++column) {
        if (name == sqlite3_column_name(statement, column)) {
            return column;
        }
    }
    throw std::logic_error("no column " + std::string(name));
}

constexpr std::string_view AutoTypeText = "9";

constexpr int LogPagesToKeep = 8192; // as the editor's connection

} // namespace

RawStore::RawStore(const std::filesystem::path& file) {
    Require(sqlite3_open_v2(file.c_str(), &database_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr) ==
            SQLITE_OK);
    sqlite3_busy_timeout(database_, 1000);
    for (const char* setting : {"PRAGMA journal_mode", "PRAGMA application_id", "PRAGMA user_version",
                                "PRAGMA synchronous = NORMAL", "PRAGMA journal_size_limit = 33554432"}) {
        Pragma(setting);
    }
    // As the editor's connection, this one carries the log over at the end of a save alone.
    sqlite3_wal_hook(
        database_,
        [](void* store, sqlite3*, const char*, int pages) {
            static_cast<RawStore*>(store)->logPages_ = pages;
            return SQLITE_OK;
        },
        this);
}

RawStore::~RawStore() {
    for (sqlite3_stmt* statement : prepared_) {
        sqlite3_finalize(statement);
    }
    sqlite3_close(database_);
}

void RawStore::Require(bool done) const {
    if (!done) {
        throw std::runtime_error(sqlite3_errmsg(database_));
    }
}

void RawStore::Pragma(const std::string& sql) {
    Require(sqlite3_exec(database_, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK);
}

sqlite3_stmt* RawStore::Prepared(Command command) {
    sqlite3_stmt*& statement = prepared_[static_cast<std::size_t>(command)];
    if (statement == nullptr) {
        const std::string& sql = CommandText(command);
        Require(sqlite3_prepare_v2(database_, sql.c_str(), -1, &statement, nullptr) == SQLITE_OK);
    }
    return statement;
}

template <class Values>
sqlite3_stmt* RawStore::Bound(Command command, const Values& values) {
    sqlite3_stmt* statement = Prepared(command);
    int parameter = 0;
    for (const std::string_view value : values) {
        sqlite3_bind_text(statement, ++parameter, value.data(), static_cast<int>(value.size()),
                          SQLITE_STATIC);
    }
    return statement;
}

template <class Values>
void RawStore::Run(Command command, const Values& values) {
    sqlite3_stmt* statement = Bound(command, values);
    Require(sqlite3_step(statement) == SQLITE_DONE);
    sqlite3_reset(statement);
}

template <class Values, class Use>
void RawStore::Read(Command command, const Values& values, Use&& use) {
    sqlite3_stmt* statement = Bound(command, values);
    int result = sqlite3_step(statement);
    for (; result == SQLITE_ROW; result = sqlite3_step(statement)) {
        CopyRow(statement);
        use(statement);
    }
    Require(result == SQLITE_DONE);
    sqlite3_reset(statement);
}

template <class Values>
void RawStore::Read(Command command, const Values& values) {
    Read(command, values, [](sqlite3_stmt*) {});
}

void RawStore::CopyRow(sqlite3_stmt* row) {
    for (int column = 0; column < sqlite3_column_count(row); ++column) {
        copied_ += Text(row, column);
    }
}

void RawStore::ReadReference(const Key& key, sqlite3_stmt* row, int typeColumn, int numberColumn) {
    Read(Command::Get_Description,
         Texts{key.config, key.partition, Text(row, typeColumn), Text(row, numberColumn)});
}

void RawStore::ReadTypes(const Key& key, std::string_view set) {
    const int child = Column(Prepared(Command::Get_Node_Type_can_contain_nodes), "Child_Node_Type_ID");
    Read(Command::Get_Node_Type_can_contain_nodes, Texts{AutoTypeText, set}, [&](sqlite3_stmt* type) {
        Read(Command::Get_Max_NodeNumber, Texts{key.config, key.partition, Text(type, child)});
    });
}

void RawStore::Open(Place place) {
    const Key key(place);
    copied_.clear();
    const int id = Column(Prepared(Command::Get_Node_Names), "ID");
    Read(Command::Get_Node_Names, Texts{}, [&](sqlite3_stmt* type) {
        Read(Command::Get_Max_NodeNumber, Texts{key.config, key.partition, Text(type, id)});
    });
    for (const std::string_view set : {"7", "6", "1", "3", "5", "8", "9"}) {
        ReadTypes(key, set);
    }
    Read(Command::Get_All_AUTO_Nodes, Texts{key.config, key.partition, AutoTypeText});
    benchmark::DoNotOptimize(copied_.data());
    Load(place);
}

void RawStore::Load(Place place) {
    const Key key(place);
    copied_.clear();
    sqlite3_stmt* node =
        Bound(Command::Get_AUTO_Node, Texts{key.config, key.partition, key.node, AutoTypeText});
    Require(sqlite3_step(node) == SQLITE_ROW);
    CopyRow(node);
    for (const Command rows : {Command::Get_AUTO_PromptsNode, Command::Get_AUTO_ActionsNode}) {
        const int type = Column(Prepared(rows), "NodeTypeID");
        const int number = Column(Prepared(rows), "NodeNumber");
        Read(rows, Texts{key.config, key.partition, key.node},
             [&](sqlite3_stmt* row) { ReadReference(key, row, type, number); });
    }
    for (const char* branch : {"Timeout", "Invalid", "Abort", "Star", "Pound"}) {
        ReadReference(key, node, Column(node, std::string(branch) + "NodeTypeID"),
                      Column(node, std::string(branch) + "NodeNumber"));
    }
    sqlite3_reset(node);
    Read(Command::Get_Description, Texts{key.config, key.partition, AutoTypeText, key.node});
    benchmark::DoNotOptimize(copied_.data());
}

void RawStore::Perform(const std::vector<Performed>& commands) {
    copied_.clear();
    for (const auto& [command, values] : commands) {
        if (sqlite3_column_count(Prepared(command)) > 0) {
            Read(command, values);
        } else {
            Run(command, values);
        }
    }
    benchmark::DoNotOptimize(copied_.data());
}

void RawStore::Save(const std::vector<Performed>& commands) {
    Perform(commands);
    sqlite3_file* log = nullptr;
    sqlite3_file_control(database_, nullptr, SQLITE_FCNTL_JOURNAL_POINTER, static_cast<void*>(&log));
    Require(log->pMethods->xSync(log, SQLITE_SYNC_NORMAL) == SQLITE_OK);
    if (logPages_ > LogPagesToKeep) {
        Pragma("PRAGMA wal_checkpoint(PASSIVE)");
    }
}

} // namespace KAL_AUTO_Node
