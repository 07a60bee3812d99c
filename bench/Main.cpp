#include "bench/Benches.h"
#include "bench/Figures.h"
#include "history/History.h"
#include "store/DataBase.h"
#include "testing/FaultySystem.h"
#include "testing/OwnSettings.h"

#include <QApplication>
#include <QMessageBox>
#include <QTimer>
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <iostream>
#include <vector>

using namespace KAL_AUTO_Node;

namespace {

// Repetitions of all benchmarks in random order, so that a slow spell of the machine meets no work alone.
// Options of the caller come last, so that they win.
std::vector<std::string> Options(int count, char** arguments) {
    std::vector<std::string> options = {arguments[0], "--benchmark_enable_random_interleaving=true",
                                        "--benchmark_repetitions=9", "--benchmark_min_time=0.05"};
    options.insert(options.end(), arguments + 1, arguments + count);
    return options;
}

// Tells on standard error which benchmark has run; the table is printed at the end by whoever knows the
// pairs.
class Progress : public benchmark::BenchmarkReporter {
  public:
    bool ReportContext(const Context& /*context*/) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override {
        if (!runs.empty()) {
            std::cerr << runs.front().run_name.function_name << '\n';
        }
    }
};

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

    StartFaultySystem();
    const TestStore store;
    {
        // As in any store in which somebody has saved.
        DataBase dataBase;
        static_cast<void>(History(dataBase).Prepare());
    }
    AddContent(store);
    EmptyLog(store);

    Pairs pairs;
    AddOpenPairs(pairs, store);
    AddLoadSavePairs(pairs, store);
    AddCheckPairs(pairs, store);
    AddListPairs(pairs);
    AddPickerPairs(pairs);
    Progress progress;
    benchmark::RunSpecifiedBenchmarks(&progress);

    PrintMachine(std::cout);
    pairs.PrintTable(std::cout);
    PrintSyncs(std::cout, store);
    PrintMemory(std::cout);
    if (!PrintStatements(std::cout, store)) {
        std::cerr << "benchmarks: the floors do not run the editor's statements\n";
        return 1;
    }
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const QApplication application(argc, argv);
    const OwnSettings own;
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
