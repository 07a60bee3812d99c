// Several processes open, save, read and close one store at random, each with more than one connection as the
// editor has, and with one of the host's own. Afterwards the store has to be sound and to hold every row of
// every save that was finished. StoreProcesses [SECONDS [PROCESSES [JOURNAL_MODE]]]

#include "TestStore.h"
#include "platform/RuntimeError.h"
#include "store/DataBase.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <spawn.h>
#include <sys/wait.h>

extern char** environ;

namespace KAL_AUTO_Node {
namespace {

using Clock = std::chrono::steady_clock;

// Of one node: its partition and number.
using Key = std::pair<int, int>;

struct Figures {
    int opened = 0;
    int saves = 0;
    int unfinished = 0;
    int rows = 0;
    int wrong = 0;
};

std::string Listed(const Figures& figures) {
    return std::to_string(figures.opened) + ' ' + std::to_string(figures.saves) + ' ' +
           std::to_string(figures.unfinished) + ' ' + std::to_string(figures.rows) + ' ' +
           std::to_string(figures.wrong);
}

// One process. Its nodes are those of a configuration of its own; what a save puts into a node's rows is
// found nowhere else.
class Worker {
  public:
    Worker(int number, std::filesystem::path file)
        : config_(100 + number), file_(std::move(file)), random_(static_cast<unsigned>(config_) * 7919U) {}

    void Work(Clock::time_point end) {
        while (Clock::now() < end) {
            switch (Any(0, 9)) {
            case 0:
                connections_.at(static_cast<std::size_t>(Any(0, 2))).reset();
                break;
            case 1:
                host_.reset();
                break;
            case 2:
                ReadAsHost();
                break;
            case 3:
            case 4:
            case 5:
                ReadOne();
                break;
            default:
                Save();
            }
        }
    }

    // What the store has to hold, one row a line, and the figures.
    void Tell(const std::filesystem::path& report) {
        std::ofstream out(report);
        for (const auto& [key, rows] : finished_) {
            for (std::size_t row = 0; row < rows.size(); ++row) {
                out << config_ << '|' << key.first << '|' << key.second << '|' << row + 1 << '|' << rows[row]
                    << '\n';
                ++figures_.rows;
            }
        }
        std::ofstream(report.string() + ".figures") << Listed(figures_);
    }

  private:
    int Any(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }

    // The host's, the window's, Quick Assign's.
    DataBase& AnyConnection() {
        auto& connection = connections_.at(static_cast<std::size_t>(Any(0, 2)));
        if (!connection) {
            connection = std::make_unique<DataBase>();
            ++figures_.opened;
        }
        return *connection;
    }

    void Save() {
        const bool again = !finished_.empty() && Any(0, 3) == 0;
        const Key key =
            again ? std::next(finished_.begin(), Any(0, static_cast<int>(finished_.size()) - 1))->first
                  : Key(1 + next_ / 30000, 1 + next_ % 30000);
        next_ += again ? 0 : 1;
        std::vector<std::string> rows(static_cast<std::size_t>(Any(1, 40)));
        for (std::string& row : rows) {
            row = std::to_string(config_) + '.' + std::to_string(++stamp_);
        }
        finished_.erase(key);
        DataBase& dataBase = AnyConnection();
        try {
            dataBase.Execute(Command::Delete_AUTO_PromptsNode, {config_, key.first, key.second});
            int sequence = 0;
            for (const std::string& row : rows) {
                dataBase.Execute(Command::Add_AUTO_PromptsNode,
                                 {config_, key.first, ++sequence, 0, sequence, key.second, row});
            }
            dataBase.Flush();
            finished_[key] = std::move(rows);
            ++figures_.saves;
        } catch (const RuntimeError& error) {
            Unfinished(error);
        }
    }

    void ReadOne() {
        if (finished_.empty()) {
            return;
        }
        const auto node = std::next(finished_.begin(), Any(0, static_cast<int>(finished_.size()) - 1));
        std::vector<std::string> rows;
        try {
            for (ResultSet read = AnyConnection().Query(Command::Get_AUTO_PromptsNode,
                                                        {config_, node->first.first, node->first.second});
                 !read.AtEnd(); read.MoveNext()) {
                rows.emplace_back(read.Text("NodeType"));
            }
        } catch (const RuntimeError& error) {
            Unfinished(error);
            return;
        }
        if (rows != node->second) {
            Wrong("node " + std::to_string(node->first.second) + " has " + std::to_string(rows.size()) +
                  " rows instead of " + std::to_string(node->second.size()));
        }
    }

