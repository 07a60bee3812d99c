#include "auto-node/Arguments.h"
#include "auto-node/Commands.h"
#include "auto-node/Progress.h"
#include "auto-node/Table.h"
#include "diagram/DotText.h"
#include "diagram/Graphviz.h"
#include "diagram/Sections.h"
#include "history/History.h"
#include "platform/Interruption.h"
#include "platform/NewFile.h"
#include "platform/RuntimeError.h"
#include "platform/VisibleText.h"
#include "store/DataBase.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>

namespace KAL_AUTO_Node {

namespace {

constexpr std::array<const char*, 4> Formats = {"svg", "png", "pdf", "dot"};
constexpr std::chrono::seconds TimeLimit{60};

// Of AUTO nodes: the time for a picture of more grows faster than their number, and nobody finds anything in
// it.
constexpr std::size_t PictureLimit = 5000;
// And in one of pixels, which is made smaller than anybody can read.
constexpr std::size_t PixelsLimit = 300;

struct Options {
    NodePlace place;
    bool oneNode = false;
    int depth = 2; // steps
    bool listing = false;
    int section = 0; // none
    std::string file;
};

// By the file's ending.
std::string FormatOf(const std::string& file) {
    const std::string ending = std::filesystem::path(file).extension().string();
    return ending.empty() ? ending : ending.substr(1);
}

std::string CheckFile(const std::string& file) {
    return std::ranges::find(Formats, FormatOf(file)) != Formats.end()
               ? std::string()
               : "'" + file + "' ends neither in .svg nor .png, .pdf or .dot";
}

void WriteFile(const std::string& file, const std::string& content) {
    Output output(file);
    output.Append(content);
    output.Finish();
}

CallFlow Read(const Options& options, DataBase& dataBase) {
    return Lasting("Reading the partition", [&] {
        History history(dataBase);
        return ReadCallFlow(dataBase, history, options.place.partition);
    });
}

// All but the template.
std::set<int> NodesOf(const CallFlow& flow) {
    std::set<int> shown;
    for (const auto& [number, node] : flow.nodes) {
        if (number != TemplateNumber) {
            shown.insert(number);
        }
    }
    if (shown.empty()) {
        throw RuntimeError("there are no AUTO nodes in " + flow.partition.Text());
    }
    return shown;
}

std::string GraphOf(const Options& options, DataBase& dataBase) {
    const CallFlow flow = Read(options, dataBase);
    const std::int16_t number = options.place.number;
    if (options.oneNode) {
        if (!flow.nodes.contains(number)) {
            FailWithout(options.place);
        }
        return DotText(flow, Surroundings(flow, number, options.depth), number);
    }
    std::set<int> shown = NodesOf(flow);
    if (options.section > 0) {
        auto sections = AutoNodesBySection(flow, shown);
        if (static_cast<std::size_t>(options.section) > sections.size()) {
            throw RuntimeError(flow.partition.Text() + " has " + Counted(sections.size(), "section") +
                               ", no " + std::to_string(options.section));
        }
        shown = std::move(sections.at(static_cast<std::size_t>(options.section - 1)).nodes);
    }
    const std::string format = FormatOf(options.file);
    const std::size_t limit = format == "png" ? PixelsLimit : PictureLimit;
    if (shown.size() > limit && !format.empty() && format != "dot") {
        throw RuntimeError("one picture" + std::string(format == "png" ? " of pixels" : "") +
                           " takes up to " + std::to_string(limit) + " AUTO nodes, and there are " +
                           std::to_string(shown.size()) +
                           "; --sections lists the parts in which they hang together, --section N draws "
                           "one, and NODE what is around a node; auto-node report writes a page of all");
    }
    return Lasting("Laying out sections", [&] { return DotText(flow, shown, std::nullopt); });
}

int ListSections(const Options& options, DataBase& dataBase) {
    const CallFlow flow = Read(options, dataBase);
    using enum Table::Align;
    Table table({Right, Left, Right});
    table.Add({"Section", "Begins with", "AUTO nodes"});
    int count = 0;
    for (const auto& [first, nodes] : AutoNodesBySection(flow, NodesOf(flow))) {
        const AutoNode& node = flow.nodes.at(first);
        table.Add({std::to_string(++count),
                   NodeKey{AutoType, first}.Text(node.type) + ' ' + node.label.value_or(""),
                   std::to_string(nodes.size())});
    }
    table.Print(std::cout);
    return 0;
}

std::string Drawn(const std::string& graph, const std::string& format, const std::string& file) {
    try {
        Progress progress("dot draws");
        Picture picture = DrawGraph(graph, format, TimeLimit, [&](std::chrono::seconds lasting) {
            progress.Show([&] {
                return "dot draws for " + Counted(static_cast<std::size_t>(lasting.count()), "second");
            });
        });
        std::cerr << picture.warnings << (picture.warnings.empty() ? "" : "\n");
        return std::move(picture.bytes);
    } catch (const std::exception& error) {
        const std::string text = file + ".dot";
        WriteFile(text, graph);
        throw RuntimeError(std::string(error.what()) + "; the graph is in " + text + ", for dot -T" + format +
                           " elsewhere. NODE with --depth, or --section, draws less of it");
    }
}

int Draw(const Options& options, const std::string& graph) {
    const Interruption interruption;
    if (options.file.empty()) {
        std::cout << graph;
        return 0;
    }
    const std::string format = FormatOf(options.file);
    WriteFile(options.file, format == "dot" ? graph : Drawn(graph, format, options.file));
    std::cout << "Drew " << Visible(options.file) << '\n';
    return 0;
}

} // namespace

Subcommand GraphCommand(CommandLine& program, const std::string& name) {
    auto options = std::make_shared<Options>();
    const CommandArguments command =
        program.Add(name, "Draw the call flow of a partition, or of the nodes around one");
    AddPartition(command, options->place.partition);
    const Option node = AddNumber(command, "NODE", options->place.number,
                                  "Number of the AUTO node whose surroundings are drawn; 0 for the template");
    const auto readDepth = [options](const std::string& text) {
        options->depth = ReadSteps("--depth", text);
    };
    command.Word("--depth", readDepth, "How many steps from NODE onwards and back; 2 by default")
        .ShownAs("STEPS")
        .Needs(node);
    const auto readSection = [options](const std::string& text) {
        options->section = ReadVersion("--section", text);
    };
    const Option section =
        command.Word("--section", readSection, "Only that of the parts in which the nodes hang together")
            .ShownAs("N")
            .Excludes(node);
    const Option listing =
        command.Flag("--sections", options->listing, "List those parts").Excludes(node).Excludes(section);
    command
        .Text("-o,--output", options->file,
              "The picture, ending in .svg, .png or .pdf, or in .dot for Graphviz's own text, which is "
              "printed where no file is given")
        .Check(CheckFile)
        .ShownAs("FILE")
        .Excludes(listing);
    return {command, [options, node](const StoreChoice& store) {
                options->oneNode = node.Given();
                if (options->listing) {
                    return Reading([&](DataBase& dataBase) { return ListSections(*options, dataBase); })(
                        store);
                }
                std::string graph;
                Reading([&](DataBase& dataBase) {
                    graph = GraphOf(*options, dataBase);
                    return 0;
                })(store);
                return Draw(*options, graph);
            }};
}

} // namespace KAL_AUTO_Node
