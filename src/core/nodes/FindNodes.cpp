#include "nodes/FindNodes.h"

#include "nodes/Overview.h"
#include "platform/FoldCase.h"

#include <algorithm>
#include <map>
#include <sstream>

namespace KAL_AUTO_Node {

namespace {

// Above as many it is faster to read all references once than to ask for those of each.
constexpr std::size_t Few = 2;

void CountUses(DataBase& dataBase, Partition partition, const TypeNames& names,
               std::vector<FoundNode>& found) {
    if (found.size() <= Few) {
        for (FoundNode& one : found) {
            one.uses = ReadUses(dataBase, partition, names, one.node).size();
        }
        return;
    }
    std::set<NodeKey> nodes;
    for (const FoundNode& one : found) {
        nodes.insert(one.node);
    }
    std::map<NodeKey, std::size_t> counts;
    for (const StoredReference& use : ReadUses(dataBase, partition, names, nodes)) {
        const auto typeID = use.typeID ? use.typeID : names.ID(use.type);
        ++counts[NodeKey{typeID.value_or(0), use.number.value_or(0)}.Itself()];
    }
    for (FoundNode& one : found) {
        one.uses = counts[one.node];
    }
}

} // namespace

NodeWords::NodeWords(const std::string& text) {
    std::istringstream words(FoldCase(text));
    for (std::string word; words >> word;) {
        const bool digits = word.find_first_not_of("-0123456789") == std::string::npos;
        words_.push_back({std::move(word), digits});
    }
}

bool NodeWords::Fit(const std::string& label, const std::string& type, int number, bool typing) const {
    return std::ranges::all_of(words_, [&](const Word& word) {
        return label.find(word.text) != std::string::npos || word.text == type ||
               (word.digits && std::to_string(number).compare(
                                   0, typing ? word.text.size() : std::string::npos, word.text) == 0);
    });
}

bool NodeWords::Name(int number) const {
    return std::ranges::any_of(
        words_, [&](const Word& word) { return word.digits && word.text == std::to_string(number); });
}

std::vector<FoundNode> FindNodes(DataBase& dataBase, Partition partition, const TypeNames& names,
                                 const std::string& text) {
    const NodeWords words(text);
    std::map<int, std::string> types;
    for (const auto& [typeID, name] : names.All()) {
        types.emplace(typeID, FoldCase(name));
    }
    std::vector<FoundNode> found;
    ReadRegister(dataBase, partition, [&](const NodeKey& node, std::string_view, std::string_view label) {
        if (words.Fit(FoldCase(label), types[node.typeID], node.number)) {
            found.push_back({node, std::string(label), 0});
        }
    });
    CountUses(dataBase, partition, names, found);
    return found;
}

} // namespace KAL_AUTO_Node
