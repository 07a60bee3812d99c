#pragma once

#include "form/GUI.h"

#include <QTimer>

#include <functional>

namespace KAL_AUTO_Node {

class NodeRules;

// Notices that somebody else has changed the node that is shown, and says so once, by a note that takes no
// focus and goes by itself.
class ChangeWatch : public QObject {
  public:
    // The rules have their connection open, and outlive the window.
    ChangeWatch(GUI& gui, NodeRules& rules);

    // What is to be said of the node shown, or an empty text.
    [[nodiscard]] const QString& Noticed() const { return noticed_; }

    // The store has changed; whether the node shown has, Noticed tells.
    std::function<void()> StoreChanged = [] {};

    // The window has loaded or saved a node: it is as it is stored.
    void Forget();

  protected:
    // A person who comes back to the window is told at once.
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void Look();
    void Show();

    GUI& gui_;
    NodeRules& rules_;
    QTimer timer_;
    QString noticed_;
    const GUI::Stored* noticedOf_ = nullptr; // what the window knew then
    bool shown_ = true;                      // so far as the window was in front
};

} // namespace KAL_AUTO_Node
