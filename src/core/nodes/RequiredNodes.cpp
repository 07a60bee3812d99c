#include "nodes/RequiredNodes.h"

#include "nodes/NodeTypes.h"

#include <utility>

namespace KAL_AUTO_Node {

void RequiredNodes::Add(std::string display, const NodeKey& node) {
    if (!RefersToNode(node.typeID)) {
        return;
    }
    if (RefersToMessage(node.typeID)) {
        display = node.Text("MSG");
    }
    if (!names_.FindString(display)) {
        names_.AddItem(display);
        nodes_.push_back({std::move(display), node.Itself()});
    }
}

} // namespace KAL_AUTO_Node
