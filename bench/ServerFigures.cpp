// Loading and saving a node on a server, each beside a program on the client library alone, which sends the
// same statements with the same values, prepared before, in the fewest ways that give the same, and copies
// every value it gets. ServerFigures LINK [TURNS], where LINK names a demo store on a server of the bench's
// own.

#include "nodes/AutoNodeReader.h"
#include "nodes/AutoNodeWriter.h"
#include "store/Batch.h"
#include "store/CreateServerStore.h"
#include "store/PortableSql.h"
#include "store/StoreFormat.h"
#include "testing/Saver.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <iostream>
#include <libpq-fe.h>
#include <map>
#include <memory>
#include <stdexcept>
#include <unistd.h>

namespace KAL_AUTO_Node {
namespace {

constexpr NodePlace Place{{1, 2}, 8};
constexpr const char* Date = "11/25/2026";

using Values = std::vector<std::string>;

struct Sent {
    std::string sql;
    Values values;
};

// The floor.
class RawServer {
  public:
    explicit RawServer(const std::string& address) : connection_(PQconnectdb(address.c_str()), &PQfinish) {
        if (PQstatus(connection_.get()) != CONNECTION_OK || PQenterPipelineMode(connection_.get()) == 0) {
            throw std::runtime_error(PQerrorMessage(connection_.get()));
        }
    }

    // One way to the server and back.
    void RoundTrip(const std::vector<Sent>& all) {
        std::size_t results = all.size();
        for (const auto& [sql, values] : all) {
            auto& name = names_[sql];
            if (name.empty()) {
                name = 'r';
                name += std::to_string(names_.size());
                PQsendPrepare(connection_.get(), name.c_str(), sql.c_str(), 0, nullptr);
                ++results;
            }
            std::vector<const char*> texts;
            for (const std::string& value : values) {
                texts.push_back(value.c_str());
            }
            PQsendQueryPrepared(connection_.get(), name.c_str(), static_cast<int>(texts.size()), texts.data(),
                                nullptr, nullptr, 0);
        }
        PQpipelineSync(connection_.get());
        copied_.clear();
        for (; results > 0; --results) {
            Take(PQgetResult(connection_.get()));
            PQgetResult(connection_.get());
        }
        Take(PQgetResult(connection_.get()));
    }

  private:
    void Take(PGresult* result) {
        const std::unique_ptr<PGresult, void (*)(PGresult*)> owned(result, &PQclear);
        const auto status = PQresultStatus(result);
        if (status != PGRES_TUPLES_OK && status != PGRES_COMMAND_OK && status != PGRES_PIPELINE_SYNC) {
            throw std::runtime_error(PQresultErrorMessage(result));
        }
        for (int row = 0; row < PQntuples(result); ++row) {
            for (int column = 0; column < PQnfields(result); ++column) {
                copied_.append(PQgetvalue(result, row, column),
                               static_cast<std::size_t>(PQgetlength(result, row, column)));
            }
        }
    }