    void ReadAsHost() {
        try {
            if (!host_) {
                host_.emplace(file_.string(), SQLite::OPEN_READWRITE, 1000);
                ++figures_.opened;
            }
            static_cast<void>(host_->execAndGet("SELECT COUNT(*) FROM Node_AUTO").getInt());
        } catch (const SQLite::Exception& error) {
            Unfinished(error);
        }
    }

    // Only a lock may keep anybody from his work.
    void Unfinished(const std::exception& error) {
        ++figures_.unfinished;
        if (std::string_view(error.what()).find("locked") == std::string_view::npos) {
            Wrong(error.what());
        }
    }

    void Wrong(const std::string& what) {
        if (++figures_.wrong <= 5) {
            std::cerr << "process " << config_ - 100 << ": " << what << '\n';
        }
    }

    int config_;
    std::filesystem::path file_;
    std::mt19937 random_;
    std::array<std::unique_ptr<DataBase>, 3> connections_;
    std::optional<SQLite::Database> host_;
    std::map<Key, std::vector<std::string>> finished_;
    int next_ = 0;
    int stamp_ = 0;
    Figures figures_;
};

std::set<std::string> Missing(const TestStore& store, const std::filesystem::path& report) {
    std::set<std::string> missing;
    std::ifstream expected(report);
    for (std::string line; std::getline(expected, line);) {
        missing.insert(line);
    }
    for (const std::string& row :
         store.Rows("SELECT ConfigID, PartID, NodeMasterID, SequenceNo, NodeType FROM Detail_AUTO_Prompts")) {
        missing.erase(row);
    }
    return missing;
}

int Run(const std::string& program, const std::string& seconds, int processes, const std::string& journal) {
    const TestStore store;
    static_cast<void>(store.Rows("PRAGMA journal_mode = " + journal));
    const TemporaryFolder reports;
    std::vector<pid_t> workers;
    for (int number = 1; number <= processes; ++number) {
        std::array<std::string, 5> words = {program, "work", seconds, std::to_string(number),
                                            (reports.Path() / std::to_string(number)).string()};
        std::array<char*, 6> arguments{};
        std::ranges::transform(words, arguments.begin(), [](std::string& word) { return word.data(); });
        pid_t worker = 0;
        if (posix_spawn(&worker, program.c_str(), nullptr, nullptr, arguments.data(), environ) != 0) {
            std::cerr << "cannot start " << program << '\n';
            return 1;
        }
        workers.push_back(worker);
    }
    bool good = true;
    for (const pid_t worker : workers) {
        int status = 0;
        good &= waitpid(worker, &status, 0) == worker && status == 0;
    }
    for (int number = 1; number <= processes; ++number) {
        const auto report = reports.Path() / std::to_string(number);
        Figures figures;
        std::ifstream(report.string() + ".figures") >> figures.opened >> figures.saves >>
            figures.unfinished >> figures.rows >> figures.wrong;
        const auto missing = Missing(store, report);
        std::cout << "process " << number << ": connections " << figures.opened << ", finished saves "
                  << figures.saves << ", kept from by a lock " << figures.unfinished << ", rows to be there "
                  << figures.rows << ", missing " << missing.size() << ", wrong " << figures.wrong << '\n';
        good &= figures.saves > 0 && missing.empty() && figures.wrong == 0;
    }
    const std::string check = store.Value("PRAGMA integrity_check");
    std::cout << "integrity_check: " << check << '\n';
    return good && check == "ok" ? 0 : 1;
}

} // namespace
} // namespace KAL_AUTO_Node

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv, argv + argc);
    const auto argument = [&](std::size_t at, const char* otherwise) {
        return arguments.size() > at ? arguments[at] : otherwise;
    };
    using namespace KAL_AUTO_Node;
    try {
        if (argument(1, "") == "work") {
            Worker worker(std::stoi(arguments.at(3)), DataBase().File());
            worker.Work(Clock::now() + std::chrono::seconds(std::stoi(arguments.at(2))));
            worker.Tell(arguments.at(4));
            return 0;
        }
        return Run(arguments.at(0), argument(1, "3"), std::stoi(argument(2, "2")), argument(3, "WAL"));
    } catch (const std::exception& error) {
        std::cerr << arguments.at(0) << ": " << error.what() << '\n';
        return 1;
    }
}
