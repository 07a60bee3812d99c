#pragma once

#include "KAL_AUTO_Node/Api.h"
#include "KAL_AUTO_Node/Components.h"
#include "KAL_AUTO_Node/Error.h"

#include <cstdint>
#include <memory>

namespace KAL_AUTO_Node {

// The editor of AUTO nodes. Use it on the thread that runs the host's user interface. Where the process has
// no QApplication by the first call of ShowNodeEditor, the component makes one, which then stays until the
// process ends.
class KAL_AUTO_NODE_API Business_Rules {
  public:
    // Finds the place of the store anew; opens nothing. Throws Error 1001 when the configured place is not a
    // text or a number.
    Business_Rules();
    // The same, with components of the host's own.
    explicit Business_Rules(ComponentFactory components);
    ~Business_Rules();

    Business_Rules(const Business_Rules&) = delete;
    Business_Rules& operator=(const Business_Rules&) = delete;

    // Shows the editor on one node of a configuration's partition, modally, and returns when a person has
    // closed it. Node_Number 0 opens the partition's template node. Where the node isn't there, a message
    // says so and no editor appears. What goes wrong is shown in message boxes. Everything that a person
    // saves is in the store when the call returns. A call while the one before has not returned brings that
    // one's window to the front.
    // Throws Error 5, and shows nothing, where the process has an application object that is no QApplication,
    // or on another thread than that object's.
    void ShowNodeEditor(std::int16_t Config_ID, std::int16_t Partition_ID, std::int16_t Node_Number);

    // Whether the latest call found all that the editor needs and showed the node.
    [[nodiscard]] bool Opened() const noexcept;

  private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

} // namespace KAL_AUTO_Node
