#pragma once

#include "nodes/AutoNode.h"
#include "nodes/Identity.h"

#include <cstdint>
#include <string>

namespace KAL_AUTO_Node {

class DataBase;

// Writes a node over the stored one of that number: its detail rows go, its record and its register row are
// updated, its detail rows come back numbered from 1. Each statement stands for itself: after a failure those
// before it stay done. Settings that are Null raise InvalidUseOfNull before the first. Neither record nor
// register row are made where there are none. The date is today's as dates are stored.
void WriteAutoNode(DataBase& dataBase, Partition partition, std::int16_t number, const AutoNode& node,
                   const std::string& date);

} // namespace KAL_AUTO_Node
