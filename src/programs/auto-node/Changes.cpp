#include "auto-node/Changes.h"

#include "platform/VisibleText.h"

#include <iostream>

namespace KAL_AUTO_Node {

std::vector<std::string> ChangesInWords(const std::optional<AutoNode>& before,
                                        const std::optional<AutoNode>& after) {
    if (before && after) {
        return Differences(*before, *after);
    }
    if (before) {
        return {"the node is gone"};
    }
    return after ? std::vector<std::string>{"the node is new"} : std::vector<std::string>{};
}

void PrintChanges(const std::vector<std::string>& changes) {
    for (const std::string& change : changes) {
        std::cout << "    " << Visible(change) << '\n';
    }
    if (changes.empty()) {
        std::cout << "    nothing differs\n";
    }
}

} // namespace KAL_AUTO_Node
