#include "auto-node/Arguments.h"
#include "auto-node/Commands.h"
#include "auto-node/Progress.h"
#include "auto-node/Table.h"
#include "diagram/DotText.h"
#include "diagram/Graphviz.h"
#include "history/History.h"
#include "platform/Interruption.h"
#include "platform/NewFile.h"
#include "platform/VisibleText.h"
#include "store/DataBase.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <stdexcept>

namespace KAL_AUTO_Node {

namespace {

constexpr std::array<const char*, 4> Formats = {"svg", "png", "pdf", "dot"};
constexpr std::chrono::seconds TimeLimit{60};

struct Options {
    NodePlace place;
    bool oneNode = false;
    int depth = 2; // steps
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

std::string GraphOf(const Options& options, DataBase& dataBase) {
    const auto& [partition, number] = options.place;
    History history(dataBase);
    const CallFlow flow = ReadCallFlow(dataBase, history, partition);
    const std::string place = "configuration " + std::to_string(partition.config) + ", partition " +
                              std::to_string(partition.number);
    if (options.oneNode) {
        if (!flow.nodes.contains(number)) {
            FailWithout(options.place);
        }
        return DotText(flow, Surroundings(flow, number, options.depth), number);
    }
    std::set<int> shown;
    for (const auto& [other, node] : flow.nodes) {
        if (other != TemplateNumber) {
            shown.insert(other);
        }
    }
    if (shown.empty()) {
        throw std::runtime_error("there are no AUTO nodes in " + place);
    }
    return DotText(flow, shown, std::nullopt);
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
        throw std::runtime_error(std::string(error.what()) + "; the graph is in " + text + ", for dot -T" +
                                 format + " elsewhere. NODE with --depth draws less of it");
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

Subcommand GraphCommand(CommandLine& program) {
    auto options = std::make_shared<Options>();
    const CommandArguments command =
        program.Add("graph", "Draw the call flow of a partition, or of the nodes around one");
    AddPartition(command, options->place.partition);
    const Option node = AddNumber(command, "NODE", options->place.number,
                                  "Number of the AUTO node whose surroundings are drawn; 0 for the template");
    const auto readDepth = [options](const std::string& text) {
        options->depth = ReadSteps("--depth", text);
    };
    command.Word("--depth", readDepth, "How many steps from NODE onwards and back; 2 by default")
        .ShownAs("STEPS")
        .Needs(node);
    command
        .Text("-o,--output", options->file,
              "The picture, ending in .svg, .png or .pdf, or in .dot for Graphviz's own text, which is "
              "printed where no file is given")
        .Check(CheckFile)
        .ShownAs("FILE");
    return {command, [options, node](const StoreChoice& store) {
                options->oneNode = node.Given();
                std::string graph;
                Reading([&](DataBase& dataBase) {
                    graph = GraphOf(*options, dataBase);
                    return 0;
                })(store);
                return Draw(*options, graph);
            }};
}

} // namespace KAL_AUTO_Node
