#pragma once

#include "KAL_AUTO_Node/Business_Rules.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QStatusBar>
#include <QTest>
#include <QTimer>
#include <QTreeView>
#include <gtest/gtest.h>

#include <deque>
#include <exception>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

// What a message box showed when it was answered.
struct Box {
    std::string title;
    std::string text;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QMessageBox::StandardButtons buttons;

    friend bool operator==(const Box&, const Box&) = default;
};

inline void PrintTo(const Box& box, std::ostream* out) {
    *out << '[' << box.title << "] " << box.text << " (icon " << box.icon << ", buttons " << std::hex
         << static_cast<unsigned>(box.buttons) << std::dec << ')';
}

inline Box Information(const std::string& text) {
    return {"Information", text, QMessageBox::Information, QMessageBox::Ok};
}

inline Box SaveQuestion() {
    return {"Confirmation", "Do you want to save changes?", QMessageBox::Question,
            QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel};
}

// A person before the screen: answers the message boxes that appear, in order, by pressing their buttons, and
// uses the windows by the names of their controls. A box for which no answer is prepared is closed with
// Escape; Boxes tells all that appeared.
class Person {
  public:
    Person() {
        QObject::connect(&watch_, &QTimer::timeout, [this] { AnswerBox(); });
        watch_.start(1);
    }

    void WillAnswer(std::initializer_list<QMessageBox::StandardButton> answers) {
        answers_.insert(answers_.end(), answers.begin(), answers.end());
    }

    // Looks at each box before it is answered.
    std::function<void(QMessageBox&)> LookAtBox;

    // Those that appeared since the last call.
    std::vector<Box> Boxes() { return std::exchange(boxes_, {}); }

    [[nodiscard]] bool HasAnswersLeft() const { return !answers_.empty(); }

    // Opens the editor as a host does, and does things in it once it is on screen. What is still open then is
    // closed without saving. Returns whether the window appeared.
    bool Edit(Business_Rules& rules, int node, const std::function<void()>& deeds, int config = 1,
              int partition = 2) {
        bool appeared = false;
        QTimer start;
        QObject::connect(&start, &QTimer::timeout, [&] {
            QWidget* window = Window("GUI");
            if (window == nullptr || !window->isVisible()) {
                return;
            }
            start.stop();
            appeared = true;
            deeds();
            if (window = Window("GUI"); window != nullptr && window->isVisible()) {
                Button("cmdApply")->setEnabled(false);
                window->close();
            }
        });
        start.start(1);
        rules.ShowNodeEditor(static_cast<std::int16_t>(config), static_cast<std::int16_t>(partition),
                             static_cast<std::int16_t>(node));
        return appeared;
    }

    bool Edit(int node, const std::function<void()>& deeds) {
        Business_Rules rules;
        return Edit(rules, node, deeds);
    }

    // Opens Quick Assign with the button, and does things in it; it is closed afterwards where it is still
    // open.
    void InQuickAssign(const char* button, const std::function<void()>& deeds) {
        QTimer start;
        QObject::connect(&start, &QTimer::timeout, [&] {
            QWidget* window = Window("frmQuickAssign");
            if (window == nullptr || !window->isVisible()) {
                return;
            }
            start.stop();
            deeds();
            if (window = Window("frmQuickAssign"); window != nullptr && window->isVisible()) {
                window->close();
            }
        });
        start.start(1);
        Press(button);
    }

    static QWidget* Window(const char* name) {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (widget->objectName() == QLatin1String(name)) {
                return widget;
            }
        }
        return nullptr;
    }

    // A control of the editor or of Quick Assign.
    template <class Control>
    static Control* Find(const char* name) {
        for (const char* window : {"GUI", "frmQuickAssign"}) {
            if (QWidget* found = Window(window)) {
                if (auto* control = found->findChild<Control*>(QString::fromLatin1(name))) {
                    return control;
                }
            }
        }
        throw std::runtime_error(std::string("no control ") + name);
    }

    static QPushButton* Button(const char* name) { return Find<QPushButton>(name); }

    static QComboBox* Combo(const char* name) { return Find<QComboBox>(name); }

    static QLineEdit* TextBox(const char* name) { return Find<QLineEdit>(name); }

    static QTreeView* List(const char* name) { return Find<QTreeView>(name); }

    static std::string Text(const char* combo) { return Combo(combo)->currentText().toStdString(); }

    static bool Dirty() { return Button("cmdApply")->isEnabled(); }

    static void Press(const char* button) { QTest::mouseClick(Button(button), Qt::LeftButton); }

    // Chooses an entry as a person does from the open list: the index becomes current and the choice is
    // announced.
    static void Choose(const char* combo, const char* text) {
        QComboBox* box = Combo(combo);
        const int index = box->findText(QString::fromUtf8(text), Qt::MatchExactly);
        ASSERT_GE(index, 0) << combo << " does not offer " << text;
        box->setCurrentIndex(index);
        emit box->activated(index);
    }

    // Replaces the text of a box, key by key.
    static void Type(QWidget* box, const char* text) {
        box->setFocus();
        QTest::keyClick(box, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(box, Qt::Key_Delete);
        QTest::keyClicks(box, QString::fromUtf8(text));
    }

    static void ClickRow(const char* list, int row, Qt::KeyboardModifiers modifiers = {}) {
        QTreeView* view = List(list);
        const QModelIndex cell = view->model()->index(row, 1);
        view->scrollTo(cell);
        QTest::mouseClick(view->viewport(), Qt::LeftButton, modifiers, view->visualRect(cell).center());
    }

    static int Count(const char* list) { return List(list)->model()->rowCount(); }

    static std::string Cell(const char* list, int row, int column) {
        return List(list)->model()->index(row, column).data().toString().toStdString();
    }

    static std::string Key(const char* list, int row) {
        return List(list)->model()->index(row, 0).data(Qt::UserRole).toString().toStdString();
    }

    // The cells of a row, joined by '|'.
    static std::string Row(const char* list, int row) {
        std::string cells;
        for (int column = 0; column < List(list)->model()->columnCount(); ++column) {
            cells += (column > 0 ? "|" : "") + Cell(list, row, column);
        }
        return cells;
    }

  private:
    void AnswerBox() {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (box == nullptr || !box->isVisible()) {
            return;
        }
        boxes_.push_back({box->windowTitle().toStdString(), box->text().toStdString(), box->icon(),
                          box->standardButtons()});
        if (LookAtBox) {
            LookAtBox(*box);
        }
        QAbstractButton* button = nullptr;
        if (!answers_.empty()) {
            button = box->button(answers_.front());
            answers_.pop_front();
            EXPECT_NE(button, nullptr) << "no such answer to: " << boxes_.back().text;
        }
        if (button != nullptr) {
            button->click();
        } else {
            QTest::keyClick(box, Qt::Key_Escape);
        }
    }

    QTimer watch_;
    std::deque<QMessageBox::StandardButton> answers_;
    std::vector<Box> boxes_;
};

} // namespace KAL_AUTO_Node
