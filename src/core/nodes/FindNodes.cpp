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

std::vector<std::string> WordsOf(const std::string& text) {
    std::istringstream words(FoldCase(text));
    std::vector<std::string> all;
    for (std::string word; words >> word;) {
        all.push_back(std::move(word));
    }
    return all;
}

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

std::vector<FoundNode> FindNodes(DataBase& dataBase, Partition partition, const TypeNames& names,
                                 const std::string& text) {
    const auto words = WordsOf(text);
    std::map<int, std::string> types;
    for (const auto& [typeID, name] : names.All()) {
        types.emplace(typeID, FoldCase(name));
    }
    std::vector<FoundNode> found;
    ReadRegister(dataBase, partition, [&](const NodeKey& node, std::string_view, std::string_view label) {
        const std::string folded = FoldCase(label);
        const auto fits = [&](const std::string& word) {
            return folded.find(word) != std::string::npos || word == std::to_string(node.number) ||
                   word == types[node.typeID];
        };
        if (std::ranges::all_of(words, fits)) {
            found.push_back({node, std::string(label), 0});
        }
    });
    CountUses(dataBase, partition, names, found);
    return found;
}

} // namespace KAL_AUTO_Node
