#pragma once

#include <QComboBox>

#include <vector>

namespace KAL_AUTO_Node {

// What pick lists and number boxes share: Click runs whenever an entry is chosen, by a person or by code,
// also the one already chosen, and before the action that chose it returns.
class ComboBox : public QComboBox {
    Q_OBJECT

  public:
    [[nodiscard]] int ListCount() const { return count(); }

    // The chosen entry's position from 0, or -1.
    [[nodiscard]] int ListIndex() const { return currentIndex(); }

    // Raises SubscriptOutOfRange beyond the entries.
    void SetListIndex(int index);

    // The entry's text. Raises SubscriptOutOfRange beyond the entries.
    [[nodiscard]] QString List(int index) const;

    [[nodiscard]] QString Text() const { return currentText(); }

    // The entries fit themselves to the box, not the box to them.
    [[nodiscard]] QSize sizeHint() const override;

    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

    void showPopup() override;

  signals:
    void Click();

  protected:
    // Offers the model's entries, which are equally high, and owns it.
    ComboBox(QAbstractItemModel* entries, QWidget* parent);

    void RequireEntry(int index) const;

    void changeEvent(QEvent* event) override;

    // A wheel that passes over the box while the person scrolls something else must not change a value, and
    // neither must a key that was pressed elsewhere and is still held down when the box gets the focus.
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

    // Some window systems give the Escape that closes the pop-up to the window, too; it ends there.
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    int held_ = 0; // the key pressed here and not released yet
};

class EntryModel;

// A box whose text is always one of its entries' texts, or empty while none is chosen; each entry carries the
// number that it stands for, also as item data under Qt::UserRole. Adding an entry chooses none.
class PickList : public ComboBox {
    Q_OBJECT

  public:
    struct Entry {
        QString text;
        int data = 0;
    };

    explicit PickList(QWidget* parent = nullptr);

    void AddItem(const QString& text, int itemData = 0) { AddItems({{text, itemData}}); }

    void AddItems(std::vector<Entry> entries);
    void Clear();

    // Raises SubscriptOutOfRange beyond the entries.
    [[nodiscard]] int ItemData(int index) const;

    // The chosen entry's data. Raises SubscriptOutOfRange while none is chosen.
    [[nodiscard]] int SelectedData() const { return ItemData(ListIndex()); }

    // The position of the first entry of that text, or of that data, or -1.
    [[nodiscard]] int IndexOf(const QString& text) const;
    [[nodiscard]] int IndexOfData(int itemData) const;

    // Chooses the first entry of that text. Raises NoSuchEntry where there is none.
    void SetText(const QString& text);

  private:
    EntryModel* entries_;
};

} // namespace KAL_AUTO_Node
