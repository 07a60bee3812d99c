#include "Cases.h"
#include "HistoryModel.h"
#include "store/Connection.h"
#include "store/DataBase.h"
#include "testing/TestStore.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <iostream>
#include <random>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace KAL_AUTO_Node {

namespace {

constexpr int Actors = 4;
constexpr int RoundOperations = 240;

// A store in which history after history is recorded, each beginning with what the one before has left.
class Site {
  public:
    Site(Extent extent, const char* kind) : kind_(kind), seed_(extent.seed) { Begin(); }

    void Execute(const std::string& sql) const { store_.Execute(sql); }

    RecordedHistory Record(bool kills, const std::function<void()>& breakDown) {
        if (begin_ == std::vector<std::string>(NodesInHistory, "-")) {
            Begin();
        }
        history_ = {begin_, {}, !TestStore::OnServer()};
        std::mt19937 random(++seed_);
        std::vector<Process> processes;
        for (int actor = 0; actor < Actors; ++actor) {
            processes.push_back(Start(RoundOperations / Actors, actor, kind_));
        }
        for (std::size_t over = 0; over < processes.size();) {
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
            if (breakDown && random() % 200 == 0) {
                breakDown();
            }
            const std::size_t count = processes.size();
            for (std::size_t i = 0; i < count; ++i) {
                const bool killed = kills && processes[i].id > 0 && random() % 100 == 0;
                if (killed) {
                    kill(processes[i].id, SIGKILL);
                }
                const int left = processes[i].id > 0 ? TakeOver(processes[i], !killed) : -1;
                if (left >= 0) {
                    processes[i].id = 0;
                    ++over;
                }
                if (left > 0) {
                    processes.push_back(Start(left, static_cast<int>(processes.size()), kind_));
                }
            }
        }
        TakeOver(Start(0, static_cast<int>(processes.size()), "end"), false);
        for (std::size_t node = 0; node < begin_.size(); ++node) {
            begin_[node] =
                history_.operations[history_.operations.size() - 8 + 3 * node].answer.value_or("?");
        }
        return history_;
    }

  private:
    struct Process {
        pid_t id = 0;
        int actor = 0;
        int count = 0;
    };

    void Begin() {
        TakeOver(Start(0, 0, "begin"), false);
        begin_ = {history_.operations.back().next, "-", "-"};
    }

    [[nodiscard]] std::string FileOf(int actor) const {
        return store_.Folder() / ("record" + std::to_string(actor));
    }

    Process Start(int count, int actor, const char* kind) {
        const std::string self = std::filesystem::read_symlink("/proc/self/exe");
        const std::string seed = std::to_string(seed_ * 1000 + static_cast<unsigned>(actor));
        const std::string text = std::to_string(texts_ += 200);
        const std::string file = FileOf(actor);
        std::filesystem::remove(file);
        const pid_t id = fork();
        if (id == 0) {
            setenv("PGAPPNAME", file.c_str(), 1);
            execl(self.c_str(), self.c_str(), "recorder", file.c_str(), seed.c_str(), text.c_str(),
                  std::to_string(count).c_str(), kind, nullptr);
            _exit(127);
        }
        return {id, actor, count};
    }

    // What a process has done once it has ended; how much it has left to do, less than nothing where it still
    // runs.
    int TakeOver(Process process, bool mayRun) {
        int status = 0;
        if (waitpid(process.id, &status, mayRun ? WNOHANG : 0) == 0) {
            return -1;
        }
        if (status != 0 && !(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL)) {
            throw std::runtime_error("a recorder has failed");
        }
        if (WIFSIGNALED(status)) {
            AwaitServer(FileOf(process.actor));
        }
        const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
        auto operations = OperationsIn(FileOf(process.actor), process.actor);
        for (Operation& operation : operations) {
            operation.end = operation.end == 0 ? now : operation.end;
        }
        std::ranges::copy(operations, std::back_inserter(history_.operations));
        return status == 0 ? 0 : std::max(process.count - static_cast<int>(operations.size()), 0);
    }

    // A server does to its end what it was told by one that was killed.
    static void AwaitServer(const std::string& name) {
        DataBase dataBase;
        while (TestStore::OnServer()) {
            const auto others = dataBase.Prepare(
                "SELECT COUNT(*) FROM pg_stat_activity WHERE application_name = '" + name + '\'');
            others->Run({});
            if (others->Field(0) == "0") {
                return;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    }

    TestStore store_;
    const char* kind_;
    unsigned seed_;
    int texts_ = 1'000'000; // all of seven digits
    std::vector<std::string> begin_;
    RecordedHistory history_;
};

void Print(RecordedHistory history) {
    std::ranges::sort(history.operations, {}, &Operation::begin);
    std::cout << "    began with " << history.begin[0] << ' ' << history.begin[1] << ' ' << history.begin[2]
              << '\n';
    for (const Operation& operation : history.operations) {
        std::cout << "    " << operation.begin << " to " << operation.end << " by " << operation.actor << ": "
                  << operation.verb << ' ' << operation.node << ' ' << operation.other << ' '
                  << operation.seen << ' ' << operation.next << ": " << operation.answer.value_or("?")
                  << '\n';
    }
}

void Count(Row& row, const RecordedHistory& history) {
    for (const Operation& operation : history.operations) {
        ++row.tries;
        row.whole += operation.verb == "save" && operation.answer == "done" ? 1 : 0;
        row.putBack += operation.verb == "back" && operation.answer == "1" ? 1 : 0;
        row.told += operation.answer == "changed" || operation.answer == "hindered" ? 1 : 0;
    }
}

void RecordAll(const char* where, Extent extent, const Tell& tell, const std::function<void()>& breakDown) {
    Row row(std::string("recorded histories of 4 processes, ") + where);
    Site site(extent, "work");
    if (!TestStore::OnServer()) {
        site.Execute(std::string("PRAGMA journal_mode = ") + where);
    }
    while (row.tries < extent.Of(100'000, RoundOperations) && row.wrong == 0) {
        const RecordedHistory history = site.Record(true, breakDown);
        Count(row, history);
        if (!IsExplained(history)) {
            row.Wrong("no order explains what is above (seed " + std::to_string(extent.seed) + ")");
            Print(Smallest(history));
        }
    }
    tell(row);
}

} // namespace

void RecordInFiles(Extent extent, const Tell& tell) {
    for (const char* journal : {"WAL", "DELETE"}) {
        RecordAll(journal, extent, tell, {});
    }
}

void RecordOnServer(Extent extent, const Tell& tell, const std::function<void()>& breakDown) {
    RecordAll("server killed", extent, tell, breakDown);
}

void PlantFaults(Extent extent, const Tell& tell) {
    for (const char* kind : {"lost", "half", "stale"}) {
        Row row(std::string("planted in recorded histories: ") + kind);
        Site site(extent, kind);
        RecordedHistory history;
        do {
            history = site.Record(false, {});
            Count(row, history);
        } while (row.tries < 1000 && IsExplained(history));
        if (IsExplained(history)) {
            row.Unseen(kind);
        } else if (extent.atLength) {
            const RecordedHistory smallest = Smallest(history);
            row.remarks = "made smaller to " + std::to_string(smallest.operations.size()) + " operations";
            row.wrong += IsExplained(smallest) ? 1 : 0;
        }
        tell(row);
    }
}

} // namespace KAL_AUTO_Node
