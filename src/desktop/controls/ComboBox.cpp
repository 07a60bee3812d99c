#include "controls/ComboBox.h"

#include "platform/RuntimeError.h"

#include <QAbstractListModel>
#include <QAccessible>
#include <QApplication>
#include <QKeyEvent>
#include <QListView>
#include <QResizeEvent>
#include <QSignalBlocker>
#include <QStyleOptionComboBox>
#include <QTimer>
#include <QWheelEvent>

#include <algorithm>

namespace KAL_AUTO_Node {

class EntryModel : public QAbstractListModel {
  public:
    using Entry = PickList::Entry;

    using QAbstractListModel::QAbstractListModel;

    void Append(std::vector<Entry> entries) {
        const auto first = static_cast<int>(entries_.size());
        beginInsertRows({}, first, first + static_cast<int>(entries.size()) - 1);
        std::ranges::move(entries, std::back_inserter(entries_));
        endInsertRows();
    }

    void Clear() {
        beginResetModel();
        entries_.clear();
        endResetModel();
    }

    [[nodiscard]] const std::vector<Entry>& Entries() const { return entries_; }

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : static_cast<int>(entries_.size());
    }

    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override {
        if (!index.isValid()) {
            return {};
        }
        const Entry& entry = entries_[static_cast<std::size_t>(index.row())];
        switch (role) {
        case Qt::DisplayRole:
        case Qt::EditRole:
            return entry.text;
        case Qt::UserRole:
            return entry.data;
        default:
            return {};
        }
    }

  private:
    std::vector<Entry> entries_;
};

ComboBox::ComboBox(QAbstractItemModel* entries, QWidget* parent) : QComboBox(parent) {
    entries->setParent(this);
    // Before all that makes the pop-up, which would be made for entries of the toolkit's own first.
    setModel(entries);
    setFocusPolicy(Qt::StrongFocus);
    connect(this, &QComboBox::activated, this, &ComboBox::Click);
}

void ComboBox::SetListIndex(int index) {
    RequireEntry(index);
    setCurrentIndex(index);
    emit Click();
}

QString ComboBox::List(int index) const {
    RequireEntry(index);
    return itemText(index);
}

void ComboBox::RequireEntry(int index) const {
    if (index < 0 || index >= count()) {
        throw RuntimeError(ErrorNumber::SubscriptOutOfRange, objectName().toStdString() + " has no entry " +
                                                                 std::to_string(index) + "; it holds " +
                                                                 std::to_string(count()) + " entries");
    }
}

void ComboBox::wheelEvent(QWheelEvent* event) {
    if (hasFocus()) {
        QComboBox::wheelEvent(event);
    } else {
        event->ignore();
    }
}

void ComboBox::keyPressEvent(QKeyEvent* event) {
    if (!event->isAutoRepeat()) {
        held_ = event->key();
    } else if (event->key() != held_) {
        return;
    }
    QComboBox::keyPressEvent(event);
}

void ComboBox::keyReleaseEvent(QKeyEvent* event) {
    if (!event->isAutoRepeat()) {
        held_ = 0;
    }
    QComboBox::keyReleaseEvent(event);
}

void ComboBox::focusOutEvent(QFocusEvent* event) {
    held_ = 0;
    QComboBox::focusOutEvent(event);
}

// Measuring every entry would make the box as slow as its list is long, and to choose the policy that spares
// it would make the pop-up, most of what a box costs, for many that nobody opens.
QSize ComboBox::sizeHint() const {
    constexpr int lowest = 14;
    constexpr int besideIcon = 4;
    constexpr int aboveAndBelow = 2;
    QStyleOptionComboBox box;
    initStyleOption(&box);
    const int letters = minimumContentsLength() * fontMetrics().horizontalAdvance(QLatin1Char('X'));
    const QSize contents(letters == 0 ? 0 : letters + iconSize().width() + besideIcon,
                         std::max({fontMetrics().height(), iconSize().height(), lowest}) + aboveAndBelow);
    return style()->sizeFromContents(QStyle::CT_ComboBox, &box, contents, this);
}

// The toolkit's own asks the pop-up whether it suits the style, and would make it for that; one that is made
// later suits it.
void ComboBox::changeEvent(QEvent* event) {
    if (event->type() == QEvent::StyleChange && findChild<QFrame*>() == nullptr) {
        // NOLINTNEXTLINE(bugprone-parent-virtual-call)
        QWidget::changeEvent(event);
        // The line of one that is typed into lies otherwise in another style.
        QResizeEvent sameSize(size(), size());
        QComboBox::resizeEvent(&sameSize);
    } else {
        QComboBox::changeEvent(event);
    }
}

void ComboBox::showPopup() {
    if (auto* list = qobject_cast<QListView*>(view())) {
        list->setUniformItemSizes(true);
    }
    QComboBox::showPopup();
    if (view()->isVisible()) {
        qApp->installEventFilter(this);
    }
}

bool ComboBox::eventFilter(QObject* watched, QEvent* event) {
    // Whoever closed it: the window system does so by itself, too.
    if (event->type() == QEvent::Hide && watched == view()) {
        // Not before the key that closed it has come everywhere.
        QTimer::singleShot(0, this, [this] {
            if (!view()->isVisible()) {
                qApp->removeEventFilter(this);
            }
        });
    }
    const auto* receiver = qobject_cast<QWidget*>(watched);
    if (receiver != nullptr &&
        (event->type() == QEvent::KeyPress || event->type() == QEvent::ShortcutOverride) &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape && receiver->window() != view()->window()) {
        if (view()->isVisible()) {
            hidePopup();
        }
        event->accept();
        return true;
    }
    return QComboBox::eventFilter(watched, event);
}

PickList::PickList(QWidget* parent)
    : ComboBox(new EntryModel, parent), entries_(static_cast<EntryModel*>(model())) {
    // The name stays; the chosen entry is heard as the description.
    connect(this, &QComboBox::currentTextChanged, this, [this] {
        if (QAccessible::isActive()) {
            QAccessibleEvent event(this, QAccessible::DescriptionChanged);
            QAccessible::updateAccessibility(&event);
        }
    });
}

void PickList::AddItems(std::vector<Entry> entries) {
    if (entries.empty()) {
        return;
    }
    const int chosen = ListIndex();
    entries_->Append(std::move(entries));
    // The toolkit chooses the first entry that an empty box gets.
    const QSignalBlocker silent(this);
    setCurrentIndex(chosen);
}

void PickList::Clear() { entries_->Clear(); }

int PickList::ItemData(int index) const {
    RequireEntry(index);
    return entries_->Entries()[static_cast<std::size_t>(index)].data;
}

int PickList::IndexOf(const QString& text) const {
    const auto& entries = entries_->Entries();
    const auto found = std::ranges::find(entries, text, &Entry::text);
    return found == entries.end() ? -1 : static_cast<int>(found - entries.begin());
}

int PickList::IndexOfData(int itemData) const {
    const auto& entries = entries_->Entries();
    const auto found = std::ranges::find(entries, itemData, &Entry::data);
    return found == entries.end() ? -1 : static_cast<int>(found - entries.begin());
}

void PickList::SetText(const QString& text) {
    const int index = IndexOf(text);
    if (index < 0) {
        throw RuntimeError(ErrorNumber::NoSuchEntry,
                           objectName().toStdString() + " has no entry \"" + text.toStdString() + "\"");
    }
    SetListIndex(index);
}

} // namespace KAL_AUTO_Node
