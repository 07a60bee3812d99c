#pragma once

#include "editor/ChangeWatch.h"
#include "form/GUI.h"
#include "information/InformationWindow.h"
#include "information/StoreReader.h"
#include "nodes/Identity.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace KAL_AUTO_Node {

class NodeRules;

// How a person gets from the node shown to others, by looking for them, by what its rows refer to, and back;
// and what is known of them, in a window beside the editor. Each move goes through the selector, as when the
// person picks there.
class Wayfinder : public QObject {
  public:
    // The rules are there while the window is, and those that look what others do.
    Wayfinder(GUI& gui, const std::unique_ptr<NodeRules>& rules, NodeRules& looking);

    // Goes on with a node: the window moves to it where it is an AUTO node, else what is known of it is
    // shown.
    void Follow(const NodeKey& target);
    // Shows what is known of a node, in front, until the window moves on.
    void TellAbout(const NodeKey& node);
    // The window has moved on from a node.
    void Left(std::int16_t number);

  protected:
    // Learns when there is something unsaved, and when there is not any more.
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void GoTo();
    void Back();
    // False where the window shows one node only.
    bool MoveTo(int number);
    void PutBack(const NodePlace& place, const Version& version,
                 const std::optional<std::vector<QString>>& uses);
    void ShowInformation(const NodeKey& node);
    // In what the node shown in the editor differs from what is told of it.
    void Note();

    [[nodiscard]] bool IsInformed() const { return information_ && information_->isVisible(); }

    GUI& gui_;
    const std::unique_ptr<NodeRules>& rules_;
    ChangeWatch watch_;
    std::unique_ptr<StoreReader> reader_; // from the first use on
    std::unique_ptr<InformationWindow> information_;
    std::vector<std::int16_t> way_; // the nodes that were left, the latest last
};

} // namespace KAL_AUTO_Node
