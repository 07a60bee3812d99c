#pragma once

#include "form/GUI.h"
#include "information/StoreReader.h"
#include "nodes/Identity.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace KAL_AUTO_Node {

class NodeRules;

// How a person gets from the node shown to others: by looking for them, by what its rows refer to, and back.
// Each move goes through the selector, as when the person picks there.
class Wayfinder : public QObject {
  public:
    // The rules are there while the window is.
    Wayfinder(GUI& gui, const std::unique_ptr<NodeRules>& rules);

    void Follow(const NodeKey& target);
    // The window has moved on from a node.
    void Left(std::int16_t number);

  private:
    void GoTo();
    void Back();
    void MoveTo(int number);
    [[nodiscard]] StoreReader& Reader();

    GUI& gui_;
    const std::unique_ptr<NodeRules>& rules_;
    std::unique_ptr<StoreReader> reader_; // from the first use on
    std::vector<std::int16_t> way_;       // the nodes that were left, the latest last
};

} // namespace KAL_AUTO_Node
