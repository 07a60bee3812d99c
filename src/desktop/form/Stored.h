#pragma once

#include "form/GUI.h"
#include "nodes/AutoNode.h"

namespace KAL_AUTO_Node {

struct GUI::Stored {
    std::int16_t number;
    int version; // of its history; 0 where there is none
    AutoNode node;
};

} // namespace KAL_AUTO_Node
