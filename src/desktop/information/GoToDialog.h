#pragma once

#include "information/StoreReader.h"
#include "nodes/TypeCatalogue.h"

#include <QDialog>

#include <map>
#include <optional>
#include <string>
#include <vector>

class QLabel;
class QLineEdit;
class QPushButton;

namespace KAL_AUTO_Node {

class RowTable;

// Finds one of all nodes of a partition by number or words of its label.
class GoToDialog : public QDialog {
  public:
    // A registered node of any type, with the folded form of its label for looking.
    struct Node {
        NodeKey key;
        std::string label;
        std::string folded;
    };

    struct Nodes {
        std::vector<Node> all; // AUTO nodes first
        TypeNames types;
    };

    // The reader outlives the dialog.
    GoToDialog(QWidget* parent, StoreReader& reader, Partition partition);
    ~GoToDialog() override;

    // Nothing where none was chosen.
    [[nodiscard]] std::optional<NodeKey> Chosen() const { return chosen_; }

  protected:
    // The list's keys work while the text has the focus.
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void Take(Answer<Nodes>& answer);
    void Find();
    void Go(int row);
    void Tell(const QString& found);
    [[nodiscard]] QString Cell(int row, int column) const;

    StoreReader& reader_;
    QLineEdit* text_;
    QLabel* found_;
    RowTable* list_;
    QPushButton* go_;
    Nodes nodes_;
    std::map<int, std::string> folded_; // the types' names
    std::vector<std::size_t> fitting_;  // of the nodes
    std::optional<NodeKey> chosen_;
};

} // namespace KAL_AUTO_Node
