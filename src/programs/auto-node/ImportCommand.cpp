#include "auto-node/Arguments.h"
#include "auto-node/CallDiff.h"
#include "auto-node/Changes.h"
#include "auto-node/CheckReport.h"
#include "auto-node/Commands.h"
#include "auto-node/Programs.h"
#include "auto-node/Progress.h"
#include "auto-node/Table.h"
#include "exchange/ExchangeImport.h"
#include "exchange/FileKind.h"
#include "exchange/JetImport.h"
#include "exchange/Plan.h"
#include "platform/Interruption.h"
#include "platform/RuntimeError.h"
#include "platform/VisibleText.h"
#include "store/CreateStore.h"
#include "store/DataBase.h"

#include <iostream>
#include <memory>

namespace KAL_AUTO_Node {

namespace {

struct Options {
    std::string file;
    bool damaged = false;
    std::string note;
    std::string plan;
    bool dryRun = false;
    CallOptions calls;
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
int BringOver(const Options& options, const std::filesystem::path& store) {
    const bool exists = std::filesystem::exists(std::filesystem::symlink_status(store));
    const Interruption interruption;
    JetReport report;
    {
        Progress progress("Reading the file");
        const auto show = [&](const std::string& table, std::uint32_t taken, std::uint32_t stored) {
            progress.Show(
                [&] { return table + ": " + std::to_string(taken) + " of " + Counted(stored, "row"); });
        };
        const auto fill = [&](DataBase& dataBase) {
            report = ImportJet(dataBase, {ProgramOfOurs("auto-node-jet")}, options.file,
                               options.damaged ? Damage::Accept : Damage::Refuse, show);
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
    std::cout << (exists ? "Filled " : "Created ") << Visible(store.string()) << "\n\n";
    try {
        PrintCheckOf(store);
    } catch (const RuntimeError& error) {
        // All is in the store, whatever a check says.
        std::cout << "The check of it could not be made: " << Visible(error.what()) << '\n';
    }
    return 0;
}

// More are counted, as rows of other tables are.
constexpr std::size_t MostNodesTold = 100;

// A node that changes, and how.
struct ChangedNode {
    NodePlace place;
    std::vector<std::string> changes;
};

void Print(const ChangedNode& node) {
    std::cout << node.place.Text() << ":\n";
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

std::string Named(const std::optional<Partition>& scope) { return scope ? scope->Text() : "the whole store"; }

int CarryBack(const Options& options, DataBase& dataBase) {
    std::vector<ChangedNode> nodes;
    std::vector<NodeStates> states;
    std::size_t untold = 0;
    const auto tell = [&](const NodePlace& place, const auto& before, const auto& after) {
        if (options.calls.calls) {
            states.push_back({place, before, after});
        }
        if (nodes.size() == MostNodesTold) {
            ++untold;
        } else {
            nodes.push_back({place, ChangesInWords(before, after)});
        }
    };
    ExchangeReport report;
    RowPlan plan;
    const bool onlyTells = options.dryRun || !options.plan.empty();
    {
        Progress progress("Comparing");
        report = ImportExchange(
            dataBase, options.file, onlyTells ? Import::OnlyTell : Import::Carry, tell,
            [&](std::uint64_t rows) { progress.Show([&] { return Counted(rows, "row") + " compared"; }); },
            options.note, options.plan.empty() ? nullptr : &plan);
    }
    if (options.calls.json) {
        return options.calls.Status(PrintCalls(dataBase, states, true));
    }
    std::cout << (onlyTells ? "Would import " : "Imported ") << Named(report.scope) << " into "
              << Visible(dataBase.File().string()) << '\n';
    for (const ChangedNode& node : nodes) {
        Print(node);
    }
    if (untold > 0) {
        std::cout << "and " << Counted(untold, "AUTO node") << " more\n";
    }
    for (const ExchangeReport::Table& table : report.tables) {
        Print(table);
    }
    if (report.tables.empty()) {
        std::cout << "Nothing differs\n";
    }
    if (!options.plan.empty()) {
        WritePlan(options.plan, plan);
    }
    if (options.calls.calls) {
        std::cout << '\n';
        return options.calls.Status(PrintCalls(dataBase, states, false));
    }
    return options.calls.Status(!report.tables.empty());
}

int Run(const Options& options, const StoreChoice& store) {
    switch (KindOf(options.file)) {
    case FileKind::Jet:
        if (options.dryRun || !options.plan.empty()) {
            throw RuntimeError(
                "a Jet file goes into a new store; --dry-run and --plan are for what export wrote");
        }
        return BringOver(options, store.NewPlace());
    case FileKind::LaterJet:
        throw RuntimeError("'" + options.file + "' has a later form than Jet 4; save it as Jet 4 first");
    case FileKind::Exchange:
    case FileKind::Json: {
        DataBase dataBase = store.Open();
        return CarryBack(options, dataBase);
    }
    default:
        throw RuntimeError("'" + options.file + "' is neither a Jet file nor what export wrote");
    }
}

} // namespace

Subcommand ImportCommand(CommandLine& program, const std::string& name) {
    auto options = std::make_shared<Options>();
    const CommandArguments command = program.Add(
        name, "Bring an old Jet file (NewDB.mdb) over into a new store, or what export wrote back into one",
        "--into,--store");
    command.Text("FILE", options->file, "The file; what it holds tells what it is").Required().ShownAs("");
    AddNote(command, options->note);
    const Option dryRun =
        command.Flag("--dry-run", options->dryRun, "Only tell what would change; not for a Jet file");
    command.Text("--plan", options->plan, "Only write down what would change, for apply; not for a Jet file")
        .ShownAs("FILE")
        .Excludes(dryRun);
    AddCalls(command, options->calls, dryRun);
    command.Flag("--damaged", options->damaged, "Take what can be read of a damaged Jet file");
    return {command, ByStatus(options->calls.exitCode,
                              [options](const StoreChoice& store) { return Run(*options, store); })};
}

} // namespace KAL_AUTO_Node
