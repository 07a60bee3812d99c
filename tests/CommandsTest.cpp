#include "Performing.h"

#include <map>
#include <set>

namespace KAL_AUTO_Node {
namespace {

using enum Command;
using enum ErrorNumber;
using RowSet = std::multiset<std::string>;

// A server tells names in lower case.
struct CaseLess {
    bool operator()(const std::string& a, const std::string& b) const {
        return strcasecmp(a.c_str(), b.c_str()) < 0;
    }
};

using Values = std::map<std::string, std::string, CaseLess>; // by column

Texts Joined(Texts values, const Texts& more) {
    values.insert(values.end(), more.begin(), more.end());
    return values;
}

// A table and a key to its rows, of which the values 1, 2, 3 and so on are sought. It holds rows beside them:
// they differ in one value of the key each, or have two exchanged.
struct Table {
    Table(const TestStore& in, std::string called, const Texts& key)
        : store(in), name(std::move(called)), columns(store.Columns(name)) {
        store.Execute("DELETE FROM " + name);
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
        store.Execute("INSERT INTO " + name + " VALUES (" + Fields(row) + ')');
    }

    // The rows as they would be with some values replaced.
    [[nodiscard]] RowSet Rows(const std::string& condition = "TRUE", const Values& replaced = {}) const {
        const Texts rows = store.Rows("SELECT " + Fields(replaced) + " FROM " + name + " WHERE " + condition);
        return {rows.begin(), rows.end()};
    }

    [[nodiscard]] std::string Fields(const Values& replaced) const {
        std::string fields;
        for (const std::string& column : columns) {
            const auto value = replaced.find(column);
            fields += (fields.empty() ? "" : ", ") +
                      (value == replaced.end() ? column : '\'' + value->second + '\'');
        }
        return fields;
    }

    const TestStore& store;
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
        ExpectRaised(DuplicateKey, {tableName, name, store.Place()},
                     [&] { Perform(dataBase, command, parameters); });
        EXPECT_EQ(table.Rows(), rows) << "over an existing node";
    }
    EXPECT_EQ(next, tables.size());
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
        store.Execute("CREATE TABLE Laid AS SELECT * FROM " + name + " ORDER BY " + column +
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
    if (!TestStore::OnServer()) {
        EXPECT_EQ(store.Value("PRAGMA wal_checkpoint(TRUNCATE)"), "0|0|0") << "something still reads";
    }
}

} // namespace
} // namespace KAL_AUTO_Node
