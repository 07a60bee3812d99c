#include "audit/PartitionCheck.h"
#include "calls/CallChanges.h"
#include "calls/Expectations.h"
#include "calls/Paths.h"
#include "history/History.h"
#include "nodes/References.h"
#include "testing/TestStore.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <initializer_list>
#include <string>
#include <vector>

// The check and the uses of a partition of 10,000 AUTO nodes with 20 rows each, beside reading the same rows
// through the engine's interface, every value copied; what is asked of its calls, beside the check. The two
// take turns; the medians are told.
namespace {

using namespace KAL_AUTO_Node;

constexpr Partition Measured{1, 3};
constexpr int Turns = 9;

void Fill(const TestStore& store) {
    const std::string numbers = "WITH RECURSIVE Numbers (Number) AS (VALUES (0) UNION ALL SELECT Number + 1 "
                                "FROM Numbers WHERE Number < ";
    const std::string nodes = numbers + "10000) ";
    const std::string rows = numbers + "9), Nodes AS (SELECT NodeNumber FROM Node_AUTO WHERE PartID = 3) ";
    store.Execute(
        "BEGIN;"
        "INSERT INTO Node_Type_Max SELECT 1, 3, ID, 32767 FROM SR_Node_Type_Names WHERE ID < 814;" +
        nodes +
        "INSERT INTO Node_AUTO SELECT 1, 3, 9, Number, 2, 'No', 5, 3, 2, 'MSG', 1, 'MSG', 1, 'MSG', 1, "
        "'AUTO', 'Menu ' || Number, 0, 0, 0, 814, 814, 'NONE', 0, 'NONE', 0 FROM Numbers;" +
        rows +
        "INSERT INTO Detail_AUTO_Prompts SELECT 1, 3, Number + 1, 0, Number + 1, NodeNumber, 'MSG' "
        "FROM Nodes, Numbers;" +
        rows +
        "INSERT INTO Detail_AUTO_Action SELECT 1, 3, Number + 1, 9, (NodeNumber + Number) % 10000 + 1, "
        "NodeNumber, Number, Number, 'AUTO' FROM Nodes, Numbers;" +
        nodes +
        "INSERT INTO Node_MSG (ConfigID, PartID, NodeTypeID, NodeNumber) SELECT 1, 3, 0, Number FROM "
        "Numbers;" +
        "INSERT INTO Node_General_Pool SELECT 1, 3, 9, NodeNumber, 'AUTO', NodeDescription, '' FROM "
        "Node_AUTO "
        "WHERE PartID = 3;"
        "INSERT INTO Node_General_Pool SELECT 1, 3, 0, NodeNumber, 'MSG', 'Message', '' FROM Node_MSG "
        "WHERE PartID = 3; COMMIT");
}

class Raw {
  public:
    explicit Raw(const std::string& file) { sqlite3_open(file.c_str(), &database_); }

    ~Raw() { sqlite3_close(database_); }

    Raw(const Raw&) = delete;
    Raw& operator=(const Raw&) = delete;

    std::size_t Read(Command command, std::initializer_list<const char*> values) {
        sqlite3_stmt* statement = nullptr;
        sqlite3_prepare_v2(database_, CommandText(command).c_str(), -1, &statement, nullptr);
        int parameter = 0;
        for (const char* value : values) {
            sqlite3_bind_text(statement, ++parameter, value, -1, SQLITE_STATIC);
        }
        std::size_t rows = 0;
        copied_.clear();
        for (; sqlite3_step(statement) == SQLITE_ROW; ++rows) {
            for (int column = 0; column < sqlite3_column_count(statement); ++column) {
                const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
                copied_.append(text == nullptr ? "" : text);
            }
        }
        sqlite3_finalize(statement);
        return rows;
    }

  private:
    sqlite3* database_ = nullptr;
    std::string copied_;
};

template <class Work>
double Milliseconds(Work work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

template <class Ours, class Floor>
void Compare(const char* name, Ours ours, Floor floor) {
    std::vector<double> our;
    std::vector<double> raw;
    for (int turn = 0; turn < Turns; ++turn) {
        our.push_back(Milliseconds(ours));
        raw.push_back(Milliseconds(floor));
    }
    std::ranges::sort(our);
    std::ranges::sort(raw);
    std::printf("%s: %.1f ms, beside %.1f ms, %.2fx\n", name, our[Turns / 2], raw[Turns / 2],
                our[Turns / 2] / raw[Turns / 2]);
}

std::string PeakMemory() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmHWM")) {
            return line;
        }
    }
    return {};
}

