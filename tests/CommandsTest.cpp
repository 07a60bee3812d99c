#include "TestStore.h"
#include "platform/RuntimeError.h"
#include "store/DataBase.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <sstream>
#include <unistd.h>
#include <utility>

namespace KAL_AUTO_Node {
namespace {

using enum Command;
using enum ErrorNumber;
using Texts = std::vector<std::string>;

// A command's parameters are written out where it is called; here a table holds them.
template <std::size_t Count = 0, class Use>
auto WithParameters(const Texts& values, Use use) {
    if (values.size() == Count) {
        return [&]<std::size_t... I>(std::index_sequence<I...>) {
            return use(Parameters{Parameter(values[I])...});
        }
        (std::make_index_sequence<Count>());
    }
    if constexpr (Count < 30) {
        return WithParameters<Count + 1>(values, use);
    }
    throw std::length_error("more parameters than any command takes");
}

void Perform(DataBase& dataBase, Command command, const Texts& values) {
    WithParameters(values, [&](Parameters parameters) { dataBase.Execute(command, parameters); });
}

// One column of all the rows.
Texts Read(DataBase& dataBase, Command command, const Texts& values, std::string_view column) {
    return WithParameters(values, [&](Parameters parameters) {
        Texts fields;
        for (ResultSet rows = dataBase.Query(command, parameters); !rows.AtEnd(); rows.MoveNext()) {
            fields.emplace_back(rows.Field(column).value_or("NULL"));
        }
        return fields;
    });
}

testing::AssertionResult Raises(ErrorNumber number, const Texts& told, const std::function<void()>& use) {
    try {
        use();
    } catch (const RuntimeError& error) {
        const std::string description = error.what();
        for (const std::string& text : told) {
            if (description.find(text) == std::string::npos) {
                return testing::AssertionFailure() << "\"" << description << "\" does not tell " << text;
            }
        }
        return error.Number() == number
                   ? testing::AssertionSuccess()
                   : testing::AssertionFailure() << static_cast<int>(error.Number()) << ": " << description;
    }
    return testing::AssertionFailure() << "nothing was raised";
}

// A row's values as SQL literals, by column.
using Record = std::map<std::string, std::string>;

Record Changed(Record row, const Record& changes) {
    for (const auto& [column, value] : changes) {
        row[column] = value;
    }
    return row;
}

class Table {
  public:
    Table(const TestStore& store, std::string name) : store_(store), name_(std::move(name)) {
        const std::string info = " FROM pragma_table_info('" + name_ + "')";
        columns_ = store.Rows("SELECT name" + info);
        isText_ = store.Rows("SELECT name" + info + " WHERE type = 'TEXT'");
        isNullable_ = store.Rows("SELECT name" + info + " WHERE NOT \"notnull\"");
    }

    [[nodiscard]] const Texts& Columns() const { return columns_; }

    [[nodiscard]] bool IsText(const std::string& column) const {
        return std::ranges::count(isText_, column) > 0;
    }

    // A new row, with values that no other row and no other column has.
    [[nodiscard]] Record Row(const Record& given) {
        Record row;
        for (const std::string& column : columns_) {
            const std::string value = std::to_string(next_++);
            row[column] = IsText(column) ? "'it''s " + value + "'" : value;
        }
        return Changed(row, given);
    }

    [[nodiscard]] Record WithNulls(Record row) const {
        for (const std::string& column : isNullable_) {
            row[column] = "NULL";
        }
        return row;
    }

    // Rows that differ from a key in one column each, or have values of two columns exchanged.
    [[nodiscard]] std::vector<Record> Around(const Texts& key, const Texts& values) {
        std::vector<Record> rows;
        for (std::size_t i = 0; i < key.size(); ++i) {
            Texts other = values;
            other[i] = "70";
            Texts exchanged = values;
            std::swap(exchanged[i], exchanged[(i + 1) % key.size()]);
            rows.push_back(Row(Pairs(key, other)));
            rows.push_back(Row(Pairs(key, exchanged)));
        }
        return rows;
    }

    static Record Pairs(const Texts& columns, const Texts& values) {
        Record row;
        for (std::size_t i = 0; i < columns.size(); ++i) {
            row[columns[i]] = values.at(i);
        }
        return row;
    }

