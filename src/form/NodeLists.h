#pragma once

#include "controls/Collection.h"

#include <QString>

namespace KAL_AUTO_Node {

// The reference data of the partition being edited; every key is a node-type ID as decimal text.
struct NodeLists {
    Collection<QString> NodeNameCollection;  // the type's name
    Collection<int> MaxNodeNumberCollection; // the highest node number of the type
    Collection<QString>
        NotAvailablePromptsNode; // here and below: names of types that the list may refer to but
    Collection<QString> NotAvailableActionsNode; // that have no numbers in the partition
    Collection<QString> NotAvailableTimeoutNode;
    Collection<QString> NotAvailableInvalidNode;
    Collection<QString> NotAvailableAbortNode;
    Collection<QString> NotAvailableStarNode;
    Collection<QString> NotAvailablePoundNode;
};

} // namespace KAL_AUTO_Node
