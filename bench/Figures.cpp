#include "bench/Figures.h"

#include "bench/Benches.h"
#include "bench/Desk.h"
#include "testing/FaultySystem.h"

#include <QApplication>
#include <QDialog>
#include <QProcess>
#include <QTimer>
#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <algorithm>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <regex>
#include <stdexcept>
#include <thread>

namespace KAL_AUTO_Node {

namespace {

// The value after "name: " in one of the system's lists.
std::string ValueIn(const char* file, const std::string& name) {
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(name)) {
            const auto colon = line.find(':');
            const auto value = line.find_first_not_of(" \t", colon + 1);
            return value == std::string::npos ? std::string() : line.substr(value);
        }
    }
    return "?";
}

bool Compare(std::ostream& out, const char* work, const std::vector<std::string>& ours,
             const std::vector<std::string>& floor) {
    const auto [mine, other] = std::ranges::mismatch(ours, floor);
    out << "| " << work << " | " << ours.size() << " | " << floor.size() << " | ";
    const bool same = mine == ours.end() && other == floor.end();
    if (same) {
        out << "yes |\n";
    } else {
        out << "no, from statement " << mine - ours.begin() + 1
            << " on: " << (mine == ours.end() ? "none" : *mine) << " / "
            << (other == floor.end() ? "none" : *other) << " |\n";
    }
    return same;
}

void PrintSyncsOf(std::ostream& out, const char* size, const char* side, const TestStore& store,
                  const std::function<void()>& save) {
    EmptyLog(store);
    // The first write to an emptied log also syncs the log's new head.
    for (const char* log : {"emptied", "in use"}) {
        const FileSyncs syncs = SyncsOf(save);
        out << "| " << size << " | " << side << " | " << log << " | "
            << syncs.log + syncs.database + syncs.other << " | " << syncs.log << " | " << syncs.database
            << " | " << syncs.other << " |\n";
    }
}

// Whether the benchmarks that are asked for are of that size, or of none.
bool IsAskedFor(const char* size) {
    const std::regex filter(benchmark::GetBenchmarkFilter());
    const auto takes = [&](const SizedPlace& sized) { return std::regex_search(sized.size, filter); };
    return std::regex_search(size, filter) ||
           (std::ranges::none_of(SmallNodes, takes) && std::ranges::none_of(LargeNodes, takes));
}

std::string MemoryOf(Place place) {
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(
        QApplication::applicationFilePath(),
        {QString::fromLatin1(MemoryFlag), QString::number(place.partition), QString::number(place.node)});
    if (!process.waitForFinished(60000) || process.exitCode() != 0) {
        throw std::runtime_error("the memory could not be measured");
    }
    return process.readAllStandardOutput().trimmed().toStdString();
}

} // namespace

void PrintMachine(std::ostream& out) {
    out << "Measured with Qt " << qVersion() << " and SQLite " << sqlite3_libversion() << " on "
        << std::thread::hardware_concurrency() << " x " << ValueIn("/proc/cpuinfo", "model name") << ".\n\n";
}

void PrintSyncs(std::ostream& out, const TestStore& store) {
    out << "\n### File syncs of one save\n\n"
           "| node | | log before | all | of the log | of the store | other |\n"
           "| --- | --- | --- | ---: | ---: | ---: | ---: |\n";
    for (const SizedPlace& sized : LargeNodes) {
        if (!IsAskedFor(sized.size)) {
            continue;
        }
        Desk desk(sized.place);
        const auto commands = CommandsOf(sized.place, &SaveNode);
        RawStore raw(store.File());
        PrintSyncsOf(out, sized.size, "ours", store, [&] { SaveNode(desk); });
        PrintSyncsOf(out, sized.size, "floor", store, [&] { raw.Save(commands); });
    }
}

void PrintMemory(std::ostream& out) {
    out << "\n### Peak memory of a process that opens the editor\n\n| opened | MB |\n| --- | ---: |\n";
    out << "| a bare window instead | " << MemoryOf({0, 0}) << " |\n";
    for (const auto& sizes : {SmallNodes, LargeNodes}) {
        for (const SizedPlace& sized : sizes) {
            if (!IsAskedFor(sized.size)) {
                continue;
            }
            out << "| " << sized.size << " | " << MemoryOf(sized.place) << " |\n";
        }
    }
}

int PrintOwnMemory(Place place) {
    if (place.partition == 0) {
        QDialog window;
        window.resize(1040, 700);
        QTimer::singleShot(100, &window, &QDialog::close);
        window.exec();
    } else {
        OpenToFirstPaint(place);
    }
    const std::string peak = ValueIn("/proc/self/status", "VmHWM"); // "N kB"
    std::cout << std::fixed << std::setprecision(1) << std::stod(peak) / 1024 << '\n';
    return 0;
}

bool PrintStatements(std::ostream& out, const TestStore& store) {
    out << "\n### Statements, including those of the settings\n\n"
           "| work | ours | floor | the same |\n| --- | ---: | ---: | --- |\n";
    const Place place = LargeNodes[1].place;
    const auto number = static_cast<std::int16_t>(place.node);
    const auto checking = CommandsOf(place, &CheckNode);
    const auto saving = CommandsOf(place, &SaveNode);
    const Recording recording;
    Desk desk(place);
    const auto openOurs = Recording::Statements();
    RawStore raw(store.File());
    raw.Open(place);
    bool same = Compare(out, "open", openOurs, Recording::Statements());

    const auto compare = [&](const char* work, const auto& ours, const auto& floor) {
        // Equally long logs, so that both or neither carry theirs over.
        EmptyLog(store);
        Recording::Statements();
        ours();
        const auto statements = Recording::Statements();
        EmptyLog(store);
        Recording::Statements();
        floor();
        same = Compare(out, work, statements, Recording::Statements()) && same;
    };
    GUI& gui = desk.Form();
    compare(
        "LoadData", [&] { desk.Rules().LoadData(gui, number); }, [&] { raw.Load(place); });
    CheckNode(desk); // opens its connection
    compare(
        "missing-node check", [&] { CheckNode(desk); }, [&] { raw.Perform(checking); });
    compare(
        "SaveChanges", [&] { SaveNode(desk); }, [&] { raw.Save(saving); });
    return same;
}

} // namespace KAL_AUTO_Node