    std::unique_ptr<PGconn, void (*)(PGconn*)> connection_;
    std::map<std::string, std::string> names_;
    std::string copied_;
};

Sent Of(Command command, Parameters parameters) {
    Sent sent{Numbered(CommandText(command)).sql, {}};
    for (const auto& value : ValuesOf(parameters)) {
        sent.values.push_back(value.value_or(""));
    }
    return sent;
}

// The statements for the node in the fewest ways: a load has to know what it refers to before it asks for
// labels; a save reads, under its locks, what is stored and which nodes are there, and then writes all.
struct Ways {
    std::vector<std::vector<Sent>> load;
    std::vector<std::vector<Sent>> save;
};

Ways WaysOf(const AutoNode& node) {
    const Partition partition = Place.partition;
    const std::vector<Sent> content = {Of(Command::Get_AUTO_Node, {Place, AutoType}),
                                       Of(Command::Get_AUTO_PromptsNode, {Place}),
                                       Of(Command::Get_AUTO_ActionsNode, {Place})};
    std::map<NodeKey, Sent> labels;
    const auto addLabel = [&](const Reference& target) {
        const NodeKey to{target.typeID, target.number};
        labels.insert({to, Of(Command::Get_Description, {partition, to})});
    };
    std::vector<Sent> writes = {Of(Command::Delete_AUTO_PromptsNode, {Place}),
                                Of(Command::Delete_AUTO_ActionsNode, {Place})};
    const auto& b = node.branches;
    const auto& s = node.settings;
    writes.push_back(
        Of(Command::Update_AUTO_Node,
           {s.numberOfDigits, s.terminatingDigit, s.selectionTimeout, s.digitTimeout, s.retryLimit,
            b[0].type,        b[0].number,        b[1].type,          b[1].number,    b[2].type,
            b[2].number,      node.type,          node.label,         b[0].typeID,    b[1].typeID,
            b[2].typeID,      b[3].typeID,        b[4].typeID,        b[3].type,      b[3].number,
            b[4].type,        b[4].number,        partition,          Place.Key()}));
    writes.push_back(Of(Command::Update_Node_General_Pool, {node.label, Date, partition, Place.Key()}));
    for (const auto& [sequence, target] : node.prompts) {
        addLabel(target);
        writes.push_back(Of(Command::Add_AUTO_PromptsNode,
                            {partition, sequence, target.typeID, target.number, Place.number, target.type}));
    }
    for (const auto& [sequence, target, low, high] : node.actions) {
        addLabel(target);
        writes.push_back(Of(Command::Add_AUTO_ActionsNode, {partition, sequence, target.typeID, target.number,
                                                            Place.number, low, high, target.type}));
    }
    std::vector<Sent> lookUps;
    for (auto& [key, sent] : labels) {
        lookUps.push_back(std::move(sent));
    }
    const std::string locks = "SELECT pg_advisory_xact_lock_shared(" + std::to_string(StoreApplicationId) +
                              ", 0), pg_advisory_xact_lock(" + std::to_string(Place.LockKey()) + ')';
    const Sent versions = Of(Command::Get_AUTO_Versions, {Place});
    std::vector<Sent> begin = {{"BEGIN", {}}, {locks, {}}};
    begin.insert(begin.end(), content.begin(), content.end());
    begin.push_back(Of(Command::Get_Description, {partition, Place.Key()}));
    begin.push_back(versions);
    const std::string text = TextOf(Place, {node, RegisterEntry{"AUTO", node.label, Date}});
    begin.insert(begin.end(), lookUps.begin(), lookUps.end());
    // The version before makes place for the same one again.
    for (const Sent& sent :
         {Of(Command::Delete_AUTO_Version, {Place, 30000}),
          Of(Command::Add_AUTO_Version,
             {Place, 30000, "save", "finished", TimeStamp(), "anna", "host", "bench", 1, "then", text}),
          Of(Command::Prune_AUTO_Versions, {Place, 29980, 20, TimeStamp(90), 0}), Sent{"COMMIT", {}}}) {
        writes.push_back(sent);
    }
    return {{content, lookUps}, {begin, writes}};
}

template <class Work>
double Milliseconds(Work&& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

double Median(std::vector<double> values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

template <class Ours, class Floor>
void Compare(const char* what, int turns, Ours&& ours, Floor&& floor) {
    std::vector<double> ratios;
    std::vector<double> mine;
    std::vector<double> raw;
    for (int turn = -2; turn < turns; ++turn) {
        const double one = Milliseconds(ours);
        const double other = Milliseconds(floor);
        if (turn >= 0) {
            ratios.push_back(one / other);
            mine.push_back(one);
            raw.push_back(other);
        }
    }
    std::printf("| %.2fx | %s | %.2f ms | %.2f ms |\n", Median(ratios), what, Median(mine), Median(raw));
}

int Run(const std::string& address, const std::filesystem::path& link, int turns) {
    CreateServerStore(link, address, StoreContent::Demo);
    DataBase dataBase(link);
    AutoNode node = ReadAutoNode(dataBase, Place).value();
    node.prompts.clear();
    node.actions.clear();
    for (int row = 1; row <= 1000; ++row) {
        node.prompts.push_back({row, {0, "MSG", row, {}}});
        const std::string range = std::to_string(1000 + row);
        node.actions.push_back({row, {9, "AUTO", row, {}}, range, range});
    }
    WriteAutoNode(dataBase, Place, node, Date);
    Saver saver(link, Place);
    const AutoNode loaded = saver.Load();

    RawServer raw(address);
    const Ways ways = WaysOf(loaded);
    std::puts("| ours / raw | 1,000 + 1,000 rows | ours | raw |\n| ---: | --- | ---: | ---: |");
    Compare(
        "load, labels included", turns,
        [&] { static_cast<void>(ReadAutoNode(dataBase, Place, Labels::Read)); },
        [&] { std::ranges::for_each(ways.load, [&](const auto& way) { raw.RoundTrip(way); }); });
    Compare(
        "save, with its mark and the look-ups", turns,
        [&] {
            const auto obstacle = saver.Save(loaded, [&](NodeSave& save) {
                std::vector<RequiredNode> nodes;
                for (int row = 1; row <= 1000; ++row) {
                    nodes.push_back({"", {MessageType, row}});
                    nodes.push_back({"", {AutoType, row}});
                }
                save.CreateMissing(nodes, Date,
                                   {[](const RequiredNode&) { return CreationAudience::Answer::Leave; },
                                    [](const RequiredNode&, Creation) {}, [] { throw; }});
            });
            if (obstacle) {
                throw std::logic_error("something stands in the way of a save");
            }
        },
        [&] { std::ranges::for_each(ways.save, [&](const auto& way) { raw.RoundTrip(way); }); });
    return 0;
}

} // namespace
} // namespace KAL_AUTO_Node

int main(int argc, char** argv) {
    try {
        return KAL_AUTO_Node::Run(argc > 1 ? argv[1] : "",
                                  std::filesystem::temp_directory_path() /
                                      ("link-" + std::to_string(getpid())),
                                  argc > 2 ? std::atoi(argv[2]) : 25);
    } catch (const std::exception& error) {
        std::cerr << "ServerFigures: " << error.what() << '\n';
        return 1;
    }
}
