// What becomes of the node of a store when its server is killed in the middle of a save, comes back, or
// leaves its place to a standby; when the line is cut, at each byte; when the server refuses what it had
// taken, and when many save at once. Prints a row for each case, and fails where anything was lost or passed
// unseen. ServerFaults [brief|long [WORDS OF A CASE [SEED]]]

#include "Actor.h"
#include "Cases.h"
#include "HistoryModel.h"
#include "Report.h"
#include "Scene.h"
#include "TestServerProcess.h"
#include "platform/RuntimeError.h"
#include "store/Connection.h"
#include "store/CreateServerStore.h"
#include "testing/Relay.h"

#include <csignal>
#include <fstream>
#include <iostream>
#include <mutex>
#include <optional>
#include <thread>

namespace KAL_AUTO_Node {
namespace {

// With nodes made from their templates, where that is asked for.
void Save(Saver& saver, int number, bool creating) {
    const auto obstacle = saver.Save(Intended(saver.Load(), number, 10), [&](NodeSave& save) {
        if (creating) {
            CreateMissing(save);
        }
    });
    if (obstacle) {
        throw std::logic_error("something stands in the way of a save");
    }
}

// One that saves, and another.
struct Windows {
    explicit Windows(const std::filesystem::path& link) : saver(link, Place), other(link, Place) {}

    Saver saver;
    Saver other;
};

// Begin makes a save break, end makes the next one possible. The node has to be as it was, or saved; what was
// said to be saved has to be there, what was said not to be must not, and the next save goes through.
void Break(Row& row, Windows& windows, bool creating, const std::string& where,
           const std::function<void()>& begin, const std::function<void()>& end) {
    constexpr int most = 3000; // numbers of nodes have 16 bits
    auto& [saver, other] = windows;
    const int number = 10 * (++row.tries % most + 1);
    const NodeContent before = saver.Read();
    const NodeContent intended = IntendedContent(before, number, 10);
    bool mayBeThere = true;
    bool said = false;
    begin();
    try {
        Save(saver, number, creating);
        said = true;
    } catch (const RuntimeError& error) {
        ++row.told;
        mayBeThere = error.Number() == ErrorNumber::OutcomeUnknown ||
                     std::string_view(error.what()).starts_with("All of the node is written");
    }
    end();

    for (Saver* one : {&saver, &other}) {
        const NodeContent now = one->Read();
        if (now == intended ? !mayBeThere : said) {
            row.Lost(where + (said ? ": said to be saved" : ": said not to be saved"));
        } else if (now != intended && now != before) {
            row.Wrong(where + ": neither as before nor as intended");
        }
        (now == intended ? row.whole : row.asBefore) += one == &other ? 1 : 0;
    }
    try {
        Save(saver, number + 1, creating);
        for (const auto& [typeID, node] : MissingNodes) {
            if (creating && !IsNodeExisted(saver.Store(), Place.partition, {typeID, node})) {
                row.Wrong(where + ": a node cannot be made any more");
            }
        }
    } catch (const std::exception& error) {
        row.Wrong(where + ": the next save: " + error.what());
    }
}

constexpr const char* TakeAwayMissingNodes = "DO $$ DECLARE found record; BEGIN FOR found IN SELECT "
                                             "table_name, column_name FROM information_schema.columns"
                                             " WHERE table_schema = 'public' AND (table_name LIKE 'node%' "
                                             "AND column_name = 'nodenumber' OR table_name LIKE"
                                             " 'detail%' AND column_name = 'nodemasterid') LOOP EXECUTE "
                                             "format('DELETE FROM %I WHERE %I BETWEEN 701 AND 712',"
                                             " found.table_name, found.column_name); END LOOP; END $$";

// A store on a server of its own, beyond a line.
struct Site {
    explicit Site(const std::filesystem::path& folder)
        : server(folder / "one"), link(folder / "link"), line(std::chrono::milliseconds(0), server.Socket()) {
        std::filesystem::remove(link);
        CreateServerStore(link, server.Address(), StoreContent::Demo);
        WriteLink("");
    }

