#include "auto-node/CallDiff.h"
#include "auto-node/Changes.h"
#include "auto-node/CheckReport.h"
#include "auto-node/Commands.h"
#include "auto-node/Programs.h"
#include "auto-node/Table.h"
#include "exchange/ExchangeImport.h"
#include "exchange/FileKind.h"
#include "exchange/JetImport.h"
#include "platform/NativePath.h"
#include "platform/VisibleText.h"
#include "store/CreateStore.h"
#include "store/DataBase.h"
#include "store/ParlonPlusFilesAndFolders.h"

#include <iostream>
#include <memory>
#include <stdexcept>
#include <unistd.h>

namespace KAL_AUTO_Node {

namespace {

struct Options {
    std::string file;
    std::string into;
    bool damaged = false;
    bool dryRun = false;
    CallOptions calls;
};

// A line that writes over itself, for a person who waits; none where nobody looks.
class ProgressLine {
  public:
    ~ProgressLine() { Show(""); }

    void operator()(const std::string& table, std::uint32_t taken, std::uint32_t stored) {
        Show(table + ": " + std::to_string(taken) + " of " + std::to_string(stored) + " rows");
    }

    ProgressLine() = default;
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

  private:
    static void Show(const std::string& text) {
        if (isatty(STDERR_FILENO) != 0) {
            std::cerr << '\r' << text << "\x1b[K" << std::flush;
        }
    }
};

void Print(const char* head, const std::vector<std::string>& lines) {
    if (!lines.empty()) {
        std::cout << head << '\n';
    }
    for (const std::string& line : lines) {
        std::cout << "    " << Visible(line) << '\n';
    }
}

void Print(const JetReport& report) {
    using enum Table::Align;
    Table table({Left, Right, Right});
    table.Add({"Table", "Rows in the file", "Taken"});
    for (const auto& [name, stored, taken] : report.tables) {
        table.Add({name, stored ? std::to_string(*stored) : "-", std::to_string(taken)});
    }
    table.Print(std::cout);
    Print("Not known here and left:", report.unknown);
    Print("Worth knowing:", report.remarks);
    Print("Damaged:", report.damage);
    Print("Not taken:", report.notTaken);
    if (report.rowsNotTaken > 0 || report.valuesNotTaken > 0) {
        std::cout << "Rows not taken: " << report.rowsNotTaken
                  << ", values not taken, Null instead: " << report.valuesNotTaken << '\n';
    }
}

// Into a store that is made for it, or one that was made and holds nothing yet, such as one on a server.
int BringOver(const Options& options) {
    const std::filesystem::path store =
        options.into.empty() ? NativePath(GetNewDatabaseFile()) : std::filesystem::path(options.into);
    const bool exists = std::filesystem::exists(std::filesystem::symlink_status(store));
    JetReport report;
    {
        ProgressLine progress;
        const auto fill = [&](DataBase& dataBase) {
            report = ImportJet(dataBase, ProgramOfOurs("auto-node-jet"), options.file,
                               options.damaged ? Damage::Accept : Damage::Refuse, std::ref(progress));
        };
        if (exists) {
            DataBase dataBase(store);
            Transaction all(dataBase);
            fill(dataBase);
            all.Commit();
            dataBase.Flush();
        } else {
            CreateStore(store, fill);
        }
    }
    Print(report);
    std::cout << (exists ? "Filled " : "Created ") << store.string() << "\n\n";
    try {
        PrintCheckOf(store);
    } catch (const RuntimeError& error) {
        // All is in the store, whatever a check says.
        std::cout << "The check of it could not be made: " << Visible(error.what()) << '\n';
    }
    return 0;
}

// A node that changes, and how.
struct ChangedNode {
    NodePlace place;
    std::vector<std::string> changes;
};

void Print(const ChangedNode& node) {
    const auto& [partition, number] = node.place;
    std::cout << "AUTO node " << number << " of configuration " << partition.config << ", partition "
              << partition.number << ":\n";
    if (node.changes.empty()) {
        std::cout << "    nothing that the editor shows\n";
    } else {
        PrintChanges(node.changes);
    }
}

void Print(const ExchangeReport::Table& table) {
    std::cout << table.name << ": " << table.added << " added, " << table.changed << " changed, "
              << table.removed << " removed\n";
    for (const std::string& row : table.rows) {
        std::cout << "    " << Visible(row) << '\n';
    }
    if (table.untold > 0) {
        std::cout << "    and " << table.untold << " more\n";
    }
}

std::string Named(const std::optional<Partition>& scope) {
    return scope ? "configuration " + std::to_string(scope->config) + ", partition " +
                       std::to_string(scope->number)
                 : "the whole store";
}

int CarryBack(const Options& options) {
    const auto dataBase =
        options.into.empty() ? std::make_unique<DataBase>() : std::make_unique<DataBase>(options.into);
    std::vector<ChangedNode> nodes;
    std::vector<NodeStates> states;
    const ExchangeReport report =
        ImportExchange(*dataBase, options.file, options.dryRun ? Import::OnlyTell : Import::Carry,
                       [&](const NodePlace& place, const auto& before, const auto& after) {
                           nodes.push_back({place, ChangesInWords(before, after)});
                           if (options.calls.calls) {
                               states.push_back({place, before, after});
                           }
                       });
    if (options.calls.json) {
        PrintCalls(*dataBase, states, true);
        return 0;
    }
    std::cout << (options.dryRun ? "Would import " : "Imported ") << Named(report.scope) << " into "
              << dataBase->File().string() << '\n';
    for (const ChangedNode& node : nodes) {
        Print(node);
    }
    for (const ExchangeReport::Table& table : report.tables) {
        Print(table);
    }
    if (report.tables.empty()) {
        std::cout << "Nothing differs\n";
    }
    if (options.calls.calls) {
        std::cout << '\n';
        PrintCalls(*dataBase, states, false);
    }
    return 0;
}

int Run(const Options& options) {
    switch (KindOf(options.file)) {
    case FileKind::Jet:
        if (options.dryRun) {
            throw std::runtime_error("a Jet file goes into a new store; --dry-run is for what export wrote");
        }
        return BringOver(options);
    case FileKind::LaterJet:
        throw std::runtime_error("'" + options.file +
                                 "' has a later form than Jet 4; save it as Jet 4 first");
    case FileKind::Exchange:
    case FileKind::Json:
        return CarryBack(options);
    default:
        throw std::runtime_error("'" + options.file + "' is neither a Jet file nor what export wrote");
    }
}

} // namespace

Subcommand ImportCommand(CommandLine& program) {
    auto options = std::make_shared<Options>();
    const CommandArguments command = program.Add(
        "import",
        "Bring an old Jet file (NewDB.mdb) over into a new store, or what export wrote back into one");
    command.Text("FILE", options->file, "The file; what it holds tells what it is").Required().ShownAs("");
    command
        .Text("--into", options->into,
              "The store's file, a new one or without rows for a Jet file; where the editor looks "
              "where none is given")
        .ShownAs("STORE");
    const Option dryRun =
        command.Flag("--dry-run", options->dryRun, "Only tell what would change; not for a Jet file");
    AddCalls(command, options->calls, dryRun);
    command.Flag("--damaged", options->damaged, "Take what can be read of a damaged Jet file");
    return {command, [options] { return Run(*options); }};
}

} // namespace KAL_AUTO_Node
