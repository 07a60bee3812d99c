#include "controls/Accessibility.h"

#include "controls/ComboBox.h"
#include "controls/ListView.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QHeaderView>
#include <QLineEdit>

#include <map>

namespace KAL_AUTO_Node {

namespace {

class AccessibleBox : public QAccessibleWidget {
  public:
    explicit AccessibleBox(ComboBox* box) : QAccessibleWidget(box, QAccessible::ComboBox) {}

    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        switch (kind) {
        case QAccessible::Name:
            return Box().accessibleName();
        case QAccessible::Value:
            return Box().Text();
        case QAccessible::Description:
            // Where only name and description are read, the chosen entry is heard all the same.
            return Box().isEditable() ? QAccessibleWidget::text(kind) : Box().Text();
        default:
            return QAccessibleWidget::text(kind);
        }
    }

    [[nodiscard]] int childCount() const override { return Box().isEditable() ? 2 : 1; }

    [[nodiscard]] QAccessibleInterface* child(int index) const override {
        return index == 0   ? QAccessible::queryAccessibleInterface(Box().view())
               : index == 1 ? QAccessible::queryAccessibleInterface(Box().lineEdit())
                            : nullptr;
    }

    [[nodiscard]] int indexOfChild(const QAccessibleInterface* child) const override {
        return child->object() == Box().view()                             ? 0
               : Box().isEditable() && child->object() == Box().lineEdit() ? 1
                                                                           : -1;
    }

    [[nodiscard]] QStringList actionNames() const override {
        return QStringList{showMenuAction()} + QAccessibleWidget::actionNames();
    }

    void doAction(const QString& action) override {
        if (action != showMenuAction()) {
            QAccessibleWidget::doAction(action);
        } else if (Box().isEnabled()) {
            Box().showPopup();
        }
    }

    [[nodiscard]] QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.hasPopup = true;
        state.editable = Box().isEditable();
        return state;
    }

  private:
    [[nodiscard]] ComboBox& Box() const { return *static_cast<ComboBox*>(widget()); }
};

// The row that stands at a place of the list.
class AccessibleRow : public QAccessibleInterface, public QAccessibleActionInterface {
  public:
    AccessibleRow(ListView* list, int row) : list_(list), row_(row) {}

    [[nodiscard]] bool isValid() const override { return row_ < list_->Count(); }

    [[nodiscard]] QObject* object() const override { return nullptr; }

    [[nodiscard]] QAccessibleInterface* parent() const override {
        return QAccessible::queryAccessibleInterface(list_);
    }

    [[nodiscard]] QAccessibleInterface* child(int /*index*/) const override { return nullptr; }

    [[nodiscard]] QAccessibleInterface* childAt(int /*x*/, int /*y*/) const override { return nullptr; }

    [[nodiscard]] int childCount() const override { return 0; }

    [[nodiscard]] int indexOfChild(const QAccessibleInterface* /*child*/) const override { return -1; }

    [[nodiscard]] QAccessible::Role role() const override { return QAccessible::ListItem; }

    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        QStringList cells;
        for (int column = 0; kind == QAccessible::Name && column < list_->header()->count(); ++column) {
            if (!list_->isColumnHidden(column) && !list_->Cell(row_, column).isEmpty()) {
                cells.append(list_->Cell(row_, column));
            }
        }
        return cells.join(QStringLiteral(", "));
    }

    void setText(QAccessible::Text /*kind*/, const QString& /*text*/) override {}

    [[nodiscard]] QRect rect() const override {
        QRect row = list_->CellRect(row_, 1);
        row.setLeft(0);
        row.setWidth(list_->viewport()->width());
        return row.translated(list_->viewport()->mapToGlobal(QPoint(0, 0)));
    }

    [[nodiscard]] QAccessible::State state() const override {
        QAccessible::State state;
        state.selectable = state.focusable = true;
        state.selected = list_->IsSelected(row_);
        state.focused = list_->hasFocus() && list_->SelectedItem() == row_;
        state.disabled = !list_->isEnabled();
        state.invisible = !list_->isVisible();
        state.offscreen = !list_->viewport()->rect().intersects(
            rect().translated(-list_->viewport()->mapToGlobal(QPoint(0, 0))));
        return state;
    }

    [[nodiscard]] void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                    : nullptr;
    }

    [[nodiscard]] QStringList actionNames() const override { return {pressAction()}; }

    // As a click on the row does.
    void doAction(const QString& action) override {
        if (action == pressAction() && list_->isEnabled()) {
            list_->Select(row_);
            emit list_->ItemClick(row_);
        }
    }

    [[nodiscard]] QStringList keyBindingsForAction(const QString& /*action*/) const override { return {}; }

  private:
    ListView* list_;
    int row_;
};

class AccessibleList : public QAccessibleWidget {
  public:
    explicit AccessibleList(ListView* list) : QAccessibleWidget(list, QAccessible::List) {}

    ~AccessibleList() override {
        for (const auto& [row, id] : rows_) {
            QAccessible::deleteAccessibleInterface(id);
        }
    }

    [[nodiscard]] int childCount() const override { return List().Count(); }

    [[nodiscard]] QAccessibleInterface* child(int index) const override {
        if (index < 0 || index >= List().Count()) {
            return nullptr;
        }
        auto found = rows_.find(index);
        if (found == rows_.end()) {
            found = rows_
                        .emplace(index,
                                 QAccessible::registerAccessibleInterface(new AccessibleRow(&List(), index)))
                        .first;
        }
        return QAccessible::accessibleInterface(found->second);
    }

    [[nodiscard]] QAccessibleInterface* childAt(int x, int y) const override {
        return child(List().indexAt(List().viewport()->mapFromGlobal(QPoint(x, y))).row());
    }

    [[nodiscard]] int indexOfChild(const QAccessibleInterface* child) const override {
        for (const auto& [row, id] : rows_) {
            if (QAccessible::accessibleInterface(id) == child) {
                return row;
            }
        }
        return -1;
    }

    [[nodiscard]] QAccessibleInterface* focusChild() const override {
        return List().hasFocus() ? child(List().SelectedItem()) : nullptr;
    }

  private:
    [[nodiscard]] ListView& List() const { return *static_cast<ListView*>(widget()); }

    // Made when asked for.
    mutable std::map<int, QAccessible::Id> rows_;
};

QAccessibleInterface* Make(const QString& /*className*/, QObject* object) {
    if (auto* box = qobject_cast<ComboBox*>(object)) {
        return new AccessibleBox(box);
    }
    if (auto* list = qobject_cast<ListView*>(object)) {
        return new AccessibleList(list);
    }
    return nullptr;
}

} // namespace

void OfferAccessibleInterfaces() {
    // The toolkit takes a factory once, however often it is installed.
    QAccessible::installFactory(&Make);
}

} // namespace KAL_AUTO_Node
