#pragma once

#include "KAL_AUTO_Node/Business_Rules.h"
#include "testing/TestStore.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QCursor>
#include <QEvent>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPointer>
#include <QPushButton>
#include <QRegularExpression>
#include <QStatusBar>
#include <QTest>
#include <QTimer>
#include <QTreeView>
#include <QWheelEvent>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <deque>
#include <exception>
#include <functional>
#include <optional>
#include <ostream>
#include <set>
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

inline Box ErrorBox(const std::string& text) {
    return {"Error", text, QMessageBox::Warning, QMessageBox::Ok};
}

inline Box SaveQuestion() {
    return {"Confirmation", "Do you want to save changes?", QMessageBox::Question,
            QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel};
}

inline std::string ShortDateOfToday() {
    const std::time_t now = std::time(nullptr);
    std::array<char, 64> text{};
    std::strftime(text.data(), text.size(), "%x", std::localtime(&now));
    return text.data();
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

    // No box passes unseen.
    ~Person() { EXPECT_EQ(boxes_, std::vector<Box>{}); }

    Person(const Person&) = delete;
    Person& operator=(const Person&) = delete;

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
    static bool Edit(Business_Rules& rules, int node, const std::function<void()>& deeds, int config = 1,
                     int partition = 2) {
        const auto show = [&] {
            rules.ShowNodeEditor(static_cast<std::int16_t>(config), static_cast<std::int16_t>(partition),
                                 static_cast<std::int16_t>(node));
        };
        return InWindow("GUI", show, [&] {
            deeds();
            MarkUnchanged();
        });
    }

    static bool Edit(int node, const std::function<void()>& deeds) {
        Business_Rules rules;
        return Edit(rules, node, deeds);
    }

    // Opens Quick Assign with the button, does things in it, and closes it.
    static void InQuickAssign(const std::string& button, const std::function<void()>& deeds) {
        EXPECT_TRUE(InWindow(
            "frmQuickAssign", [&] { Press(button); }, deeds));
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
    static Control* Find(const std::string& name) {
        for (const char* window : {"GUI", "frmQuickAssign"}) {
            if (QWidget* found = Window(window)) {
                if (auto* control = found->findChild<Control*>(QString::fromStdString(name))) {
                    return control;
                }
            }
        }
        throw std::runtime_error("no control " + name);
    }

    static QPushButton* Button(const std::string& name) { return Find<QPushButton>(name); }

    static QComboBox* Combo(const std::string& name) { return Find<QComboBox>(name); }

    static QLineEdit* TextBox(const std::string& name) { return Find<QLineEdit>(name); }

    static QTreeView* List(const std::string& name) { return Find<QTreeView>(name); }

    static std::string Text(const std::string& combo) { return Combo(combo)->currentText().toStdString(); }

    static std::string Caption(const std::string& button) { return Button(button)->text().toStdString(); }

    // The name of what has the focus.
    static std::string Focused() {
        const QWidget* focused = QApplication::focusWidget();
        return focused == nullptr ? "nothing" : focused->objectName().toStdString();
    }

    static bool Dirty() { return Button("cmdApply")->isEnabled(); }

    static void MarkUnchanged() { Button("cmdApply")->setEnabled(false); }

    // The shape of the mouse pointer.
    static Qt::CursorShape Pointer() {
        const QCursor* everywhere = QGuiApplication::overrideCursor();
        return everywhere != nullptr ? everywhere->shape() : Qt::ArrowCursor;
    }

    static void Press(const std::string& button) { QTest::mouseClick(Button(button), Qt::LeftButton); }

    // Chooses an entry as a person does from the open list, which announces the choice.
    static void Choose(const std::string& combo, const std::string& text) {
        QComboBox* box = Combo(combo);
        const int index = box->findText(QString::fromStdString(text), Qt::MatchExactly);
        ASSERT_GE(index, 0) << combo << " does not offer " << text;
        box->setCurrentIndex(index);
        emit box->activated(index);
    }

    static void ExpectIdle() {
        EXPECT_TRUE(Find<QFrame>("Frame1")->isEnabled());
        EXPECT_FALSE(Find<QStatusBar>("StatusBar1")->isVisible());
        EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    }

    // The node's label.
    static std::string Label() { return TextBox("txtDescription")->text().toStdString(); }

    static void TypeLabel(const std::string& label) { TypeOver("txtDescription", label); }

    // Types over the text of a box, key by key; it is not emptied before.
    static void TypeOver(const std::string& box, const std::string& text) {
        auto* control = Find<QWidget>(box);
        control->setFocus();
        QTest::keyClick(control, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(control, QString::fromStdString(text));
    }

    // Replaces the text of a box at once.
    static void Paste(QWidget* box, const std::string& text) {
        box->setFocus();
        QTest::keyClick(box, Qt::Key_A, Qt::ControlModifier);
        QGuiApplication::clipboard()->setText(QString::fromStdString(text));
        QTest::keyClick(box, Qt::Key_V, Qt::ControlModifier);
    }

    // The window system activates windows in its own time, and the focus takes effect in active ones only.
    static void WaitForFocus() { ASSERT_TRUE(QTest::qWaitForWindowActive(Window("GUI"))); }

    // On the label of a row, which no editor covers.
    static QPoint InRow(const std::string& list, int row) {
        QTreeView* view = List(list);
        const QModelIndex cell = view->model()->index(row, 3);
        view->scrollTo(cell);
        return view->visualRect(cell).center();
    }

    static void ClickRow(const std::string& list, int row, Qt::KeyboardModifiers modifiers = {},
                         Qt::MouseButton button = Qt::LeftButton) {
        const QPoint place = InRow(list, row);
        QTest::mouseClick(List(list)->viewport(), button, modifiers, place);
    }

    // Drags a row to the lower half of another, or to so many pixels beside its middle.
    static void DragRow(const std::string& list, int from, const std::string& other, int to,
                        const std::function<void()>& meanwhile = {}, int beside = 2) {
        QWidget* viewport = List(list)->viewport();
        QTest::mousePress(viewport, Qt::LeftButton, {}, InRow(list, from));
        const QPoint there = viewport->mapFromGlobal(List(other)->viewport()->mapToGlobal(InRow(other, to))) +
                             QPoint(0, beside);
        QMouseEvent move(QEvent::MouseMove, there, viewport->mapToGlobal(there), Qt::NoButton, Qt::LeftButton,
                         {});
        QApplication::sendEvent(viewport, &move);
        if (meanwhile) {
            meanwhile();
        }
        QTest::mouseRelease(viewport, Qt::LeftButton, {}, there);
    }

    // Turns the wheel of the mouse over a control by one notch.
    static void Scroll(const std::string& name) {
        auto* list = qobject_cast<QTreeView*>(Find<QWidget>(name));
        QWidget* over = list != nullptr ? list->viewport() : Find<QWidget>(name);
        const QPoint place = over->rect().center();
        QWheelEvent wheel(place, over->mapToGlobal(place), {}, {0, -120}, {}, {}, Qt::NoScrollPhase, false);
        QApplication::sendEvent(over, &wheel);
    }

    static void PressHeader(const std::string& list) {
        QTest::mouseClick(List(list)->header()->viewport(), Qt::LeftButton, {}, {40, 5});
    }

    static std::vector<int> SelectedRows(const std::string& list) {
        std::vector<int> rows;
        for (const QModelIndex& index : List(list)->selectionModel()->selectedRows(1)) {
            rows.push_back(index.row());
        }
        std::ranges::sort(rows);
        return rows;
    }

    // The boxes on screen in which rows are edited.
    static std::set<std::string> OpenEditors() {
        static const QRegularExpression names("^(cmb(Prompts|Actions|Exceptions)|txtActions)");
        std::set<std::string> open;
        for (const QWidget* editor : Window("GUI")->findChildren<QWidget*>(names)) {
            if (editor->isVisible()) {
                open.insert(editor->objectName().toStdString());
            }
        }
        return open;
    }

    static int Count(const std::string& list) { return List(list)->model()->rowCount(); }

    static std::string Cell(const std::string& list, int row, int column) {
        return List(list)->model()->index(row, column).data().toString().toStdString();
    }

    static std::string Key(const std::string& list, int row) {
        return List(list)->model()->index(row, 0).data(Qt::UserRole).toString().toStdString();
    }

    // The rows with their keys.
    static std::vector<std::string> Rows(const std::string& list) {
        std::vector<std::string> rows;
        for (int row = 0; row < Count(list); ++row) {
            rows.push_back(Key(list, row) + ": " + Row(list, row));
        }
        return rows;
    }

    // The cells of a row, joined by '|'.
    static std::string Row(const std::string& list, int row) {
        std::string cells;
        const auto* model = List(list)->model();
        for (int column = 0; column < model->columnCount(); ++column) {
            cells += (column > 0 ? "|" : "") + model->index(row, column).data().toString().toStdString();
        }
        return cells;
    }

  private:
    // Does things in a window once it is on screen, and closes it; open returns when it is closed.
    template <class Open>
    static bool InWindow(const char* name, Open open, const std::function<void()>& deeds) {
        bool appeared = false;
        QTimer start;
        QObject::connect(&start, &QTimer::timeout, [&] {
            const QPointer<QWidget> window = Window(name);
            if (window != nullptr && window->isVisible()) {
                start.stop();
                appeared = true;
                deeds();
                window->close();
            }
        });
        start.start(1);
        open();
        return appeared;
    }

    void AnswerBox() {
        const QPointer<QMessageBox> box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (box == nullptr || !box->isVisible()) {
            return;
        }
        boxes_.push_back({box->windowTitle().toStdString(), box->text().toStdString(), box->icon(),
                          box->standardButtons()});
        if (LookAtBox) {
            LookAtBox(*box);
        }
        if (box == nullptr || !box->isVisible()) {
            return;
        }
        QAbstractButton* button = answers_.empty() ? nullptr : box->button(answers_.front());
        if (!answers_.empty()) {
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

// What the status bar tells meanwhile, text by text as it gets on screen.
class ToldInStatusBar : public QObject {
  public:
    explicit ToldInStatusBar(std::function<void(const std::string& text)> look) : look_(std::move(look)) {
        qApp->installEventFilter(this);
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        const auto* label = qobject_cast<QLabel*>(watched);
        if (event->type() == QEvent::Paint && label != nullptr &&
            label->parent() == Person::Find<QStatusBar>("StatusBar1") &&
            std::exchange(last_, label->text().toStdString()) != label->text().toStdString()) {
            look_(last_);
        }
        return false;
    }

  private:
    std::function<void(const std::string& text)> look_;
    std::string last_;
};

// Someone before the editor, with a store of their own.
class EditorTest : public testing::Test {
  protected:
    // Opens a node, does things and expects the boxes given, no others.
    void Edit(int node, const std::function<void()>& deeds, const std::vector<Box>& boxes = {}) {
        EXPECT_TRUE(person_.Edit(node, [&] {
            Person::WaitForFocus();
            deeds();
        }));
        EXPECT_EQ(person_.Boxes(), boxes);
    }

    TestStore store_;
    Person person_;
};

} // namespace KAL_AUTO_Node
