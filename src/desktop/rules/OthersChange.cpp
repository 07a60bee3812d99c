#include "form/GUI.h"
#include "form/Stored.h"
#include "rules/Conflicts.h"
#include "rules/NodeRules.h"

namespace KAL_AUTO_Node {

std::optional<QString> NodeRules::LookForOthersChange(const GUI& gui) noexcept {
    if (!gui.StoredNode || gui.StoredNode->number != gui.nodeNumber) {
        return std::nullopt;
    }
    try {
        const auto mark = dataBase_.ChangeMark();
        if (!mark || mark == seenMark_) {
            return std::nullopt;
        }
        const NodePlace place{PartitionOf(gui), gui.nodeNumber};
        NodeContent stored;
        std::optional<Version> newest;
        ReadAhead(dataBase_).Read([&] {
            stored = ReadContent(dataBase_, place);
            newest = history_.Newest(place);
        });
        if (newest && IsBeingMade(*newest)) {
            return std::nullopt; // the next look sees it whole
        }
        seenMark_ = mark;
        return TellOthersChange(gui.NodeName(AutoType) + ' ' + QString::number(place.number),
                                gui.StoredNode->seen, stored, newest);
    } catch (const std::exception&) {
        return std::nullopt; // what needs the store tells of it
    }
}

} // namespace KAL_AUTO_Node
