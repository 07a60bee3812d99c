#include "exchange/Export.h"
#include "history/History.h"
#include "testing/FaultySystem.h"
#include "testing/TestStore.h"
#include "upkeep/RemoveNode.h"
#include "upkeep/RepointRows.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <fstream>
#include <functional>
#include <sys/wait.h>
#include <unistd.h>

namespace KAL_AUTO_Node {
namespace {

constexpr Partition Company{1, 2};

// What a step is done with.
struct Hands {
    DataBase dataBase;
    History history{dataBase};
    TypeNames names{dataBase};
};

struct Step {
    const char* name;
    std::function<void(Hands&)> take;
};

// In a process of its own, which is killed at that write; false where it came to its end before.
bool IsKilledAt(const Step& step, int write) {
    const pid_t child = fork();
    if (child == 0) {
        StartFaultySystem();
        Hands hands;
        Arm(DiskFault::Kill, write, false, [] {});
        step.take(hands);
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status) ? WTERMSIG(status) == SIGKILL : WEXITSTATUS(status) == 0) << step.name;
    return WIFSIGNALED(status);
}

std::string StateOf(const TestStore& store) {
    const auto file = store.Folder() / "all.json";
    DataBase dataBase;
    Export(dataBase, std::nullopt, file, [](std::uint64_t) {});
    std::ifstream text(file);
    return std::string(std::istreambuf_iterator<char>(text), {}) +
           store.Value("SELECT COUNT(*) FROM Node_AUTO_Version");
}

// Every write in turn with $KAL_TEST_ROUNDS, else some.
TEST(StoreFile, HasAllOrNothingOfAStepThatIsKilled) {
    const TestStore store;
    const std::array map{Replacement{{0, 6}, {0, 5}}, Replacement{{0, 5}, {0, 6}}};
    std::string plan;
    {
        Hands hands;
        const auto repoint = PlanRepoint(hands.dataBase, hands.history, hands.names, Company, map);
        plan = TextOf(RowsOf(hands.dataBase, Company, repoint, map, "today"));
    }
    const auto unchanged = store.Folder() / "unchanged";
    store.Execute("PRAGMA wal_checkpoint(TRUNCATE)");
    std::filesystem::copy_file(store.File(), unchanged);
    const auto reset = [&] {
        for (const char* end : {"", "-wal", "-shm", "-journal"}) {
            std::filesystem::remove(store.File().string() + end);
        }
        std::filesystem::copy_file(unchanged, store.File());
    };
    const std::string before = StateOf(store);
    const std::array<Step, 4> steps = {
        {{"copy",
          [](Hands& hands) {
              CopyNode(hands.dataBase, hands.history, hands.names,
                       {Company, {9, 8}, {1, 1}, 4, "Next", Missing::Keep}, "today", Carry::Out);
          }},
         {"move",
          [](Hands& hands) {
              MoveNode(hands.dataBase, hands.history, hands.names, Company, {9, 5}, 30, "today", Carry::Out);
          }},
         {"remove",
          [](Hands& hands) {
              RemoveNode(hands.dataBase, hands.history, hands.names, {Company, {9, 5}, NodeKey{9, 1}, false},
                         "today", Carry::Out);
          }},
         {"apply",
          [&](Hands& hands) { EXPECT_TRUE(Apply(hands.dataBase, hands.history, PlanIn(plan)).empty()); }}}};
    const int stride = Rounds(0) > 0 ? 1 : 5;
    int killed = 0;
    for (const Step& step : steps) {
        reset();
        ASSERT_FALSE(IsKilledAt(step, 100'000));
        const std::string after = StateOf(store);
        ASSERT_FALSE(after == before) << step.name;
        for (int write = 1; reset(), IsKilledAt(step, write); write += stride) {
            const std::string state = StateOf(store);
            EXPECT_TRUE(state == before || state == after) << step.name << " at write " << write;
            ++killed;
        }
    }
    EXPECT_GT(killed, 8);
    RecordProperty("killed", killed);
}

} // namespace
} // namespace KAL_AUTO_Node
