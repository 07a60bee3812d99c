#include "nodes/AutoNode.h"

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

} // namespace KAL_AUTO_Node
