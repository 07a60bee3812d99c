#pragma once

#include "form/GUI.h"
#include "history/NodeContent.h"

namespace KAL_AUTO_Node {

struct GUI::Stored {
    std::int16_t number;
    SeenNode seen;
};

} // namespace KAL_AUTO_Node
