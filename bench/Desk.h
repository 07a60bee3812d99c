#pragma once

#include "bench/RawStore.h"
#include "editor/EditorWindow.h"

namespace KAL_AUTO_Node {

// The editor's window on screen with a node in it, as ShowNodeEditor leaves it to the person, and the rules
// that filled it.
class Desk {
  public:
    explicit Desk(Place place, ComponentFactory components = {});

    [[nodiscard]] GUI& Form() { return window_.Form(); }

    [[nodiscard]] NodeRules& Rules() { return rules_; }

    // What saving the node as it is in the window looks up and writes.
    [[nodiscard]] RawStore::Node Content();

  private:
    ComponentFactory components_;
    EditorWindow window_;
    NodeRules rules_;
};

// Lets every window paint what it still has to, before a clock runs.
void Settle();

} // namespace KAL_AUTO_Node
