#include "Scene.h"

#include "nodes/AutoNodeWriter.h"
#include "platform/RuntimeError.h"

#include <algorithm>

namespace KAL_AUTO_Node {

namespace {

// The tables whose rows belong to a node of a type.
struct TypeTables {
    int typeID;
    std::vector<const char*> names;
};

const std::array<TypeTables, 12> Tables = {{{0, {"Node_MSG"}},
                                            {1, {"Node_CMD", "Detail_CMD"}},
                                            {2, {"Node_TIME", "Detail_TIME"}},
                                            {3, {"Node_DATE", "Detail_DATE"}},
                                            {4, {"Node_XFER"}},
                                            {6, {"Node_DTMF", "Detail_DTMF_Prompts", "Detail_DTMF_Action"}},
                                            {7, {"Node_VOX", "Detail_VOX_Prompts", "Detail_VOX_Action"}},
                                            {8, {"Node_LIST", "Detail_LIST"}},
                                            {9, {"Node_AUTO", "Detail_AUTO_Prompts", "Detail_AUTO_Action"}},
                                            {12, {"Node_PAAS"}},
                                            {13, {"Node_TABLE", "Detail_TABLE_Action"}},
                                            {15, {"Node_DBN", "Detail_DBN_Prompts"}}}};

// What other programs leave in a node, and what has to be put back as it was.
constexpr const char* Oddities =
    "UPDATE Node_AUTO SET NodeDescription = CAST(X'436166E9201B5B316D' AS TEXT), DigitTimeout = NULL,"
    "       TerminatingDigit = NULL, RetryLimit = 99 WHERE ConfigID = 1 AND PartID = 2 AND NodeNumber = 1;"
    "UPDATE Node_General_Pool SET NodeDescription = NULL, NodeType = 'auto' || char(8238, 10)"
    " WHERE ConfigID = 1 AND PartID = 2 AND NodeTypeID = 9 AND NodeNumber = 1;"
    "UPDATE Detail_AUTO_Action SET DTMFRangeLow = NULL, NodeType = ''"
    " WHERE ConfigID = 1 AND PartID = 2 AND NodeMasterID = 1 AND SequenceNo = 1;"
    "UPDATE Detail_AUTO_Prompts SET SequenceNo = 1000 + SequenceNo"
    " WHERE ConfigID = 1 AND PartID = 2 AND NodeMasterID = 1";

constexpr int FurtherSaver = 9;

} // namespace

void CreateMissing(NodeSave& save) {
    std::vector<RequiredNode> nodes;
    for (const auto& [typeID, number] : MissingNodes) {
        nodes.push_back({"", typeID, number});
    }
    save.CreateMissing(nodes, SaveDate,
                       {[](const RequiredNode&) { return CreationAudience::Answer::CreateAll; },
                        [](const RequiredNode& node, Creation outcome) {
                            if (outcome != Creation::Created) {
                                throw std::runtime_error("a node of type " + std::to_string(node.key.typeID) +
                                                         " cannot be created");
                            }
                        },
                        [] { throw; }});
}

AutoNode Intended(AutoNode node, int saver, int rows) {
    const std::string name = "Saved by " + std::to_string(saver);
    node.label = name;
    node.settings.selectionTimeout = saver;
    for (Reference& branch : node.branches) {
        branch = {0, "MSG", saver, {}};
    }
    node.prompts.clear();
    node.actions.clear();
    for (int row = 1; row <= rows; ++row) {
        const Reference target{0, "MSG", saver * 3000 + row, {}};
        if (row % 2 == 0) {
            node.prompts.push_back({row / 2, target});
        } else {
            const std::string range = std::to_string(saver) + std::to_string(row);
            node.actions.push_back({row / 2 + 1, target, range, range});
        }
    }
    return node;
}

NodeContent IntendedContent(const NodeContent& before, int saver, int rows) {
    NodeContent content{Intended(*before.node, saver, rows), before.entry};
    content.entry->label = content.node->label;
    content.entry->dateModified = SaveDate;
    return content;
}

const char* NameOf(Journal journal) {
    return journal == Journal::WriteAhead ? "WAL" : journal == Journal::Rollback ? "rollback" : "server";
}

Scene::Scene(Journal journal, int rows) : rows_(rows) {
    {
        DataBase dataBase;
        const NodeContent demo = ReadContent(dataBase, Place);
        WriteAutoNode(dataBase, Place, Intended(*demo.node, 0, rows), "01/02/2003");
    }
    if (journal != Journal::Server) {
        store_.Execute(Oddities);
    }
    {
        DataBase dataBase;
        before_ = ReadContent(dataBase, Place);
        if (journal == Journal::Server) {
            static_cast<void>(History(dataBase).Prepare());
            return;
        }
    }
    const char* mode = journal == Journal::WriteAhead ? "WAL" : "DELETE";
    static_cast<void>(store_.Rows(std::string("PRAGMA journal_mode = ") + mode));
    std::filesystem::copy_file(File(), Original());
}

void Scene::Reset() {
    if (TestStore::OnServer()) {
        DataBase dataBase;
        WriteContent(dataBase, Place, before_);
        dataBase.Flush();
        store_.Execute("TRUNCATE Node_AUTO_Version");
        return;
    }
    for (const char* ending : {"", "-wal", "-shm", "-journal"}) {
        std::filesystem::remove(File().string() + ending);
    }
    std::filesystem::copy_file(Original(), File());
}

void Scene::Keep() {
    std::filesystem::copy_file(File(), Original(), std::filesystem::copy_options::overwrite_existing);
}

void Scene::Judge(Row& row) {
    try {
        JudgeNode(row);
        SaveAnew(row, false);
        RequireSound(row);
    } catch (const std::exception& error) {
        row.Wrong(error.what());
    }
}

void Scene::JudgeNode(Row& row) {
    Saver saver(Place);
    const NodeContent found = saver.Read();
    const auto mark = saver.Versions().Unfinished(Place);
    const auto versions = saver.Versions().Versions(Place);
    if (found == before_) {
        if (mark) {
            row.Wrong("a mark on a node that is as before");
        } else if (!versions.empty() && versions.front().state == VersionState::Finished &&
                   versions.front().work != "put back") {
            row.Wrong("as before, and the history says: " + StatesOf(saver.Versions()));
        }
        ++row.asBefore;
    } else if (!mark) {
        const bool finished = !versions.empty() && versions.front().state == VersionState::Finished;
        if (found != IntendedContent(before_, 1, rows_)) {
            row.Unseen("half saved, and the history says: " + StatesOf(saver.Versions()));
        } else if (!finished) {
            row.Wrong("whole, and the history says: " + StatesOf(saver.Versions()));
        }
        ++row.whole;
    } else {
        saver.PutBack();
        if (saver.Read() != before_ || saver.Versions().Unfinished(Place)) {
            row.Lost("not put back as it was");
        }
        ++row.putBack;
    }
}

void Scene::RequireSound(Row& row) const {
    if (const std::string check = store_.Value("PRAGMA integrity_check"); check != "ok") {
        row.Lost(check);
    }
}

void Scene::SaveAnew(Row& row, bool creating) const {
    Saver saver(Place);
    const AutoNode loaded = saver.Load();
    const auto obstacle = saver.Save(Intended(loaded, FurtherSaver, rows_), [&](NodeSave& save) {
        if (creating) {
            CreateMissing(save);
        }
    });
    if (obstacle) {
        row.Wrong("a further save is kept from beginning: " + StatesOf(saver.Versions()));
    } else if (saver.Read() != IntendedContent(before_, FurtherSaver, rows_) ||
               saver.Versions().Unfinished(Place)) {
        row.Lost("a further save");
    }
}

void Scene::JudgeCreations(Row& row, bool puttingBack) {
    try {
        if (puttingBack) {
            JudgeNode(row);
        }
        SaveAnew(row, true);
        SQLite::Database store(File().string(), SQLite::OPEN_READWRITE, 2000);
        for (const NodeKey& node : MissingNodes) {
            if (const auto what = Incomplete(store, node)) {
                row.Lost(*what);
            }
        }
        if (store_.Value("SELECT COUNT(*) FROM Node_Creation") != "0") {
            row.Wrong("creations are left begun");
        }
        RequireSound(row);
    } catch (const std::exception& error) {
        row.Wrong(std::string("a node can never be created: ") + error.what());
    }
}

std::optional<std::string> Scene::Incomplete(SQLite::Database& store, const NodeKey& node) {
    const std::string number = std::to_string(node.number);
    if (TestStore::Rows(
            store, "SELECT 1 FROM Node_General_Pool WHERE ConfigID = 1 AND PartID = 2 AND NodeTypeID = " +
                       std::to_string(node.typeID) + " AND NodeNumber = " + number)
            .empty()) {
        return "a node of type " + std::to_string(node.typeID) + " is not registered";
    }
    for (const std::string table : std::ranges::find(Tables, node.typeID, &TypeTables::typeID)->names) {
        const std::string key = table.starts_with("Detail_") ? "NodeMasterID" : "NodeNumber";
        std::string columns;
        for (const std::string& column :
             TestStore::Rows(store, "SELECT name FROM pragma_table_info('" + table +
                                        "') WHERE name NOT IN ('" + key + "', 'VexoFilename')")) {
            columns += (columns.empty() ? "" : ", ") + column;
        }
        const auto rowsOf = [&](const std::string& owner) {
            return TestStore::Rows(store, "SELECT " + columns + " FROM " + table +
                                              " WHERE ConfigID = 1 AND PartID = 2 AND " + key + " = " +
                                              owner);
        };
        const auto made = rowsOf(number);
        const auto templates = rowsOf("0");
        if (made != templates || templates.empty()) {
            return table + " has " + std::to_string(made.size()) + " rows of " + number + ", its template " +
                   std::to_string(templates.size());
        }
    }
    return std::nullopt;
}

std::string StatesOf(History& history) {
    std::string states;
    for (const Version& version : history.Versions(Place)) {
        states += std::to_string(version.number) + ' ' + version.work + ' ' + version.state + "; ";
    }
    return states.empty() ? "nothing" : states;
}

} // namespace KAL_AUTO_Node
