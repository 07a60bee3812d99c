#pragma once

#include "information/InformationPage.h"

#include <QLabel>
#include <QTabWidget>

#include <array>
#include <optional>

namespace KAL_AUTO_Node {

class HistoryPage;
class UsesPage;
struct Version;

// What is known of a node, beside the editor: what refers to it, its changes, where what callers key leads,
// what is wrong with it. It tells what the store holds.
class InformationWindow : public QWidget {
  public:
    // Stays above the editor, whose window lasts longer; so does the reader.
    InformationWindow(QWidget* editor, StoreReader& reader);

    [[nodiscard]] const Subject& Shown() const { return subject_; }

    // Shows a node and reads it; a window that is hidden appears.
    void Show(const Subject& subject);
    // Reads the node shown anew; not while the window is hidden.
    void ReadAgain();
    // Says something of the node shown that differs from what the editor shows; nothing by an empty text.
    void Note(const QString& text);

    // A node is to be gone on with.
    std::function<void(const NodeKey& node)> Go = [](const NodeKey&) {};
    // A node is to be put back as it was before a change; with a line for each reference to it, once known.
    std::function<void(const NodePlace& place, const Version& version,
                       const std::optional<std::vector<QString>>& uses)>
        PutBack = [](const NodePlace&, const Version&, const std::optional<std::vector<QString>>&) {};

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

  private:
    void NameTabs();
    void ReadName();
    // Beside the editor, as far as the screen has room.
    void Place();

    StoreReader& reader_;
    QLabel* note_;
    QTabWidget* tabs_;
    UsesPage* uses_;
    HistoryPage* history_;
    std::array<InformationPage*, 4> pages_;
    Subject subject_;
    bool placed_ = false;
};

} // namespace KAL_AUTO_Node
