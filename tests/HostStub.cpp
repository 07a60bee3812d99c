// In the editor's place: tells on standard output which node it was asked for, unless it is 404, which isn't
// there.
#include "KAL_AUTO_Node/Business_Rules.h"

#include <iostream>

namespace KAL_AUTO_Node {

struct Business_Rules::Parts {
    bool opened = false;
};

Business_Rules::Business_Rules() : parts_(std::make_unique<Parts>()) {}

Business_Rules::~Business_Rules() = default;

void Business_Rules::ShowNodeEditor(std::int16_t Config_ID, std::int16_t Partition_ID,
                                    std::int16_t Node_Number) {
    parts_->opened = Node_Number != 404;
    if (parts_->opened) {
        std::cout << Config_ID << ' ' << Partition_ID << ' ' << Node_Number << '\n';
    }
}

bool Business_Rules::Opened() const noexcept { return parts_->opened; }

} // namespace KAL_AUTO_Node
