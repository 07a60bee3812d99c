#include "bench/Benches.h"
#include "bench/Figures.h"
#include "tests/FileSyncs.h"

#include <QApplication>
#include <QMessageBox>
#include <QTimer>
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <iostream>
#include <vector>

using namespace KAL_AUTO_Node;

namespace {

// Both sides of every pair take turns, so that what else the machine does falls on both. Options of the
// caller come last, so that they win.
std::vector<std::string> Options(int count, char** arguments) {
    std::vector<std::string> options = {arguments[0], "--benchmark_enable_random_interleaving=true",
                                        "--benchmark_repetitions=9", "--benchmark_min_time=0.05"};
    options.insert(options.end(), arguments + 1, arguments + count);
    return options;
}

// A message box would wait for a person for ever; here it only can tell that something is wrong.
void RefuseMessages() {
    auto* watch = new QTimer(qApp);
    QObject::connect(watch, &QTimer::timeout, [] {
        if (const auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            std::cerr << "benchmarks: a message appeared: " << box->text().toStdString() << std::endl;
            std::_Exit(1);
        }
    });
    watch->start(200);
}

int Measure(int argc, char** argv) {
    std::vector<std::string> options = Options(argc, argv);
    std::vector<char*> arguments;
    for (std::string& option : options) {
        arguments.push_back(option.data());
    }
    auto count = static_cast<int>(arguments.size());
    arguments.push_back(nullptr);
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) {
        return 2;
    }

    StartCountingSyncs();
    const TestStore store;
    AddContent(store);
    EmptyLog(store);

    Pairs pairs;
    AddOpenPairs(pairs, store);
    AddLoadSavePairs(pairs, store);
    AddCheckPairs(pairs, store);
    AddListPairs(pairs);
    AddPickerPairs(pairs);
    Collector collector;
    benchmark::RunSpecifiedBenchmarks(&collector);
    // The scenes are windows, which end before the application does.
    benchmark::ClearRegisteredBenchmarks();

    PrintMachine(std::cout);
    pairs.PrintTable(std::cout, collector.Measured());
    PrintSyncs(std::cout, store);
    PrintMemory(std::cout);
    PrintStatements(std::cout, store);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    RefuseMessages();
    try {
        if (argc == 4 && std::string(argv[1]) == MemoryFlag) {
            return PrintOwnMemory({std::stoi(argv[2]), std::stoi(argv[3])});
        }
        return Measure(argc, argv);
    } catch (const std::exception& error) {
        std::cerr << "benchmarks: " << error.what() << '\n';
        return 1;
    }
}