// Ranges of five digits, of which every second leads elsewhere than in the other one.
Menu LargeMenu(int target) {
    AutoNode node;
    node.type = "AUTO";
    node.settings.numberOfDigits = 5;
    for (int row = 0; row < 32000; ++row) {
        Action& action = node.actions.emplace_back();
        action.sequence = row;
        action.target = {MessageType, "MSG", row % 2 * target + row % 500, ""};
        action.low = SequenceText(5, row * 3);
        action.high = SequenceText(5, row * 3 + 1);
    }
    return {1, std::move(node)};
}

void CompareCallsBesideTheCheck(DataBase& dataBase, History& history) {
    const TypeNames names(dataBase);
    const auto check = [&] { static_cast<void>(CheckPartition(dataBase, history, Measured)); };
    std::vector<std::string> lines;
    WriteExpectations(ReadCallMap(dataBase, names, Measured), names, [&](const std::string& line) {
        if (lines.size() < 10000 && line.find(": 7 ->") != std::string::npos) {
            lines.push_back(line);
        }
    });
    std::size_t certain = 0;
    Compare(
        "expectations, beside the check",
        [&] {
            certain = 0;
            const CallMap map = ReadCallMap(dataBase, names, Measured);
            for (const std::string& line : lines) {
                certain += Judge(map, *ExpectationOf(line, names)).verdict == Verdict::Certain ? 1U : 0U;
            }
        },
        check);
    std::printf("%zu of %zu certain\n", certain, lines.size());
    std::size_t steps = 0;
    Compare(
        "paths, beside the check",
        [&] {
            const CallMap map = ReadCallMap(dataBase, names, Measured);
            steps = FindPaths(map, names, NodeKey{AutoType, 5000}, 1).front().certain.value().size();
        },
        check);
    std::printf("%zu steps\n", steps);
    std::size_t told = 0;
    const Menu before = LargeMenu(0);
    const Menu after = LargeMenu(7);
    Compare(
        "calls of two nodes of 32,000 actions, beside the digits of both",
        [&] { told = CompareCalls(&before, &after).size(); },
        [&] {
            for (const Menu* menu : {&before, &after}) {
                for (const auto& [length, intervals] : DigitSpaceOf(menu->Node())) {
                    for (const DigitInterval& interval : intervals) {
                        told += TextOf(menu->Enter(length, interval)).size();
                    }
                }
            }
        });
    std::printf("%zu told\n", CompareCalls(&before, &after).size());
}

} // namespace

int main() {
    const TestStore store;
    Fill(store);
    std::printf("before: %s\n", PeakMemory().c_str());
    DataBase dataBase;
    History history(dataBase);
    Raw raw(store.File().string());
    std::size_t found = 0;
    std::size_t rows = 0;
    found = CheckPartition(dataBase, history, Measured).findings.size();
    std::printf("after a check: %s\n", PeakMemory().c_str());
    Compare(
        "check", [&] { found = CheckPartition(dataBase, history, Measured).findings.size(); },
        [&] {
            rows = 0;
            rows += raw.Read(Command::Get_All_AUTO_Nodes, {"1", "3", "9"});
            for (const Command command :
                 {Command::Get_All_AUTO_Prompts, Command::Get_All_AUTO_Actions, Command::Get_Register,
                  Command::Get_Other_Nodes, Command::Get_Other_References}) {
                rows += raw.Read(command, {"1", "3"});
            }
        });
    std::printf("%zu rows, %zu findings\n", rows, found);
    const TypeNames names(dataBase);
    Compare(
        "uses of AUTO 5000",
        [&] {
            found = ReadUses(dataBase, Measured, names, NodeKey{AutoType, 5000}).size();
        },
        [&] {
            rows = raw.Read(Command::Get_Uses, {"1", "3", "5000", "9", "9", "9", "AUTO", "AUTO", "AUTO"});
        });
    std::printf("%zu rows, %zu uses\n", rows, found);
    Compare(
        "uses of MSG 1",
        [&] {
            found = ReadUses(dataBase, Measured, names, NodeKey{MessageType, 1}).size();
        },
        [&] {
            rows = raw.Read(Command::Get_Uses, {"1", "3", "1", "0", "817", "818", "MSG", "M_ON", "M_OFF"});
        });
    std::printf("%zu rows, %zu uses\n", rows, found);
    CompareCallsBesideTheCheck(dataBase, history);
}
