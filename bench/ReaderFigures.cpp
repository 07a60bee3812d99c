// A save while others read a partition of 32,767 AUTO nodes, beside the same save alone, in a file or, where
// KAL_TEST_SERVER names the folder of a server for tests, on it. ReaderFigures [TURNS]

#include "platform/ChildProcess.h"
#include "testing/Saver.h"
#include "testing/TestStore.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <iostream>
#include <thread>

namespace KAL_AUTO_Node {
namespace {

constexpr NodePlace Saved{{1, 2}, 8};

using Clock = std::chrono::steady_clock;

void Fill(const TestStore& store) {
    const std::string numbers =
        "WITH RECURSIVE Numbers (Number) AS (SELECT 1 UNION ALL SELECT Number + 1 FROM "
        "Numbers WHERE Number < 32767) ";
    for (const char* rows :
         {"INSERT INTO Node_AUTO SELECT 1, 3, 9, Number, 1, 'No', 5, 3, 2, 'MSG', 1, 'MSG', 1, 'MSG', 1, "
          "'AUTO', 'Menu', 0, 0, 0, 814, 814, 'NONE', 0, 'NONE', 0 FROM Numbers",
          "INSERT INTO Node_General_Pool SELECT 1, 3, 9, Number, 'AUTO', 'Menu', '' FROM Numbers",
          "INSERT INTO Detail_AUTO_Prompts SELECT 1, 3, 1, 0, 1, Number, 'MSG' FROM Numbers",
          "INSERT INTO Detail_AUTO_Action SELECT 1, 3, 1, 9, Number % 1000 + 1, Number, '1', '1', 'AUTO' "
          "FROM "
          "Numbers",
          "INSERT INTO Detail_AUTO_Action SELECT 1, 3, 2, 9, Number % 500 + 1, Number, '2', '2', 'AUTO' FROM "
          "Numbers"}) {
        store.Execute(numbers + rows);
    }
}

// Milliseconds of a save that changes the label.
double Save(Saver& saver) {
    static int count = 0;
    AutoNode node = saver.Load();
    node.label = "Saved " + std::to_string(++count);
    const auto start = Clock::now();
    if (saver.Save(node)) {
        throw std::runtime_error("something stands in the way of a save");
    }
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

double Median(std::vector<double> values) {
    std::ranges::sort(values);
    return values.at(values.size() / 2);
}

// Alone and while the command runs, in turns.
void Compare(Saver& saver, const char* name, const std::vector<std::string>& command, std::size_t turns) {
    std::vector<double> alone;
    std::vector<double> beside;
    while (beside.size() < turns) {
        alone.push_back(Save(saver));
        ChildProcess reader({AUTO_NODE, command, {-1, -1, -1}, {}});
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        std::vector<double> during;
        while (!reader.WaitFor(std::chrono::milliseconds(20))) {
            during.push_back(Save(saver));
        }
        if (during.empty()) {
            throw std::runtime_error(std::string(name) + " is over before a save begins");
        }
        // The last may have gone on alone.
        during.pop_back();
        beside.insert(beside.end(), during.begin(), during.end());
    }
    std::printf("| %.2fx | a save while %s of 32,767 nodes runs, %s | %.2f ms | %.2f ms |\n",
                Median(beside) / Median(alone), name, TestStore::OnServer() ? "server" : "file",
                Median(beside), Median(alone));
}

void Run(std::size_t turns) {
    const TestStore store;
    Fill(store);
    Saver saver(Saved);
    for (int warm = 0; warm < 5; ++warm) {
        Save(saver);
    }
    std::puts("| beside / alone | work | beside | alone |\n| ---: | --- | ---: | ---: |");
    Compare(saver, "an export", {"export", (store.Folder() / "out").string()}, turns);
    Compare(saver, "a check", {"check", "1", "3"}, turns);
}

} // namespace
} // namespace KAL_AUTO_Node

int main(int argc, char** argv) {
    try {
        KAL_AUTO_Node::Run(argc > 1 ? std::stoul(argv[1]) : 100);
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "ReaderFigures: " << error.what() << '\n';
        return 1;
    }
}
