#include "auto-node/Arguments.h"

#include "history/Version.h"
#include "nodes/AutoNodeReader.h"
#include "nodes/NodeTypes.h"
#include "nodes/References.h"
#include "platform/RuntimeError.h"
#include "platform/VisibleText.h"
#include "platform/WholeNumber.h"

#include <fstream>
#include <limits>
#include <sstream>
#include <string>

namespace KAL_AUTO_Node {

namespace {

// By itself the parser takes octal numbers and empty texts, too.
template <class Whole>
Whole ReadWhole(const std::string& name, const std::string& text, Whole first) {
    constexpr Whole last = std::numeric_limits<Whole>::max();
    const auto number = WholeNumber<Whole>(text);
    if (!number || *number < first) {
        Refuse(name, "'" + text + "' is no whole number from " + std::to_string(first) + " to " +
                         std::to_string(last));
    }
    return *number;
}

} // namespace

std::int16_t ReadNumber(const std::string& name, const std::string& text) {
    return ReadWhole(name, text, std::numeric_limits<std::int16_t>::min());
}

int ReadVersion(const std::string& name, const std::string& text) { return ReadWhole(name, text, 1); }

int ReadSteps(const std::string& name, const std::string& text) { return ReadWhole(name, text, 0); }

Option AddNumber(const CommandArguments& command, const std::string& name, std::int16_t& number,
                 const std::string& description) {
    const auto read = [name, &number](const std::string& text) { number = ReadNumber(name, text); };
    return command.Word(name, read, description).ShownAs("");
}

Option AddAnyPartition(const CommandArguments& command, Partition& partition) {
    const Option config = AddNumber(command, "CONFIG", partition.config, "Configuration number");
    const Option number = AddNumber(command, "PARTITION", partition.number, "Partition number");
    config.Needs(number);
    return number;
}

void AddPartition(const CommandArguments& command, Partition& partition) {
    AddNumber(command, "CONFIG", partition.config, "Configuration number").Required();
    AddNumber(command, "PARTITION", partition.number, "Partition number").Required();
}

Option AddType(const CommandArguments& command, const std::string& name, std::string& type) {
    return command.Text(name, type, "Node type, by name (MSG, AUTO, ...) or ID").ShownAs("");
}

void AddNode(const CommandArguments& command, NodePlace& place) {
    AddPartition(command, place.partition);
    AddNumber(command, "NODE", place.number, "Number of the AUTO node; 0 for the partition's template")
        .Required();
}

NodeKey NodeArguments::Meant(const TypeNames& names) const { return {NodeTypeOf(names.Meant(type)), number}; }

void AddNodeOfAnyType(const CommandArguments& command, NodeArguments& node) {
    AddPartition(command, node.partition);
    AddType(command, "TYPE", node.type).Required();
    AddNumber(command, "NUMBER", node.number, "Number of the node").Required();
}

std::function<void(const std::string&)> ReadTime(const std::string& name, std::string& stamp, int daysLater) {
    return [name, &stamp, daysLater](const std::string& text) {
        const auto read = StampOf(text, daysLater);
        if (!read) {
            Refuse(name, "'" + text + "' is no day or time, such as 2026-11-25 or \"2026-11-25 18:30\"");
        }
        stamp = *read;
    };
}

Option AddNote(const CommandArguments& command, std::string& note) {
    constexpr std::size_t longest = 1000;
    const auto read = [&note](const std::string& text) {
        if (text.size() > longest) {
            Refuse("--note", "is of " + std::to_string(text.size()) + " bytes; at most " +
                                 std::to_string(longest) + " are kept");
        }
        note = text;
    };
    return command.Word("--note", read, "Why: the history keeps it with the change").ShownAs("TEXT");
}

std::string ReadTextFile(const std::string& file) {
    std::ifstream in(file, std::ios::binary);
    std::ostringstream text;
    if (!in || (in.peek() != std::ifstream::traits_type::eof() && !(text << in.rdbuf())) || in.bad()) {
        throw RuntimeError("cannot read '" + file + "'");
    }
    return std::move(text).str();
}

void RequireNoObstacles(const std::vector<std::string>& obstacles) {
    if (obstacles.empty()) {
        return;
    }
    std::string text = "nothing is changed:";
    for (const std::string& obstacle : obstacles) {
        text += "\n  " + Visible(obstacle);
    }
    throw RuntimeError(text);
}

void FailWithoutNodes(Partition partition) { throw RuntimeError(partition.Text() + " has no nodes"); }

void FailWithout(const NodePlace& place) { throw RuntimeError(place.Text() + " does not exist"); }

AutoNode RequireAutoNode(DataBase& dataBase, const NodePlace& place) {
    if (auto node = ReadAutoNode(dataBase, place, Labels::ReadOfNodes)) {
        return std::move(*node);
    }
    FailWithout(place);
}

} // namespace KAL_AUTO_Node