    // Without the key the rows stand in the order in which they were written.
    void Fill(const std::vector<Record>& rows, bool keyed = true) const {
        std::string sql = "BEGIN;";
        if (!keyed) {
            sql += "CREATE TABLE Plain AS SELECT * FROM " + name_ + " WHERE 0; DROP TABLE " + name_ +
                   "; ALTER TABLE Plain RENAME TO " + name_ + ';';
        }
        sql += "DELETE FROM " + name_ + ';';
        for (const Record& row : rows) {
            sql += "INSERT INTO " + name_ + " VALUES (" + Joined(row, ", ") + ");";
        }
        store_.Execute(sql + "COMMIT");
    }

    [[nodiscard]] testing::AssertionResult Holds(const std::vector<Record>& rows) const {
        std::string fields;
        for (const std::string& column : columns_) {
            fields += (fields.empty() ? "quote(" : ", quote(") + column + ')';
        }
        Texts stored = store_.Rows("SELECT " + fields + " FROM " + name_);
        Texts expected;
        std::ranges::transform(rows, std::back_inserter(expected),
                               [this](const Record& row) { return Joined(row, "|"); });
        std::ranges::sort(stored);
        std::ranges::sort(expected);
        return stored == expected ? testing::AssertionSuccess()
                                  : testing::AssertionFailure()
                                        << testing::PrintToString(stored) << "\ninstead of\n"
                                        << testing::PrintToString(expected);
    }

  private:
    [[nodiscard]] std::string Joined(const Record& row, const char* separator) const {
        std::string line;
        for (const std::string& column : columns_) {
            line += (line.empty() ? "" : separator) + row.at(column);
        }
        return line;
    }

