#include "TestStore.h"
#include "platform/RuntimeError.h"
#include "store/DataBase.h"

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <functional>
#include <map>
#include <set>
#include <thread>
#include <unistd.h>
#include <utility>

namespace KAL_AUTO_Node {
namespace {

using enum Command;
using enum ErrorNumber;
using Texts = std::vector<std::string>;
using RowSet = std::multiset<std::string>;
using Values = std::map<std::string, std::string>; // by column

// Runs a command and gives one column of its rows, if it has any. A command's parameters are written out
// where it is called; here a table holds them.
template <std::size_t Count = 0>
Texts Perform(DataBase& dataBase, Command command, const Texts& values, std::string_view column = {}) {
    if constexpr (Count < 26) {
        if (values.size() > Count) {
            return Perform<Count + 1>(dataBase, command, values, column);
        }
    }
    const auto query = [&]<std::size_t... I>(std::index_sequence<I...>) {
        return dataBase.Query(command, {Parameter(values[I])...});
    };
    Texts fields;
    for (ResultSet rows = query(std::make_index_sequence<Count>()); !rows.AtEnd(); rows.MoveNext()) {
        fields.emplace_back(rows.Text(column));
    }
    return fields;
}

void ExpectRaised(ErrorNumber number, const Texts& told, const std::function<void()>& use) {
    try {
        use();
        ADD_FAILURE() << "not raised: " << testing::PrintToString(told);
    } catch (const RuntimeError& error) {
        EXPECT_EQ(static_cast<int>(error.Number()), static_cast<int>(number)) << error.what();
        for (const std::string& text : told) {
            EXPECT_NE(std::string(error.what()).find(text), std::string::npos) << error.what();
        }
    }
}

Texts Joined(Texts values, const Texts& more) {
    values.insert(values.end(), more.begin(), more.end());
    return values;
}

// A table and a key to its rows, of which the values 1, 2, 3 and so on are sought. It holds rows beside them:
// they differ in one value of the key each, or have two exchanged.
struct Table {
    Table(const TestStore& in, std::string called, const Texts& key)
        : store(in), name(std::move(called)),
          columns(store.Rows("SELECT name FROM pragma_table_info('" + name + "')")) {
        writer.exec("PRAGMA synchronous = OFF; DELETE FROM " + name);
        for (const std::string& column : key) {
            parameters.push_back(std::to_string(parameters.size() + 1));
            sought[column] = parameters.back();
            where += " AND " + column + " = " + parameters.back();
        }
        for (std::size_t i = 0; i < key.size(); ++i) {
            const std::string& next = key[(i + 1) % key.size()];
            Add({{key[i], "70"}});
            Add({{key[i], sought[next]}, {next, sought[key[i]]}});
        }
    }

    // A row that is sought but for the given values. No value stands in it twice, nor in another row.
    void Add(Values row = {}) {
        row.insert(sought.begin(), sought.end());
        for (const std::string& column : columns) {
            row.try_emplace(column, std::to_string(++last));
        }
        writer.exec("INSERT INTO " + name + " SELECT " + Select(row));
    }

    // The rows as they would be with some values replaced.
    [[nodiscard]] RowSet Rows(const std::string& condition = "TRUE", const Values& replaced = {}) const {
        const Texts rows = store.Rows("SELECT " + Select(replaced) + " FROM " + name + " WHERE " + condition);
        return {rows.begin(), rows.end()};
    }

    [[nodiscard]] std::string Select(const Values& replaced) const {
        std::string fields;
        for (const std::string& column : columns) {
            const auto value = replaced.find(column);
            fields += (fields.empty() ? "" : ", ") +
                      (value == replaced.end() ? column : '\'' + value->second + '\'');
        }
        return fields;
    }

