#include "nodes/RequiredNodes.h"

#include "nodes/NodeTypes.h"

#include <utility>

namespace KAL_AUTO_Node {

void RequiredNodes::Add(std::string display, int typeID, int number) {
    if (!RefersToNode(typeID)) {
        return;
    }
    if (RefersToMessage(typeID)) {
        display = "MSG " + std::to_string(number);
        typeID = MessageType;
    }
    if (!names_.FindString(display)) {
        names_.AddItem(display);
        nodes_.push_back({std::move(display), typeID, number});
    }
}

} // namespace KAL_AUTO_Node
