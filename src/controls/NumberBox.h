#pragma once

#include "controls/ComboBox.h"

#include <QStringView>

namespace KAL_AUTO_Node {

class NumberModel;

// What a typed text becomes in a box that offers first to last: its leading digits, as long as the number
// that they make stays within the two; first where that leaves nothing. A 0 that isn't offered leaves
// nothing.
[[nodiscard]] int TypedNumber(QStringView text, int first, int last) noexcept;

// An editable box that offers the whole numbers of one range. Its text is free for code to set, and is
// corrected to a number of the range whenever a person types or code sets another text, unless the box is
// hidden or offers nothing; Click follows each correction.
class NumberBox : public ComboBox {
    Q_OBJECT

  public:
    explicit NumberBox(QWidget* parent = nullptr);

    // Offers first to last (at most 32,767 numbers), or nothing where last < first; the text becomes empty.
    // Takes the same time for any range.
    void SetNumbers(int first, int last);

    // The width that shows the largest number whole.
    [[nodiscard]] int NumbersWidth() const;

    // Runs the correction when the text becomes another.
    void SetText(const QString& text);

  protected:
    // The toolkit would choose the entry that stands there already, and so mark a change where there is none.
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void Change();

    NumberModel* numbers_;
};

} // namespace KAL_AUTO_Node