    const TestStore& store;
    SQLite::Database writer{store.File().string(), SQLite::OPEN_READWRITE};
    std::string name;
    Texts columns;
    Texts parameters;
    Values sought;
    std::string where = "TRUE";
    int last = 100;
};

TEST(Commands, CopyEveryColumnButTheReplacedOnes) {
    // The tables of the copies and how many columns they have, in the order of the commands.
    const std::vector<std::pair<std::string, std::size_t>> tables = {
        {"Node_MSG", 18},           {"Node_CMD", 6},           {"Detail_CMD", 7},
        {"Node_TIME", 8},           {"Detail_TIME", 7},        {"Node_DATE", 11},
        {"Detail_DATE", 7},         {"Node_XFER", 20},         {"Node_DTMF", 21},
        {"Detail_DTMF_Prompts", 7}, {"Detail_DTMF_Action", 8}, {"Node_VOX", 19},
        {"Detail_VOX_Prompts", 7},  {"Detail_VOX_Action", 10}, {"Node_LIST", 7},
        {"Detail_LIST", 7},         {"Node_AUTO", 26},         {"Detail_AUTO_Prompts", 7},
        {"Detail_AUTO_Action", 9},  {"Node_PAAS", 10},         {"Node_TABLE", 14},
        {"Detail_TABLE_Action", 9}, {"Node_General_Pool", 7},  {"Node_DBN", 61},
        {"Detail_DBN_Prompts", 7}};
    const TestStore store(StoreContent::Empty);
    DataBase dataBase;
    std::size_t next = 0;
    for (std::size_t i = 0; i < CommandCount; ++i) {
        const auto command = static_cast<Command>(i);
        const std::string name(CommandName(command));
        if (!name.starts_with("Duplicate_")) {
            continue;
        }
        const auto& [tableName, columnCount] = tables.at(next++);
        SCOPED_TRACE(name);
        const std::string number = name.find("Detail") == std::string::npos ? "NodeNumber" : "NodeMasterID";
        // Only the register also goes by the type.
        const bool pool = command == Duplicate_Node_In_General_Pool;
        Table table(store, tableName, Joined({"ConfigID", "PartID", number}, Texts(pool, "NodeTypeID")));
        EXPECT_EQ(table.columns.size(), columnCount);
        Values replaced = {{number, "90"}};
        Texts parameters = {"90"};
        if (pool || command == Duplicate_MSG_NODE) {
            replaced[pool ? "DateModified" : "VexoFilename"] = "new";
            parameters.emplace_back("new");
        }
        parameters = Joined(parameters, table.parameters);

        RowSet rows = table.Rows();
        EXPECT_NO_THROW(Perform(dataBase, command, parameters));
        EXPECT_EQ(table.Rows(), rows) << "without a source";
        for (int sources = pool ? 1 : 2; sources > 0; --sources) {
            table.Add();
        }
        rows = table.Rows();
        rows.merge(table.Rows(table.where, replaced));
        Perform(dataBase, command, parameters);
        EXPECT_EQ(table.Rows(), rows);
        ExpectRaised(DuplicateKey, {tableName + '.' + number, name, store.File().string()},
                     [&] { Perform(dataBase, command, parameters); });
        EXPECT_EQ(table.Rows(), rows) << "over an existing node";
    }
    EXPECT_EQ(next, tables.size());
}

TEST(Commands, WriteEveryParameterIntoItsColumn) {
    const TestStore store(StoreContent::Empty);
    DataBase dataBase;
    // Rows are added with all columns; an update sets those after the key.
    const auto write = [&](Command command, const char* tableName, std::ptrdiff_t first) {
        SCOPED_TRACE(CommandName(command));
        Table table(store, tableName, {"ConfigID", "PartID", "NodeTypeID", "NodeNumber"});
        table.Add();
        const SQLite::Statement statement(table.writer, CommandText(command));
        Texts parameters;
        Values written;
        for (auto column = table.columns.begin() + first; column != table.columns.end(); ++column) {
            parameters.push_back(std::to_string(++table.last));
            written[*column] = parameters.back();
            const int named = std::max(statement.getIndex((":Given_" + *column).c_str()),
                                       statement.getIndex((':' + *column).c_str()));
            EXPECT_TRUE(first > 0 || named == static_cast<int>(parameters.size())) << *column;
        }
        RowSet rows = table.Rows(first == 0 ? "TRUE" : "NOT (" + table.where + ')');
        rows.merge(table.Rows(table.where, written));
        Perform(dataBase, command, Joined(parameters, first == 0 ? Texts() : table.parameters));
        EXPECT_EQ(table.Rows(), rows);
    };
    write(Update_AUTO_Node, "Node_AUTO", 4);
    write(Update_DTMF_Node, "Node_DTMF", 4);
    write(Update_Node_General_Pool, "Node_General_Pool", 5);
    write(Add_AUTO_PromptsNode, "Detail_AUTO_Prompts", 0);
    write(Add_AUTO_ActionsNode, "Detail_AUTO_Action", 0);
    write(Add_DTMF_PromptsNode, "Detail_DTMF_Prompts", 0);
    write(Add_DTMF_ActionsNode, "Detail_DTMF_Action", 0);
}

TEST(Commands, ReadInOrderAndDeleteByKey) {
    const TestStore store(StoreContent::Empty);
    DataBase dataBase;
    const auto use = [&](Command get, std::optional<Command> remove, const std::string& name,
                         const Texts& key, const std::string& column, const Texts& found) {
        SCOPED_TRACE(CommandName(get));
        Table table(store, name, key);
        const RowSet others = table.Rows();
        for (const std::string& value : found) {
            table.Add({{column, value}});
        }
        // So that nothing but the command itself puts them in order.
        table.writer.exec("CREATE TABLE Laid AS SELECT * FROM " + name + " ORDER BY " + column +
                          " DESC; DROP TABLE " + name + "; ALTER TABLE Laid RENAME TO " + name);
        EXPECT_EQ(Perform(dataBase, get, table.parameters, column), found);
        if (remove) {
            Perform(dataBase, *remove, table.parameters);
            EXPECT_EQ(table.Rows(), others);
        }
    };
    const Texts node = {"ConfigID", "PartID", "NodeNumber", "NodeTypeID"};
    const Texts pool = {"ConfigID", "PartID", "NodeTypeID", "NodeNumber"};
    const Texts type = {"ConfigID", "PartID", "NodeTypeID"};
    const Texts list = {"ConfigID", "PartID", "NodeMasterID"};
    const Texts limit = {"Config_ID", "PartitionID", "NodeType_ID"};
    const Texts set = {"Parent_Node_Type_ID", "Set_ID"};
    const std::string child = "Child_Node_Type_ID";
    const Texts inOrder = {"5", "10", "33"}; // texts would stand in another one
    use(Get_AUTO_Node, {}, "Node_AUTO", node, "RetryLimit", {"3"});
    use(Get_DTMF_Node, {}, "Node_DTMF", node, "RetryLimit", {"3"});
    use(Get_Description, {}, "Node_General_Pool", pool, "NodeDescription", {"3"});
    use(Get_Max_NodeNumber, {}, "Node_Type_Max", limit, "Max_Number", {"3"});
    use(Get_All_AUTO_Nodes, {}, "Node_AUTO", type, "NodeNumber", inOrder);
    use(Get_All_DTMF_Nodes, {}, "Node_DTMF", type, "NodeNumber", inOrder);
    use(Get_Node_Names, {}, "SR_Node_Type_Names", {}, "ID", inOrder);
    use(Get_Node_Type_can_contain_nodes, {}, "SR_Node_Type_can_contain_Node_Type", set, child, inOrder);
    use(Get_AUTO_PromptsNode, Delete_AUTO_PromptsNode, "Detail_AUTO_Prompts", list, "SequenceNo", inOrder);
    use(Get_AUTO_ActionsNode, Delete_AUTO_ActionsNode, "Detail_AUTO_Action", list, "SequenceNo", inOrder);
    use(Get_DTMF_PromptsNode, Delete_DTMF_PromptsNode, "Detail_DTMF_Prompts", list, "SequenceNo", inOrder);
    use(Get_DTMF_ActionsNode, Delete_DTMF_ActionsNode, "Detail_DTMF_Action", list, "SequenceNo", inOrder);
}

// Every command finds its rows in the key of its table, in the order asked for, however large the store
// grows.
TEST(Commands, SearchTheKeysAndSortNothing) {
    const TestStore store(StoreContent::Empty);
    for (std::size_t i = 0; i < CommandCount; ++i) {
        const auto command = static_cast<Command>(i);
        std::string steps;
        for (const std::string& row : store.Rows("EXPLAIN QUERY PLAN " + CommandText(command))) {
            steps += row.substr(row.rfind('|') + 1) + '\n';
        }
        SCOPED_TRACE(std::string(CommandName(command)) + ":\n" + steps);
        // The names are read all, as is what counts or lists nodes; the rows of an insert come from the
        // caller.
        const bool counts = command == Get_Partitions;
        const bool readsAll = command == Get_Node_Names || command == Get_AUTO_Nodes_With_Versions || counts;
        EXPECT_EQ(steps.find("TEMP B-TREE") != std::string::npos, counts);
        const bool insertsValues = CommandName(command).substr(0, 4) == "Add_";
        EXPECT_EQ(steps.find("SCAN ") != std::string::npos, readsAll);
        EXPECT_EQ(steps.find("SEARCH ") != std::string::npos, !readsAll && !insertsValues);
    }
}

TEST(Commands, KeepTheirResultSetUntilItIsClosed) {
    const TestStore store;
    DataBase dataBase;
    ResultSet rows = dataBase.Query(Get_Node_Names, {});
    ExpectRaised(ResultSetOpen, {"Get_Node_Names"}, [&] { Perform(dataBase, Get_Node_Names, {}); });
    EXPECT_EQ(rows.Text("english_name"), "MSG");
    // Rows of other commands meanwhile, one of which an error ends.
    EXPECT_EQ(Perform(dataBase, Get_Max_NodeNumber, {"1", "2", "0"}, "Max_Number"), Texts{"250"});
    ExpectRaised(InvalidUseOfNull, {"NodeDescription", "Get_AUTO_Node"}, [&] {
        Perform(dataBase, Get_AUTO_Node, {"1", "2", "3", "9"}, "NodeDescription");
    });
    rows.MoveNext();
    EXPECT_EQ(rows.Text("English_Name"), "CMD");
    ExpectRaised(ColumnNotFound, {"Get_Node_Names", "Name"}, [&] { static_cast<void>(rows.Field("Name")); });
    rows.Close();
    // Another program puts the columns elsewhere.
    store.Execute("CREATE TABLE Laid AS SELECT English_Name, 'new' AS Own, ID FROM SR_Node_Type_Names;"
                  "DROP TABLE SR_Node_Type_Names; ALTER TABLE Laid RENAME TO SR_Node_Type_Names");
    EXPECT_EQ(dataBase.Query(Get_Node_Names, {}).Text("English_Name"), "MSG");
    EXPECT_EQ(dataBase.Query(Get_Node_Names, {}).Text("Own"), "new");
    EXPECT_EQ(store.Value("PRAGMA wal_checkpoint(TRUNCATE)"), "0|0|0") << "something still reads";
}

TEST(Commands, TellWhatTheStoreRefuses) {
    const TestStore store;
    DataBase dataBase;
    const std::string file = store.File().string();
    {
        SQLite::Database owner(file, SQLite::OPEN_READWRITE);
        owner.exec("PRAGMA locking_mode = EXCLUSIVE; BEGIN EXCLUSIVE; DELETE FROM Node_Type_Max");
        ExpectRaised(StoreFailure, {"database is locked", "Get_Node_Names", file},
                     [&] { Perform(dataBase, Get_Node_Names, {}); });
    }
    const auto add = [&](const char* sequence) {
        dataBase.Execute(Add_AUTO_PromptsNode, {1, 2, sequence, 0, 1, 1, "MSG"});
    };
    for (const char* sequence : {"1", "one", ""}) {
        ExpectRaised(sequence == std::string("1") ? DuplicateKey : StoreFailure,
                     {"Detail_AUTO_Prompts.SequenceNo", file}, [&] { add(sequence); });
    }
    EXPECT_NO_THROW(add("4"));
    ExpectRaised(InvalidProcedureCall, {"Delete_AUTO_PromptsNode", "3 parameters"}, [&] {
        dataBase.Execute(Delete_AUTO_PromptsNode, {1, 2});
    });
    {
        SQLite::Database other(file, SQLite::OPEN_READWRITE);
        other.exec("BEGIN IMMEDIATE");
        ExpectRaised(StoreFailure, {"locked", "Add_AUTO_PromptsNode", file}, [&] { add("5"); });
        EXPECT_EQ(Perform(dataBase, Get_Max_NodeNumber, {"1", "2", "0"}, "Max_Number"), Texts{"250"});
        EXPECT_NO_THROW(dataBase.Flush()) << "what was written lasts without a lock";
        const std::jthread letsGo([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(300));
            other.exec("COMMIT");
        });
        EXPECT_NO_THROW(add("5")) << "a lock that does not last is waited for";
    }
    // Another program's views and triggers may never end.
    const std::string endless = "(WITH RECURSIVE Endless(i) AS (SELECT 1 UNION ALL SELECT i FROM Endless)"
                                " SELECT MAX(i) FROM Endless)";
    store.Execute("CREATE TRIGGER Slow BEFORE INSERT ON Detail_AUTO_Prompts BEGIN SELECT " + endless +
                  "; END");
    ExpectRaised(StoreFailure, {"Stopped after 10 seconds", "Add_AUTO_PromptsNode", file}, [&] { add("6"); });
    store.Execute("DROP TRIGGER Slow");
    EXPECT_NO_THROW(add("6"));
}

TEST(Commands, KeepTheLogShort) {
    const TestStore store;
    DataBase dataBase;
    constexpr std::uintmax_t limit = 8192 * 4096;
    const auto write = [&](int commands) {
        for (int i = 0; i < commands; ++i) {
            dataBase.Execute(Update_Node_General_Pool, {i, "", 1, 2, 9, 8});
        }
        dataBase.Flush();
        return std::filesystem::file_size(store.File().string() + "-wal");
    };
    // One run of commands that is longer than what is kept, and what comes after it.
    const std::uintmax_t longest = write(10'000);
    EXPECT_GT(longest, limit);
    for (int saves = 0; saves < 3; ++saves) {
        EXPECT_LE(write(10'000), longest + longest / 50);
    }
    EXPECT_LE(write(1), limit);
}

TEST(Commands, ReadAReadOnlyStoreAndTellWhereTheyWouldWrite) {
    const TestStore store;
    // A store with a rollback journal needs no files beside it to be read.
    static_cast<void>(store.Rows("PRAGMA journal_mode = DELETE"));
    std::filesystem::permissions(store.Folder(), std::filesystem::perms(0755));
    std::filesystem::permissions(store.File(), std::filesystem::perms(0444));
    // Nothing is read-only to root, who becomes nobody.
    const uid_t self = geteuid();
    if (self == 0 && seteuid(65534) != 0) {
        GTEST_SKIP() << "root cannot become somebody else here";
    }
    {
        DataBase dataBase;
        EXPECT_EQ(Perform(dataBase, Get_Max_NodeNumber, {"1", "2", "0"}, "Max_Number"), Texts{"250"});
        ExpectRaised(StoreFailure, {"write the store's file and the folder", store.File().string()}, [&] {
            Perform(dataBase, Delete_AUTO_PromptsNode, {"1", "2", "1"});
        });
    }
    ASSERT_EQ(seteuid(self), 0);
}

TEST(Commands, NeitherFindNorMakeAStoreThatIsNotThere) {
    const TestStore store;
    DataBase patient;
    const auto expectNone = [&](ErrorNumber number) {
        ExpectRaised(number, {store.File().string(), "Get_Node_Names"},
                     [&] { Perform(patient, Get_Node_Names, {}); });
    };
    std::filesystem::remove(store.File());
    expectNone(StoreNotFound);
    EXPECT_TRUE(std::filesystem::is_empty(store.File().parent_path()));
    const std::string signature("SQLite format 3\0", 16);
    for (const std::string& bytes : {std::string(), std::string(5000, '\0'), signature + "and no more"}) {
        std::ofstream(store.File(), std::ios::binary) << bytes;
        expectNone(bytes.starts_with(signature) ? StoreFailure : StoreNotRecognized);
        EXPECT_EQ(std::filesystem::file_size(store.File()), bytes.size());
    }
    std::filesystem::remove(store.File());
    // The same connection finds the store once it is there.
    CreateStore(store.File(), StoreContent::Demo);
    EXPECT_EQ(store.Value("PRAGMA user_version"), "1");
    store.Execute("PRAGMA user_version = 2");
    expectNone(StoreNotRecognized);
    // The number of another program says nothing about the tables.
    store.Execute("PRAGMA application_id = 0");
    EXPECT_EQ(Perform(patient, Get_Max_NodeNumber, {"1", "2", "0"}, "Max_Number"), Texts{"250"});
}

} // namespace
} // namespace KAL_AUTO_Node