    // From now on there is a standby.
    void Follow() {
        second.emplace(server.Folder().parent_path() / "two", server.Folder());
        secondLine.emplace(std::chrono::milliseconds(0), second->Socket());
        WriteLink(",127.0.0.1:" + std::to_string(secondLine->Port()));
    }

    void WriteLink(const std::string& others) const {
        std::ofstream(link, std::ios::trunc)
            << "postgresql://tester@127.0.0.1:" << line.Port() << others
            << "/postgres?target_session_attrs=read-write&gssencmode=disable\n";
    }

    TestServerProcess server;
    std::filesystem::path link;
    Relay line;
    std::optional<TestServerProcess> second;
    std::optional<Relay> secondLine;
};

// At each way of a save in turn.
void KillServer(Row& row, Site& site, bool creating, int tries) {
    const int ways = creating ? 45 : 9;
    for (int i = 0; i < tries; ++i) {
        const int way = 1 + (tries < ways ? i * ways / tries : i % ways);
        if (creating) {
            TestDatabase::Run(site.server.Address(), TakeAwayMissingNodes);
        }
        bool killed = false;
        const auto kill = [&] {
            site.server.Do("kill");
            if (site.second) {
                site.line.Close();
            }
            killed = true;
        };
        const auto begin = [&] {
            site.line.AtWay = [&, left = way](int) mutable {
                if (--left == 0) {
                    kill();
                }
            };
        };
        const auto end = [&] {
            site.line.AtWay = nullptr;
            if (!killed) {
                kill();
            }
            site.second ? site.second->Do("promote") : site.server.Do("again");
        };
        Windows windows(site.link);
        Break(row, windows, creating, "way " + std::to_string(way), begin, end);
    }
}

// After so many of the bytes of a save, in either direction, beyond those by which the node is loaded: half
// of the tries are where the exchange is that commits, unless each byte is tried.
void CutLine(Row& row, Site& site, std::size_t tries) {
    Windows windows(site.link);
    Saver& saver = windows.saver;
    // Each version makes the next save longer.
    const auto forget = [&] {
        windows.other.Store().Prepare("DELETE FROM Node_AUTO_Version")->Run({});
        windows.other.Store().Flush();
    };
    Save(saver, 1, false);
    forget();
    static_cast<void>(site.line.Passed());
    static_cast<void>(saver.Load());
    const std::size_t first = site.line.Passed();
    std::size_t commit = 0;
    std::size_t end = 0;
    site.line.AtWay = [&](int) { commit = end += site.line.Passed(); };
    Save(saver, 2, false);
    site.line.AtWay = nullptr;
    end += site.line.Passed();
    row.remarks =
        std::to_string(end - first) + " bytes, " + std::to_string(end - commit) + " from the commit's on";
    const std::size_t late = std::min(tries / 2, end - commit);
    const std::size_t early = std::min(tries - late, commit - first);
    for (std::size_t i = 0; i < early + late; ++i) {
        const std::size_t byte =
            i < early ? first + i * (commit - first) / early : commit + (i - early) * (end - commit) / late;
        forget();
        Break(
            row, windows, false, "byte " + std::to_string(byte), [&] { site.line.CutAfter(byte); },
            [&] { site.line.CutAfter(Relay::Never); });
    }
}

void RefuseCommits(Row& row, Site& site, int tries) {
    const auto run = [&](const std::string& sql) { TestDatabase::Run(site.server.Address(), sql); };
    Windows windows(site.link);
    run("CREATE FUNCTION refuse() RETURNS trigger LANGUAGE plpgsql AS $$ BEGIN RAISE 'refused'; END $$");
    for (int i = 0; i < tries; ++i) {
        const std::string table = i % 2 == 0 ? "Detail_AUTO_Action" : "Node_AUTO_Version";
        Break(
            row, windows, false, "refused " + table,
            [&] {
                run("CREATE CONSTRAINT TRIGGER refuse AFTER INSERT OR UPDATE ON " + table +
                    " INITIALLY DEFERRED FOR EACH ROW EXECUTE FUNCTION refuse()");
            },
            [&] { run("DROP TRIGGER refuse ON " + table); });
    }
    if (row.told < row.tries) {
        row.Unseen("a commit that was refused");
    }
}

// Each saves a node of its own over and over, where the server takes back what others' work has come across.
void SaveAtOnce(Row& row, Site& site, int editors, int saves) {
    TestDatabase::Run(site.server.Address(),
                      "ALTER DATABASE postgres SET default_transaction_isolation = 'serializable'");
    std::mutex one;
    std::vector<std::jthread> threads;
    for (int editor = 1; editor <= editors; ++editor) {
        threads.emplace_back([&, place = NodePlace{{1, 2}, static_cast<std::int16_t>(editor)}] {
            Saver saver(site.link, place);
            Saver other(site.link, place);
            for (int number = 1; number <= saves; ++number) {
                const AutoNode intended = Intended(saver.Load(), number, 20);
                bool said = false;
                std::string why;
                try {
                    said = !saver.Save(intended);
                } catch (const std::exception& error) {
                    why = error.what();
                }
                const bool there = other.Read().node == intended;
                const std::scoped_lock lock(one);
                ++row.tries;
                (there ? row.whole : row.asBefore) += 1;
                row.told += said ? 0 : 1;
                if (said != there) {
                    row.Lost("said to be saved, or not to be");
                } else if (!said) {
                    row.Wrong(why);
                }
            }
        });
    }
}

int Run(Extent extent, const std::string& only) {
    const bool atLength = extent.atLength;
    const TemporaryFolder folder;
    std::filesystem::permissions(folder.Path(), std::filesystem::perms(0755));
    PrintHead(std::cout);
    bool good = true;
    const auto print = [&](const Row& row) {
        Print(std::cout, row);
        good &= row.Good();
    };
    const auto isWanted = [&](const char* name) {
        return std::string_view(name).find(only) != std::string_view::npos;
    };
    const auto tell = [&](const char* name, const std::function<void(Row&)>& what) {
        if (isWanted(name)) {
            Row row(name);
            what(row);
            print(row);
        }
    };
    std::optional<Site> site(std::in_place, folder.Path());
    tell("server killed at each way of a save",
         [&](Row& row) { KillServer(row, *site, false, atLength ? 90 : 3); });
    tell("the same while nodes are created",
         [&](Row& row) { KillServer(row, *site, true, atLength ? 90 : 2); });
    tell("line cut at each byte of a save", [&](Row& row) { CutLine(row, *site, atLength ? 100'000 : 24); });
    tell("commit refused", [&](Row& row) { RefuseCommits(row, *site, atLength ? 20 : 2); });
    setenv("KAL_TEST_SERVER", site->server.Folder().c_str(), 1);
    if (isWanted("races")) {
        RaceSaves(extent, print);
    }
    if (isWanted("histories")) {
        RecordOnServer(extent, print, [&] {
            site->server.Do("kill");
            site->server.Do("again");
        });
    }
    tell("many at once, serializable", [&](Row& row) { SaveAtOnce(row, *site, 8, atLength ? 250 : 5); });
    TestDatabase::Run(site->server.Address(), "ALTER DATABASE postgres RESET ALL");
    tell("primary killed, standby promoted", [&](Row& row) {
        for (int tries = atLength ? 9 : 1; tries > 0; --tries) {
            site->Follow();
            KillServer(row, *site, false, 1);
            if (tries > 1) {
                site.emplace(folder.Path());
            }
        }
    });
    return good ? 0 : 1;
}

} // namespace
} // namespace KAL_AUTO_Node

int main(int argc, char** argv) {
    const std::string extent = argc > 1 ? argv[1] : "brief";
    if (extent == "actor") {
        return KAL_AUTO_Node::Act();
    }
    if (extent == "recorder" && argc == 7) {
        return KAL_AUTO_Node::Record(argv + 2);
    }
    if (argc > 4 || (extent != "brief" && extent != "long")) {
        std::cerr << "ServerFaults [brief|long [WORDS OF A CASE [SEED]]]\n";
        return 2;
    }
    std::signal(SIGPIPE, SIG_IGN);
    try {
        return KAL_AUTO_Node::Run(
            {extent == "long", argc > 3 ? static_cast<unsigned>(std::stoul(argv[3])) : 1},
            argc > 2 ? argv[2] : "");
    } catch (const std::exception& error) {
        std::cerr << "ServerFaults: " << error.what() << '\n';
        return 1;
    }
}
