#include "exchange/FileKind.h"
#include "exchange/JetImport.h"
#include "host/Commands.h"
#include "host/Programs.h"
#include "host/Table.h"
#include "platform/NativePath.h"
#include "platform/VisibleText.h"
#include "store/CreateStore.h"
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
    void Show(const std::string& text) {
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

int BringOver(const Options& options) {
    const std::filesystem::path store =
        options.into.empty() ? NativePath(GetNewDatabaseFile()) : std::filesystem::path(options.into);
    JetReport report;
    {
        ProgressLine progress;
        CreateStore(store, [&](DataBase& dataBase) {
            report = ImportJet(dataBase, ProgramOfOurs("auto-node-jet"), options.file,
                               options.damaged ? Damage::Accept : Damage::Refuse, std::ref(progress));
        });
    }
    Print(report);
    // Here what a check finds in the new store is to be told.
    std::cout << "Created " << store.string() << '\n';
    return 0;
}

int Run(const Options& options) {
    switch (KindOf(options.file)) {
    case FileKind::Jet:
        return BringOver(options);
    case FileKind::LaterJet:
        throw std::runtime_error("'" + options.file +
                                 "' has a later form than Jet 4; save it as Jet 4 first");
    default:
        throw std::runtime_error("'" + options.file + "' is no Jet file");
    }
}

} // namespace

Subcommand ImportCommand(CLI::App& program) {
    auto options = std::make_shared<Options>();
    CLI::App* command = program.add_subcommand(
        "import", "Bring over what an old Jet file (NewDB.mdb) holds into a new store");
    command->add_option("FILE", options->file, "The file")->required()->type_name("");
    command
        ->add_option("--into", options->into,
                     "The new store's file; where the editor looks where none is given")
        ->type_name("STORE");
    command->add_flag("--damaged", options->damaged, "Take what can be read of a damaged Jet file");
    return {command, [options] { return Run(*options); }};
}

} // namespace KAL_AUTO_Node
