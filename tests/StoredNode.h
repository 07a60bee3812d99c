#pragma once

#include "testing/TestStore.h"

namespace KAL_AUTO_Node {

// All that the store holds of the AUTO nodes of a number, to the last Null.
inline std::vector<std::string> StoredNode(const TestStore& store, int number) {
    std::vector<std::string> content;
    for (const char* rows :
         {"Node_AUTO WHERE NodeNumber", "Node_General_Pool WHERE NodeTypeID = 9 AND NodeNumber",
          "Detail_AUTO_Prompts WHERE NodeMasterID", "Detail_AUTO_Action WHERE NodeMasterID"}) {
        const auto found = store.Rows(std::string("SELECT * FROM ") + rows + " = " + std::to_string(number));
        content.insert(content.end(), found.begin(), found.end());
    }
    return content;
}

} // namespace KAL_AUTO_Node
