#include "nodes/AutoNode.h"

#include "platform/FoldCase.h"

#include <unordered_set>

namespace KAL_AUTO_Node {

std::string DisplayText(const Reference& reference, Slot from) {
    return reference.typeID == NumberlessTypeOf(from)
               ? reference.type
               : reference.type + ' ' + std::to_string(reference.number);
}

std::string EntryText(const Action& action) {
    const auto [low, high] = RangeOf(action);
    std::string entry(low);
    entry += '-';
    return entry += high;
}

std::string KeysText(const Action& action) {
    const auto [low, high] = RangeOf(action);
    return low == high ? std::string(low) : EntryText(action);
}

std::vector<std::size_t> DuplicateEntries(const std::vector<Action>& actions) {
    std::vector<std::size_t> duplicates;
    std::unordered_set<std::string> known;
    for (std::size_t position = 0; position < actions.size(); ++position) {
        if (!known.insert(FoldCase(EntryText(actions[position]))).second) {
            duplicates.push_back(position);
        }
    }
    return duplicates;
}

} // namespace KAL_AUTO_Node
