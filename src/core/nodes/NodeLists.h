#pragma once

#include "nodes/Collection.h"

#include <string>

namespace KAL_AUTO_Node {

// The reference data of a partition; every key is a node-type ID.
struct NodeLists {
    Collection<std::string> NodeNameCollection; // the type's name
    Collection<int> MaxNodeNumberCollection;    // the highest node number of the type
    // Names of types that the place may refer to but that have no numbers in the partition.
    Collection<std::string> NotAvailablePromptsNode;
    Collection<std::string> NotAvailableActionsNode;
    Collection<std::string> NotAvailableTimeoutNode;
    Collection<std::string> NotAvailableInvalidNode;
    Collection<std::string> NotAvailableAbortNode;
    Collection<std::string> NotAvailableStarNode;
    Collection<std::string> NotAvailablePoundNode;
};

} // namespace KAL_AUTO_Node
