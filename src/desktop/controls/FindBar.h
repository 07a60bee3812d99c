#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QToolButton>
#include <QWidget>

namespace KAL_AUTO_Node {

class ListView;

// Finds rows of a list by what they show, whatever the case: the next one as a person types, then onward with
// Enter and back with Shift+Enter, round the ends. On one of the bar's buttons Enter presses that.
class FindBar : public QWidget {
    Q_OBJECT

  public:
    // Closed at first.
    explicit FindBar(QWidget* parent);

    // For a list, which outlives the bar; the text of last time is there to be typed over.
    void Open(ListView& list);

    // A focus that is in the bar goes to the list.
    void Close();

  signals:
    // A row was found and is the list's selected item now.
    void Found(const ListView& list);

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    // Selects the first row found from one on, in steps of 1 or -1.
    void Find(int from, int step);
    void FindNext();
    void FindPrevious();
    void Tell(const QString& found);

    ListView* list_ = nullptr;
    QMetaObject::Connection changing_;
    QLabel* caption_;
    QLineEdit* text_;
    QToolButton* previous_;
    QToolButton* next_;
    QLabel* found_; // how many there are, and which of them is selected
};

} // namespace KAL_AUTO_Node
