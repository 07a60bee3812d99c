#pragma once

#include "controls/ComboBox.h"

namespace KAL_AUTO_Node {

class NumberModel;

// An editable box that offers the whole numbers of one range. Whenever its text becomes another, whoever made
// it so (a person, code, assistive technology), it is corrected to a number of the range, unless the box is
// hidden or offers nothing; Click follows. What an input method composes is corrected when it is finished.
class NumberBox : public ComboBox {
    Q_OBJECT

  public:
    static constexpr int MostNumbers = 32'767;

    explicit NumberBox(QWidget* parent = nullptr);

    // Offers first to last, but no more than MostNumbers, or nothing where last < first; the text becomes
    // empty. Takes the same time for any range.
    void SetNumbers(int first, int last);

    // The width that shows the largest number whole.
    [[nodiscard]] int NumbersWidth() const;

    void SetText(const QString& text) { setEditText(text); }

    // Whether the text is that of an entry.
    [[nodiscard]] bool Offers(const QString& text) const;

  protected:
    // The toolkit would choose the entry that stands there already, and so mark a change where there is none.
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;

  private:
    void Change();

    NumberModel* numbers_;
    bool changing_ = false;
    bool composing_ = false; // an input method has text under way
};

} // namespace KAL_AUTO_Node