    const TestStore& store_;
    std::string name_;
    Texts columns_;
    Texts isText_;
    Texts isNullable_;
    int next_ = 100;
};

TEST(Commands, AreAllThereWithTheirParameters) {
    const auto numbers = [](std::size_t count) {
        Texts values;
        while (values.size() < count) {
            values.push_back(std::to_string(values.size() + 1));
        }
        return values;
    };
    std::istringstream commands(
        "Get_Node_Type_can_contain_nodes 2 Get_Node_Names 0 Get_Max_NodeNumber 3 Get_DTMF_Node 4 "
        "Get_DTMF_PromptsNode 3 Get_DTMF_ActionsNode 3 Get_Description 4 Get_All_DTMF_Nodes 3 "
        "Delete_DTMF_PromptsNode 3 Delete_DTMF_ActionsNode 3 Update_DTMF_Node 21 Add_DTMF_PromptsNode 7 "
        "Add_DTMF_ActionsNode 8 Duplicate_MSG_NODE 5 Duplicate_CMD_NODE 4 Duplicate_Detail_CMD_NODE 4 "
        "Duplicate_TIME_Node 4 Duplicate_Detail_TIME_Node 4 Duplicate_DATE_Node 4 "
        "Duplicate_Detail_DATE_Node 4 Duplicate_XFER_Node 4 Duplicate_DTMF_Node 4 "
        "Duplicate_DetailPrompts_DTMF_Node 4 Duplicate_DetailActions_DTMF_Node 4 Duplicate_VOX_Node 4 "
        "Duplicate_DetailPrompts_VOX_Node 4 Duplicate_DetailActions_VOX_Node 4 Duplicate_LIST_Node 4 "
        "Duplicate_Detail_LIST_Node 4 Duplicate_AUTO_Node 4 Duplicate_DetailPrompts_AUTO_Node 4 "
        "Duplicate_DetailActions_AUTO_Node 4 Duplicate_PAAS_Node 4 Duplicate_TABLE_Node 4 "
        "Duplicate_DetailActions_TABLE_Node 4 Duplicate_Node_In_General_Pool 6 "
        "Update_Node_General_Pool 6 Get_AUTO_Node 4 Get_AUTO_PromptsNode 3 Get_AUTO_ActionsNode 3 "
        "Get_All_AUTO_Nodes 3 Delete_AUTO_PromptsNode 3 Delete_AUTO_ActionsNode 3 Update_AUTO_Node 26 "
        "Add_AUTO_PromptsNode 7 Add_AUTO_ActionsNode 9 Duplicate_DBN_Node 4 "
        "Duplicate_DetailPrompts_DBN_Node 4");
    const TestStore store(StoreContent::Empty);
    DataBase dataBase;
    std::string name;
    std::size_t count = 0;
    std::size_t known = 0;
    for (; commands >> name >> count; ++known) {
        const auto command = static_cast<Command>(known);
        ASSERT_EQ(CommandName(command), name);
        EXPECT_NO_THROW(Perform(dataBase, command, numbers(count))) << name;
        EXPECT_TRUE(
            Raises(InvalidProcedureCall, {name}, [&] { Perform(dataBase, command, numbers(count + 1)); }));
    }
    EXPECT_EQ(known, CommandCount);
}

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
    auto next = tables.begin();
    for (std::size_t i = 0; i < CommandCount; ++i) {
        const auto command = static_cast<Command>(i);
        const std::string name(CommandName(command));
        if (!name.starts_with("Duplicate_")) {
            continue;
        }
        SCOPED_TRACE(name);
        ASSERT_NE(next, tables.end());
        const auto& [tableName, columnCount] = *next++;
        Table table(store, tableName);
        EXPECT_EQ(table.Columns().size(), columnCount);
        const std::string number = name.find("Detail") == std::string::npos ? "NodeNumber" : "NodeMasterID";
        const Texts key = {"ConfigID", "PartID", number};
        // What is looked for is configuration, partition and number; only the register also goes by the type.
        const Record source = table.Row(Table::Pairs(key, {"1", "2", "3"}));
        const Record withNulls = table.WithNulls(table.Row(Table::Pairs(key, {"1", "2", "3"})));
        std::vector<Record> rows = table.Around(key, {"1", "2", "3"});
        rows.insert(rows.end(), {source, withNulls});
        table.Fill(rows);

        const bool pool = command == Duplicate_Node_In_General_Pool;
        Record replaced = {{number, "90"}};
        Texts destination = {"90"};
        if (pool || command == Duplicate_MSG_NODE) {
            replaced[pool ? "DateModified" : "VexoFilename"] = "'11/24/26'";
            destination.emplace_back("11/24/26");
        }
        const auto copy = [&](const char* from, const Record& row) {
            Texts values = destination;
            values.insert(values.end(), {"1", "2", from});
            if (pool) {
                values.push_back(row.at("NodeTypeID"));
            }
            Perform(dataBase, command, values);
        };
        EXPECT_NO_THROW(copy("77", source));
        EXPECT_TRUE(table.Holds(rows)) << "without a source";
        copy("3", source);
        if (pool) {
            copy("3", withNulls);
        }
        rows.insert(rows.end(), {Changed(source, replaced), Changed(withNulls, replaced)});
        EXPECT_TRUE(table.Holds(rows));
        EXPECT_TRUE(Raises(StoreFailure, {tableName + '.' + number, name, store.File().string()},
                           [&] { copy("3", source); }));
        EXPECT_TRUE(table.Holds(rows)) << "over an existing node";
    }
    EXPECT_EQ(next, tables.end());
}

TEST(Commands, WriteEveryParameterIntoItsColumn) {
    const TestStore store(StoreContent::Empty);
    DataBase dataBase;
    const Texts key = {"ConfigID", "PartID", "NodeTypeID", "NodeNumber"};
    const Texts values = {"1", "2", "9", "5"};
    // An update names the columns that it sets; a row that is added has them all, in the order of the table.
    const auto write = [&](Command command, const char* tableName, const Texts& set = {}) {
        SCOPED_TRACE(CommandName(command));
        Table table(store, tableName);
        const bool update = !set.empty();
        std::vector<Record> rows = update ? table.Around(key, values) : std::vector<Record>();
        rows.push_back(table.Row(update ? Table::Pairs(key, values) : Record()));
        table.Fill(rows);
        Texts parameters;
        Record written;
        for (const std::string& column : update ? set : table.Columns()) {
            const std::string number = std::to_string(parameters.size() + 10);
            parameters.push_back(table.IsText(column) ? "00" + number : number);
            written[column] = table.IsText(column) ? "'00" + number + "'" : number;
        }
        if (update) {
            rows.back() = Changed(rows.back(), written);
            parameters.insert(parameters.end(), values.begin(), values.end());
        } else {
            rows.push_back(written);
        }
        Perform(dataBase, command, parameters);
        EXPECT_TRUE(table.Holds(rows));
    };
    write(Update_AUTO_Node, "Node_AUTO",
          {"NumberOfDigits",    "TerminatingDigit",  "SelectionTimeout",  "DigitTimeout",
           "RetryLimit",        "TimeoutNodeType",   "TimeoutNodeNumber", "InvalidNodeType",
           "InvalidNodeNumber", "AbortNodeType",     "AbortNodeNumber",   "NodeType",
           "NodeDescription",   "TimeoutNodeTypeID", "InvalidNodeTypeID", "AbortNodeTypeID",
           "StarNodeTypeID",    "PoundNodeTypeID",   "StarNodeType",      "StarNodeNumber",
           "PoundNodeType",     "PoundNodeNumber"});
    const Texts digits = Table(store, "Node_DTMF").Columns();
    write(Update_DTMF_Node, "Node_DTMF", Texts(digits.begin() + 4, digits.end()));
    write(Update_Node_General_Pool, "Node_General_Pool", {"NodeDescription", "DateModified"});
    write(Add_AUTO_PromptsNode, "Detail_AUTO_Prompts");
    write(Add_AUTO_ActionsNode, "Detail_AUTO_Action");
    write(Add_DTMF_PromptsNode, "Detail_DTMF_Prompts");
    write(Add_DTMF_ActionsNode, "Detail_DTMF_Action");
}

TEST(Commands, ReadAndDeleteByKeyAndReadInOrder) {
    const TestStore store(StoreContent::Empty);
    DataBase dataBase;
    const auto use = [&](std::initializer_list<Command> commands, const char* tableName, const Texts& key,
                         const std::string& column, const Texts& found) {
        Table table(store, tableName);
        const Texts values = {"1", "2", "9", "4"};
        const Texts parameters(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(key.size()));
        const std::vector<Record> others = table.Around(key, parameters);
        std::vector<Record> rows = others;
        for (const std::string& value : found) {
            rows.push_back(table.Row(Changed(Table::Pairs(key, parameters), {{column, value}})));
        }
        // So that nothing but the command itself puts them in order.
        std::ranges::reverse(rows);
        table.Fill(rows, false);
        for (const Command command : commands) {
            SCOPED_TRACE(CommandName(command));
            if (CommandName(command).starts_with("Delete_")) {
                Perform(dataBase, command, parameters);
                EXPECT_TRUE(table.Holds(others));
            } else {
                EXPECT_EQ(Read(dataBase, command, parameters, column), found);
            }
        }
    };
    const Texts owner = {"ConfigID", "PartID", "NodeMasterID"};
    const Texts type = {"ConfigID", "PartID", "NodeTypeID"};
    const Texts node = {"ConfigID", "PartID", "NodeNumber", "NodeTypeID"};
    const Texts pool = {"ConfigID", "PartID", "NodeTypeID", "NodeNumber"};
    const Texts numbers = {"1", "2", "10", "33"}; // of which texts would stand in another order
    use({Get_AUTO_Node}, "Node_AUTO", node, "RetryLimit", {"3"});
    use({Get_DTMF_Node}, "Node_DTMF", node, "RetryLimit", {"3"});
    use({Get_Description}, "Node_General_Pool", pool, "NodeDescription", {"3"});
    use({Get_Max_NodeNumber}, "Node_Type_Max", {"Config_ID", "PartitionID", "NodeType_ID"}, "Max_Number",
        {"3"});
    use({Get_All_AUTO_Nodes}, "Node_AUTO", type, "NodeNumber", numbers);
    use({Get_All_DTMF_Nodes}, "Node_DTMF", type, "NodeNumber", numbers);
    use({Get_Node_Names}, "SR_Node_Type_Names", {}, "ID", numbers);
    use({Get_Node_Type_can_contain_nodes}, "SR_Node_Type_can_contain_Node_Type",
        {"Parent_Node_Type_ID", "Set_ID"}, "Child_Node_Type_ID", numbers);
    use({Get_AUTO_PromptsNode, Delete_AUTO_PromptsNode}, "Detail_AUTO_Prompts", owner, "SequenceNo", numbers);
    use({Get_AUTO_ActionsNode, Delete_AUTO_ActionsNode}, "Detail_AUTO_Action", owner, "SequenceNo", numbers);
    use({Get_DTMF_PromptsNode, Delete_DTMF_PromptsNode}, "Detail_DTMF_Prompts", owner, "SequenceNo", numbers);
    use({Get_DTMF_ActionsNode, Delete_DTMF_ActionsNode}, "Detail_DTMF_Action", owner, "SequenceNo", numbers);
}

TEST(Commands, StoreAnyTextAsItIs) {
    const TestStore store;
    DataBase dataBase;
    for (const std::string& label :
         {std::string("'; DROP TABLE Node_AUTO;--"), std::string("\"%_:Given_PartID ?1"),
          std::string("Żółć 日本 🎵"), std::string("two\r\nlines\t"), std::string(),
          std::string(10'000, '\'')}) {
        dataBase.Execute(Update_Node_General_Pool, {label, "11/24/26", 1, 2, 9, 1});
        EXPECT_EQ(Read(dataBase, Get_Description, {"1", "2", "9", "1"}, "NodeDescription"), Texts{label});
        EXPECT_EQ(store.Value(
                      "SELECT NodeDescription FROM Node_General_Pool WHERE PartID = 2 AND NodeTypeID = 9 AND "
                      "NodeNumber = 1"),
                  label);
    }
}

TEST(Commands, KeepTheirResultSetUntilItIsClosed) {
    const TestStore store;
    DataBase dataBase;
    const auto names = [&] { return dataBase.Query(Get_Node_Names, {}); };
    {
        ResultSet rows = names();
        EXPECT_TRUE(Raises(ResultSetOpen, {"Get_Node_Names"}, [&] { static_cast<void>(names()); }));
        EXPECT_EQ(rows.Text("english_name"), "MSG");
        // Rows of other commands meanwhile.
        EXPECT_EQ(Read(dataBase, Get_Max_NodeNumber, {"1", "2", "0"}, "Max_Number"), Texts{"250"});
        rows.MoveNext();
        EXPECT_EQ(rows.Text("English_Name"), "CMD");
        EXPECT_TRUE(Raises(ColumnNotFound, {"Get_Node_Names", "Name"},
                           [&] { static_cast<void>(rows.Field("Name")); }));
        rows.Close();
        EXPECT_EQ(names().Text("English_Name"), "MSG");
    }
    // One that an error ends, and one without rows.
    EXPECT_TRUE(Raises(InvalidUseOfNull, {"NodeDescription", "Get_AUTO_Node"}, [&] {
        static_cast<void>(dataBase.Query(Get_AUTO_Node, {1, 2, 3, 9}).Text("NodeDescription"));
    }));
    EXPECT_FALSE(dataBase.Query(Get_AUTO_Node, {1, 2, 3, 9}).AtEnd());
    EXPECT_TRUE(dataBase.Query(Get_AUTO_Node, {1, 2, 25, 9}).AtEnd());
    EXPECT_EQ(store.Value("PRAGMA wal_checkpoint(TRUNCATE)"), "0|0|0") << "something still reads";
}

TEST(Commands, TellWhatTheStoreRefuses) {
    const TestStore store;
    DataBase dataBase;
    const std::string file = store.File().string();
    const auto add = [&](const char* sequence) {
        dataBase.Execute(Add_AUTO_PromptsNode, {1, 2, sequence, 0, 1, 1, "MSG"});
    };
    EXPECT_TRUE(Raises(StoreFailure, {"Detail_AUTO_Prompts.SequenceNo", file}, [&] { add("1"); }));
    EXPECT_TRUE(
        Raises(StoreFailure, {"Detail_AUTO_Prompts.SequenceNo", "INTEGER", file}, [&] { add("one"); }));
    EXPECT_TRUE(Raises(StoreFailure, {"Detail_AUTO_Prompts.SequenceNo", file}, [&] { add(""); }));
    EXPECT_NO_THROW(add("4"));
    store.Execute("DROP TABLE Detail_AUTO_Prompts");
    EXPECT_TRUE(
        Raises(StoreFailure, {"Detail_AUTO_Prompts", "Add_AUTO_PromptsNode", file}, [&] { add("5"); }));
}

void ReadNames(ErrorNumber number, const TestStore& store) {
    DataBase dataBase;
    EXPECT_TRUE(Raises(number, {store.File().string(), "Get_Node_Names"},
                       [&] { static_cast<void>(dataBase.Query(Get_Node_Names, {})); }));
}

TEST(Commands, NeitherFindNorMakeAStoreThatIsNotThere) {
    const TestStore store;
    const auto folder = store.File().parent_path();
    const auto content = [&] {
        return std::distance(std::filesystem::directory_iterator(folder),
                             std::filesystem::directory_iterator());
    };
    std::filesystem::remove(store.File());
    DataBase patient;
    ReadNames(StoreNotFound, store);
    EXPECT_EQ(content(), 0);
    for (const std::string& bytes :
         {std::string(), std::string("Standard Jet DB"), std::string(5000, '\0')}) {
        std::ofstream(store.File(), std::ios::binary) << bytes;
        ReadNames(StoreNotRecognized, store);
        EXPECT_EQ(std::filesystem::file_size(store.File()), bytes.size());
    }
    std::ofstream(store.File(), std::ios::binary)
        << std::string("SQLite format 3\0", 16) << std::string(5000, 'x');
    ReadNames(StoreFailure, store);
    EXPECT_EQ(content(), 1);
    std::filesystem::remove(store.File());
    std::filesystem::create_directory(store.File());
    ReadNames(StoreNotRecognized, store);

    // The same connection finds the store once it is there.
    EXPECT_THROW(static_cast<void>(patient.Query(Get_Node_Names, {})), RuntimeError);
    std::filesystem::remove_all(folder);
    ReadNames(StoreNotFound, store);
    EXPECT_FALSE(std::filesystem::exists(folder));
    CreateStore(store.File(), StoreContent::Demo);
    EXPECT_EQ(patient.Query(Get_Node_Names, {}).Text("ID"), "0");
}

TEST(Commands, TellThatAnotherProgramLocksTheStore) {
    const TestStore store;
    DataBase dataBase;
    const auto remove = [&] { dataBase.Execute(Delete_AUTO_PromptsNode, {1, 2, 1}); };
    {
        SQLite::Database other(store.File().string(), SQLite::OPEN_READWRITE);
        other.exec("PRAGMA locking_mode = EXCLUSIVE; BEGIN EXCLUSIVE; DELETE FROM Node_AUTO; COMMIT");
        EXPECT_TRUE(
            Raises(StoreFailure, {"locked", "Delete_AUTO_PromptsNode", store.File().string()}, remove));
    }
    EXPECT_NO_THROW(remove());
    {
        SQLite::Database other(store.File().string(), SQLite::OPEN_READWRITE);
        other.exec("BEGIN IMMEDIATE");
        EXPECT_TRUE(Raises(StoreFailure, {"locked", store.File().string()}, remove));
        EXPECT_EQ(Read(dataBase, Get_Max_NodeNumber, {"1", "2", "0"}, "Max_Number"), Texts{"250"});
    }
    EXPECT_NO_THROW(remove());
}

TEST(Commands, RefuseToWriteAProtectedStore) {
    const TestStore store;
    using std::filesystem::perms;
    store.Execute("PRAGMA journal_mode = DELETE");
    auto folder = store.File();
    for (int depth = 0; depth < 4; ++depth) {
        folder = folder.parent_path();
        std::filesystem::permissions(folder, perms(0755));
    }
    // Root may do as it likes with any file, so another user has to try.
    const bool root = geteuid() == 0;
    const auto asUser = [&](const std::function<void()>& use) {
        std::error_code unreachable;
        const bool can = !root || (seteuid(65534) == 0 && std::filesystem::exists(store.File(), unreachable));
        if (can) {
            use();
        }
        if (root && seteuid(0) != 0) {
            FAIL() << "no way back";
        }
        if (!can) {
            GTEST_SKIP() << "no other user can try";
        }
    };
    std::filesystem::permissions(store.File(), perms(0));
    asUser([&] { ReadNames(StoreFailure, store); });
    std::filesystem::permissions(store.File(), perms(0444));
    asUser([&] {
        DataBase dataBase;
        EXPECT_EQ(Read(dataBase, Get_Max_NodeNumber, {"1", "2", "0"}, "Max_Number"), Texts{"250"});
        EXPECT_TRUE(Raises(StoreFailure, {"readonly", store.File().string()}, [&] {
            dataBase.Execute(Delete_AUTO_PromptsNode, {1, 2, 1});
        }));
    });
    EXPECT_EQ(store.Value("SELECT COUNT(*) FROM Detail_AUTO_Prompts WHERE PartID = 2 AND NodeMasterID = 1"),
              "3");
}

} // namespace
} // namespace KAL_AUTO_Node
