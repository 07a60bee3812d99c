#include "nodes/RequiredNodes.h"

#include "nodes/NodeTypes.h"
#include "platform/FoldCase.h"

#include <utility>

namespace KAL_AUTO_Node {

void RequiredNodes::Add(std::string display, const NodeKey& node) {
    if (!RefersToNode(node.typeID)) {
        return;
    }
    if (RefersToMessage(node.typeID)) {
        display = node.Text("MSG");
    }
    std::string folded = FoldCase(display);
    const auto next = names_.lower_bound(folded);
    if (next == names_.end() || !next->starts_with(folded)) {
        names_.insert(next, std::move(folded));
        nodes_.push_back({std::move(display), node.Itself()});
    }
}

} // namespace KAL_AUTO_Node
