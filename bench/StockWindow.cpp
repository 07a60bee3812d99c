#include "bench/StockWindow.h"

#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStatusBar>
#include <QTreeView>
#include <QTreeWidget>

#include <vector>

namespace KAL_AUTO_Node {

namespace {

// A control to be made after one that there is.
struct Model {
    std::function<QWidget*(QWidget* parent)> make;
    QRect place;
    bool hidden = false;
    std::vector<Model> children;
};

std::function<QWidget*(QWidget* parent)> MakeTree(const QTreeView& like) {
    const QAbstractItemModel& rows = *like.model();
    std::vector<QStringList> texts;
    for (int row = 0; row < rows.rowCount(); ++row) {
        QStringList& cells = texts.emplace_back();
        for (int column = 0; column < rows.columnCount(); ++column) {
            cells.append(rows.index(row, column).data().toString());
        }
    }
    std::vector<int> widths;
    for (int column = 0; column < rows.columnCount(); ++column) {
        widths.push_back(like.isColumnHidden(column) ? 0 : like.columnWidth(column));
    }
    return [texts, widths](QWidget* parent) {
        auto* tree = new QTreeWidget(parent);
        tree->setColumnCount(static_cast<int>(widths.size()));
        tree->setRootIsDecorated(false);
        tree->setUniformRowHeights(true);
        for (int column = 0; column < tree->columnCount(); ++column) {
            const int width = widths[static_cast<std::size_t>(column)];
            tree->setColumnHidden(column, width == 0);
            tree->setColumnWidth(column, width);
        }
        QList<QTreeWidgetItem*> items;
        for (const QStringList& cells : texts) {
            items.append(new QTreeWidgetItem(cells));
        }
        tree->addTopLevelItems(items);
        return tree;
    };
}

// Nothing for what is made with another widget.
std::function<QWidget*(QWidget* parent)> MakeOne(const QWidget& like) {
    if (const auto* tree = qobject_cast<const QTreeView*>(&like)) {
        return MakeTree(*tree);
    }
    if (const auto* box = qobject_cast<const QComboBox*>(&like)) {
        return [text = box->currentText(), editable = box->isEditable()](QWidget* parent) {
            auto* made = new QComboBox(parent);
            made->setEditable(editable);
            made->addItem(text);
            return made;
        };
    }
    if (const auto* line = qobject_cast<const QLineEdit*>(&like)) {
        return [text = line->text()](QWidget* parent) { return new QLineEdit(text, parent); };
    }
    if (const auto* button = qobject_cast<const QPushButton*>(&like)) {
        return [text = button->text(), icon = button->icon()](QWidget* parent) {
            return new QPushButton(icon, text, parent);
        };
    }
    if (const auto* label = qobject_cast<const QLabel*>(&like)) {
        return [text = label->text()](QWidget* parent) { return new QLabel(text, parent); };
    }
    if (qobject_cast<const QStatusBar*>(&like) != nullptr) {
        return [](QWidget* parent) { return new QStatusBar(parent); };
    }
    if (const auto* group = qobject_cast<const QGroupBox*>(&like)) {
        return [title = group->title()](QWidget* parent) { return new QGroupBox(title, parent); };
    }
    return [](QWidget* parent) { return new QWidget(parent); };
}

bool HasOwnChildren(const QWidget& widget) {
    return qobject_cast<const QTreeView*>(&widget) == nullptr &&
           qobject_cast<const QComboBox*>(&widget) == nullptr &&
           qobject_cast<const QLineEdit*>(&widget) == nullptr &&
           qobject_cast<const QStatusBar*>(&widget) == nullptr;
}

std::vector<Model> ChildrenOf(const QWidget& parent) {
    std::vector<Model> models;
    for (const QWidget* child : parent.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
        if (!child->isWindow()) {
            models.push_back({MakeOne(*child), child->geometry(), child->isHidden(),
                              HasOwnChildren(*child) ? ChildrenOf(*child) : std::vector<Model>()});
        }
    }
    return models;
}

void Make(QWidget* parent, const std::vector<Model>& models) {
    for (const Model& model : models) {
        QWidget* made = model.make(parent);
        made->setGeometry(model.place);
        made->setHidden(model.hidden);
        Make(made, model.children);
    }
}

} // namespace

std::function<std::unique_ptr<QDialog>()> StockWindowLike(const QWidget& window) {
    return [models = ChildrenOf(window), size = window.size()] {
        auto dialog = std::make_unique<QDialog>();
        dialog->resize(size);
        Make(dialog.get(), models);
        return dialog;
    };
}

} // namespace KAL_AUTO_Node
