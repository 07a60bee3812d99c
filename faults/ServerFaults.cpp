// What becomes of the node of a store when its server is killed in the middle of a save, comes back, or
// leaves its place to a standby. Prints a row for each case, and fails where anything was lost or passed
// unseen. ServerFaults [brief|long]

#include "Relay.h"
#include "Report.h"
#include "Saver.h"
#include "TestServerProcess.h"
#include "platform/RuntimeError.h"
#include "store/CreateServerStore.h"

#include <csignal>
#include <fstream>
#include <iostream>
#include <thread>

namespace KAL_AUTO_Node {
namespace {

// With nodes made from their templates, where that is asked for.
void Save(Saver& saver, int number, bool creating) {
    const auto obstacle = saver.Save(Intended(saver.Load(), number, 10), [&](NodeSave& save) {
        if (creating) {
            CreateMissing(saver.Store(), save);
        }
    });
    if (obstacle) {
        throw std::logic_error("something stands in the way of a save");
    }
}

void WriteLink(const std::filesystem::path& link, const std::string& address) {
    std::ofstream(link, std::ios::trunc) << address << '\n';
}

// A save breaks at that way; afterwards comes what brings a server back. The node has to be as it was, or
// saved, or marked as half saved and put back exactly; what was said to be saved has to be there, and the
// next save goes through.
void Break(Row& row, Relay& relay, const std::filesystem::path& link, int way, bool creating,
           const std::function<void()>& breakDown, const std::function<void()>& bringBack) {
    ++row.tries;
    Saver saver(link);
    const NodeContent before = saver.Read();
    const int number = 1000 * row.tries + way;
    const NodeContent intended = IntendedContent(before, number, 10);
    bool broken = false;
    relay.AtWay = [&, left = way](int) mutable {
        if (--left == 0) {
            breakDown();
            broken = true;
        }
    };
    bool said = false;
    try {
        Save(saver, number, creating);
        said = true;
    } catch (const RuntimeError&) {
        ++row.told;
    }
    relay.AtWay = nullptr;
    if (!broken) {
        breakDown();
    }
    bringBack();

    // The same window, and another.
    Saver other(link);
    for (Saver* one : {&saver, &other}) {
        row.putBack += one->PutBack();
        const NodeContent now = one->Read();
        if (now == intended) {
            row.whole += one == &other ? 1 : 0;
        } else if (now != before) {
            row.Wrong("way " + std::to_string(way) + ": neither as before nor as intended");
        } else if (said) {
            row.Lost("way " + std::to_string(way) + ": said to be saved");
        } else {
            row.asBefore += one == &other ? 1 : 0;
        }
    }
    try {
        Save(saver, number + 1, creating);
        for (const auto& [typeID, node] : MissingNodes) {
            if (creating && !IsNodeExisted(saver.Store(), Place.partition, typeID, node)) {
                row.Wrong("way " + std::to_string(way) + ": a node cannot be made any more");
            }
        }
    } catch (const std::exception& error) {
        row.Wrong("way " + std::to_string(way) + ": the next save: " + error.what());
    }
}

constexpr const char* TakeAwayMissingNodes = "DO $$ DECLARE found record; BEGIN FOR found IN SELECT "
                                             "table_name, column_name FROM information_schema.columns"
                                             " WHERE table_schema = 'public' AND (table_name LIKE 'node%' "
                                             "AND column_name = 'nodenumber' OR table_name LIKE"
                                             " 'detail%' AND column_name = 'nodemasterid') LOOP EXECUTE "
                                             "format('DELETE FROM %I WHERE %I BETWEEN 701 AND 712',"
                                             " found.table_name, found.column_name); END LOOP; END $$";

void KillServer(Row& row, const std::filesystem::path& folder, bool creating, int tries) {
    const TestServerProcess server(folder / "one");
    const auto link = folder / "link";
    std::filesystem::remove(link);
    CreateServerStore(link, server.Address(), StoreContent::Demo);
    Relay relay(std::chrono::milliseconds(0), server.Socket());
    WriteLink(link, relay.AddressOf("postgres"));
    const int ways = creating ? 45 : 9;
    for (int i = 0; i < tries; ++i) {
        const int way = 1 + (tries < ways ? i * ways / tries : i % ways);
        if (creating) {
            TestDatabase::Run(server.Address(), TakeAwayMissingNodes);
        }
        Break(
            row, relay, link, way, creating, [&] { server.Do("kill"); }, [&] { server.Do("again"); });
    }
}

void LosePrimary(Row& row, const std::filesystem::path& folder, int tries) {
    for (int i = 0; i < tries; ++i) {
        const TestServerProcess primary(folder / ("p" + std::to_string(i)));
        const auto link = folder / "pair";
        std::filesystem::remove(link);
        CreateServerStore(link, primary.Address(), StoreContent::Demo);
        const TestServerProcess standby(folder / ("s" + std::to_string(i)), primary.Folder());
        Relay first(std::chrono::milliseconds(0), primary.Socket());
        const Relay second(std::chrono::milliseconds(0), standby.Socket());
        WriteLink(link, "postgresql://tester@127.0.0.1:" + std::to_string(first.Port()) +
                            ",127.0.0.1:" + std::to_string(second.Port()) +
                            "/postgres?target_session_attrs=read-write&gssencmode=disable");
        const auto breakDown = [&] {
            primary.Do("kill");
            first.Close();
        };
        Break(row, first, link, 2 + i % 8, false, breakDown, [&] { standby.Do("promote"); });
    }
}

int Run(bool atLength) {
    const TemporaryFolder folder;
    std::filesystem::permissions(folder.Path(), std::filesystem::perms(0755));
    PrintHead(std::cout);
    bool good = true;
    const auto tell = [&](const Row& row) {
        Print(std::cout, row);
        good &= row.Good();
    };
    Row saves("server killed at each way of a save");
    KillServer(saves, folder.Path(), false, atLength ? 90 : 3);
    tell(saves);
    Row creations("the same while nodes are created");
    KillServer(creations, folder.Path(), true, atLength ? 90 : 2);
    tell(creations);
    Row primaries("primary killed, standby promoted");
    LosePrimary(primaries, folder.Path(), atLength ? 16 : 1);
    tell(primaries);
    return good ? 0 : 1;
}

} // namespace
} // namespace KAL_AUTO_Node

int main(int argc, char** argv) {
    const std::string extent = argc > 1 ? argv[1] : "brief";
    if (argc > 2 || (extent != "brief" && extent != "long")) {
        std::cerr << "ServerFaults [brief|long]\n";
        return 2;
    }
    std::signal(SIGPIPE, SIG_IGN);
    try {
        return KAL_AUTO_Node::Run(extent == "long");
    } catch (const std::exception& error) {
        std::cerr << "ServerFaults: " << error.what() << '\n';
        return 1;
    }
}
