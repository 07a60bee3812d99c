#pragma once

#include "testing/Person.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QGroupBox>
#include <QLayout>
#include <QMetaEnum>
#include <QMetaProperty>
#include <QPlainTextEdit>
#include <QScrollArea>
#include <QTabWidget>
#include <QToolButton>

#include <cstdlib>
#include <memory>

namespace KAL_AUTO_Node {

// A control as the toolkit makes it, of the first kind that it is of.
template <class... Kind>
std::unique_ptr<QObject> PlainLike(const QObject& control) {
    std::unique_ptr<QObject> plain;
    ((plain || !qobject_cast<const Kind*>(&control) ? void() : void(plain = std::make_unique<Kind>())), ...);
    return plain;
}

// What differs from a plain control; places and sizes go with the fonts, and what is shown is told elsewhere.
inline std::string Settings(const QObject& control, const QObject& plain) {
    static const QRegularExpression others("^(x|y|.*[wW]idth|.*[hH]eight|.*[pP]osition|.*Index|count|pos|"
                                           "focus|visible|text|plainText|.*Text|title"
                                           "|objectName|toolTip|accessible.*|isActiveWindow|underMouse|"
                                           "modified|autoDefault|blockCount|currentData)$");
    std::string settings;
    for (int i = 0; i < plain.metaObject()->propertyCount(); ++i) {
        const QMetaProperty property = plain.metaObject()->property(i);
        QVariant value = property.read(&control);
        if (value != property.read(&plain) && value.canConvert<QString>() &&
            !others.match(property.name()).hasMatch()) {
            if (property.isEnumType()) {
                value = property.enumerator().valueToKeys(value.toInt());
            }
            settings += std::string(", ") + property.name() + ' ' + value.toString().toStdString();
        }
    }
    return settings;
}

inline std::string OnOneLine(const std::string& text) {
    return QString::fromStdString(text).replace('\n', "\\n").replace('\t', "\\t").toStdString();
}

// What assistive technology finds in a window, in its order: role and name, what is told of it, and how it is
// set; briefly only whether it is disabled. What cannot be seen is not there.
inline void Walk(QAccessibleInterface* node, bool briefly, const std::string& indent, std::string& found) {
    for (int i = 0; i < node->childCount(); ++i) {
        QAccessibleInterface* child = node->child(i);
        const QObject* object = child->object();
        // Fonts ask for scroll bars.
        if (child->state().invisible || object == nullptr || child->role() == QAccessible::ScrollBar) {
            continue;
        }
        const std::string name = object->objectName().toStdString();
        const auto told = [child](const char* before, QAccessible::Text kind) {
            const std::string text = child->text(kind).toStdString();
            return text.empty() ? "" : before + text;
        };
        found += indent + QMetaEnum::fromType<QAccessible::Role>().valueToKey(child->role()) +
                 told(" ", QAccessible::Name) + told(" = ", QAccessible::Value) +
                 told(": ", QAccessible::Description);
        if (briefly) {
            found += child->state().disabled ? ", disabled\n" : "\n";
        } else {
            const auto plain =
                PlainLike<QTreeView, QComboBox, QToolButton, QPushButton, QLabel, QGroupBox, QLineEdit,
                          QPlainTextEdit, QTabWidget, QScrollArea, QFrame, QDialog, QWidget>(*object);
            found += Settings(*object, *plain) +
                     (child->relations(QAccessible::Label).empty() ? "\n" : ", labelled\n");
        }
        if (const auto* box = qobject_cast<const QComboBox*>(object)) {
            found += indent + "  offers";
            for (int entry = 0; entry < box->count(); ++entry) {
                const bool shown = entry < 8 || entry + 1 == box->count();
                found += shown ? ' ' + box->itemText(entry).toStdString() : entry == 8 ? " ..." : "";
            }
            found += '\n';
        } else if (const auto* tree = qobject_cast<const QTreeView*>(object)) {
            const QHeaderView& header = *tree->header();
            found += briefly ? indent + "  header:"
                             : indent + "  header" + Settings(header, *QTreeView().header()) +
                                   (header.sectionsMovable() ? ", movable:" : ":");
            for (int column = 0; column < header.count(); ++column) {
                const std::string caption =
                    tree->model()->headerData(column, Qt::Horizontal).toString().toStdString();
                const bool stretches = header.sectionResizeMode(column) == QHeaderView::Stretch;
                found += header.isSectionHidden(column)
                             ? ""
                             : ' ' + caption + (stretches ? " (takes the rest)," : ",");
            }
            found += '\n';
            for (int row = 0; child->role() == QAccessible::List && row < Person::Count(name); ++row) {
                const char* current = tree->currentIndex().row() == row ? ">" : "";
                const char* selected = tree->selectionModel()->isRowSelected(row) ? "*" : "";
                found += indent + "  " + current + selected + Person::Key(name, row) + ": " +
                         OnOneLine(Person::Row(name, row)) + '\n';
            }
        } else {
            Walk(child, briefly, indent + "  ", found);
        }
    }
}

// Each control can be seen whole: within what holds it, beside the others, and no text is cut; and what room
// is left over is not the buttons'.
inline void ExpectWhole(const QWidget& window) {
    const auto inPlace = Person::OpenEditors();
    std::vector<const QWidget*> seen;
    for (const QWidget* control : window.findChildren<QWidget*>()) {
        const QWidget* holder = control->parentWidget();
        const bool placed = holder->layout() != nullptr || qobject_cast<const QComboBox*>(holder) != nullptr;
        const std::string name =
            control->metaObject()->className() + (' ' + control->objectName().toStdString());
        if (!control->isVisible() || !placed || control->window() != &window ||
            inPlace.contains(control->objectName().toStdString())) {
            continue;
        }
        EXPECT_TRUE(holder->contentsRect().contains(control->geometry())) << name;
        QSize least = holder->layout() != nullptr ? control->minimumSizeHint() : QSize();
        if (qobject_cast<const QAbstractButton*>(control) != nullptr) {
            least = control->sizeHint();
            int widest = 0;
            for (const auto* button :
                 holder->findChildren<QAbstractButton*>(QString(), Qt::FindDirectChildrenOnly)) {
                widest = std::max({widest, button->sizeHint().width(), button->minimumWidth()});
            }
            EXPECT_LE(control->width(), widest) << name;
        }
        EXPECT_EQ(control->size().expandedTo(least), control->size()) << name;
        for (const QWidget* other : seen) {
            EXPECT_FALSE(other->parentWidget() == holder && other->geometry().intersects(control->geometry()))
                << name << " over " << other->objectName().toStdString();
        }
        seen.push_back(control);
    }
}

// Holds a text against what is kept of it; KAL_TEST_ANEW keeps it as it is.
inline void ExpectAsKept(const std::string& text, const std::string& name) {
    const std::string file = TEST_DATA "/windows/" + name + ".txt";
    if (std::getenv("KAL_TEST_ANEW") != nullptr) {
        WriteFile(file, text);
    }
    EXPECT_EQ(text, BytesOf(file)) << name;
}

// The window with what the focus goes through by Tab; then it gets larger.
inline void ExpectAs(const char* name, QWidget* window) {
    SCOPED_TRACE(name);
    std::string found = window->windowTitle().toStdString() + '\n';
    Walk(QAccessible::queryAccessibleInterface(window), false, {}, found);
    found += "Tab:";
    for (const QWidget* stop = window->nextInFocusChain(); stop != window; stop = stop->nextInFocusChain()) {
        const bool stops =
            stop->isVisible() && stop->isEnabled() && (stop->focusPolicy() & Qt::TabFocus) != 0;
        found += stops && !stop->objectName().isEmpty() ? ' ' + stop->objectName().toStdString() : "";
    }
    ExpectAsKept(found + '\n', name);
    EXPECT_GE(window->width(), window->fontMetrics().averageCharWidth() * 50);
    window->resize(window->size() + QSize(300, 300));
    QCoreApplication::processEvents();
    ExpectWhole(*window);
}

} // namespace KAL_AUTO_Node
