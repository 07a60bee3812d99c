#include "Walk.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QScrollBar>

#include <sstream>

namespace KAL_AUTO_Node {
namespace {

using Lists = EditorTest;

// What a person does at the window, as a transcript has it after "$ ", and what that changes of all that is
// found in it: lines that go and lines that come, message boxes, the focus and the clipboard.
class Transcript : public EditorTest {
  protected:
    void Do(const QString& deed, const QString& rest) {
        const QStringList words = rest.split(' ');
        const std::string name = words[0].toStdString();
        const QString text = rest.mid(words[0].size() + 1);
        const auto pressed = [](const QString& keys) { return QKeySequence(keys)[0]; };
        if (deed == "stored") {
            for (const std::string& row : store_.Rows("SELECT " + rest.toStdString())) {
                stored_ += "= " + row + '\n';
            }
        } else if (deed == "sql") {
            store_.Execute(rest.toStdString());
        } else if (deed == "clipboard") {
            QGuiApplication::clipboard()->setText(QString(rest).replace("\\t", "\t").replace("\\n", "\n"));
        } else if (deed == "answer") {
            const auto answers = {
                std::pair{"Yes", QMessageBox::Yes}, {"No", QMessageBox::No}, {"Ok", QMessageBox::Ok}};
            person_.WillAnswer(
                {std::ranges::find(answers, name, &std::pair<const char*, QMessageBox::StandardButton>::first)
                     ->second});
        } else if (deed == "key") {
            for (const QString& keys : words) {
                QTest::keyClick(QApplication::focusWidget(), pressed(keys).key(),
                                pressed(keys).keyboardModifiers());
            }
        } else if (deed == "type") {
            QTest::keyClicks(QApplication::focusWidget(), rest);
        } else if (deed == "focus") {
            Person::Find<QWidget>(name)->setFocus(Qt::TabFocusReason);
        } else if (deed == "press") {
            QTest::mouseClick(Person::Find<QAbstractButton>(name), Qt::LeftButton);
        } else if (deed == "choose") {
            Person::Choose(name, text.toStdString());
        } else if (deed == "click") {
            Person::ClickRow(name, words[1].toInt(), pressed(words.value(2) + "+A").keyboardModifiers());
        } else if (deed == "twice") {
            const QPoint place = Person::InRow(name, words[1].toInt());
            QTest::mouseDClick(Person::List(name)->viewport(), Qt::LeftButton, {}, place);
            QTest::mouseRelease(Person::List(name)->viewport(), Qt::LeftButton, {}, place);
        } else if (deed == "drag") {
            Person::DragRow(name, words[1].toInt(), words[2].toStdString(), words[3].toInt());
        } else if (deed == "wheel") {
            Person::Scroll(name);
        } else {
            ADD_FAILURE() << "no deed " << deed.toStdString();
        }
    }

    std::string State() {
        // Where no window manager brings it back to the front when a message box has closed.
        Person::Window("GUI")->activateWindow();
        Person::WaitForFocus();
        const auto open = Person::OpenEditors();
        for (const std::string& editor : open) {
            if (editor.ends_with("Node")) {
                const bool alone = !open.contains(editor.substr(0, editor.size() - 4) + "Number");
                EXPECT_EQ(Person::Combo(editor)->width(), alone ? 111 : 65) << editor;
            }
        }
        std::string state;
        Walk(QAccessible::queryAccessibleInterface(Person::Window("GUI")), true, {}, state);
        const std::string copied = QGuiApplication::clipboard()->text().toStdString();
        state += "Focus: " + Person::Focused() +
                 "\nClipboard:" + (copied.empty() ? "\n" : ' ' + OnOneLine(copied) + '\n');
        return state;
    }

    std::string stored_;

    static std::string Changes(const std::string& before, const std::string& after) {
        std::string changes;
        for (const auto& [mark, from, to] : {std::tuple{"- ", before, after}, {"+ ", after, before}}) {
            std::istringstream lines(from);
            for (std::string line; std::getline(lines, line);) {
                const bool both = ('\n' + to).find('\n' + line + '\n') != std::string::npos;
                changes += both ? "" : mark + line.substr(line.find_first_not_of(' ')) + '\n';
            }
        }
        return changes;
    }
};

TEST_F(Transcript, TellsWhatTheWindowMakesOfEachDeed) {
    std::istringstream kept(BytesOf(TEST_DATA "/windows/transcript.txt"));
    std::vector<std::string> lines;
    for (std::string line; std::getline(kept, line);) {
        if (line.empty() || line.starts_with('#') || line.starts_with("$ ")) {
            lines.push_back(line);
        }
    }
    std::string told;
    for (auto line = lines.begin(); line != lines.end();) {
        if (!line->starts_with("$ edit ")) {
            told += *line++ + '\n';
            continue;
        }
        EXPECT_TRUE(person_.Edit(std::stoi(line->substr(7)), [&] {
            Person::WaitForFocus();
            QGuiApplication::clipboard()->clear();
            std::string state = State();
            told += *line++ + '\n' + state.substr(state.find("Focus: "));
            for (; line != lines.end() && !line->starts_with("$ edit "); ++line) {
                told += *line + '\n';
                if (line->starts_with("$ ")) {
                    const QString deed = QString::fromStdString(*line).section(' ', 1, 1);
                    Do(deed, QString::fromStdString(*line).section(' ', 2));
                    const std::string before = std::exchange(state, State());
                    told += Changes(before, state) + std::exchange(stored_, {});
                    for (const Box& box : person_.Boxes()) {
                        told += "! " + box.title + ": " + box.text + '\n';
                    }
                }
            }
        }));
    }
    ExpectAsKept(told, "transcript");
}

TEST_F(Lists, EditorsTakeNothingThatWasMeantForOthers) {
    const Box question{"Confirmation", "Do you want to vacate Prompts Table?", QMessageBox::Question,
                       QMessageBox::Yes | QMessageBox::No};
    const auto deeds = [&] {
        Person::Press("cmdPromptsEdit");
        Person::ClickRow("LVPrompts", 1);
        const auto open = Person::OpenEditors();
        QComboBox* node = Person::Combo("cmbPromptsNode");
        // A wheel that scrolls nothing hides nothing, and a key held down since before changes nothing.
        Person::Scroll("LVPrompts");
        QKeyEvent held(QEvent::KeyPress, Qt::Key_Down, {}, {}, true);
        QApplication::sendEvent(node, &held);
        // Neither does one that was let go of, or whose box was left.
        QKeyEvent release(QEvent::KeyRelease, Qt::Key_Down, {});
        QFocusEvent leave(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
        for (QEvent* end : {static_cast<QEvent*>(&release), static_cast<QEvent*>(&leave)}) {
            QTest::keyPress(node, Qt::Key_Down);
            QApplication::sendEvent(node, end);
            QApplication::sendEvent(node, &held);
            EXPECT_EQ(node->currentText(), "TIME");
            QTest::keyClick(node, Qt::Key_Up);
        }
        Person::Choose("cmbPromptsNumber", "2");
        // The Escape that closes a pop-up may come to the window, too.
        node->showPopup();
        QTest::keyClick(node->view(), Qt::Key_Escape);
        for (QWidget* receiver : {static_cast<QWidget*>(node), Person::Window("GUI")}) {
            QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, {});
            QApplication::sendEvent(receiver, &escape);
        }
        // A question that is taken away has not been answered with Yes.
        person_.LookAtBox = [](QMessageBox& box) { box.done(0); };
        Person::Choose("cmbPromptsNode", "EMPTY");
        EXPECT_EQ(Person::Text("cmbPromptsNode") + Person::Text("cmbPromptsNumber"), "MSG2");
        EXPECT_EQ(Person::OpenEditors(), open);
        EXPECT_EQ(open.size(), 2U);
        // A pop-up that the window system takes away keeps no Escape back.
        node->showPopup();
        node->view()->window()->hide();
        QCoreApplication::processEvents();
        QTest::keyClick(node, Qt::Key_Escape);
        EXPECT_TRUE(Person::OpenEditors().empty());
    };
    Edit(1, deeds, {question});
}

TEST_F(Lists, AreDrawn) {
    Edit(4, [] {
        QTreeView* list = Person::List("LVPrompts");
        QWidget* rows = list->viewport();
        const auto cell = [&](int row) { return list->visualRect(list->model()->index(row, 2)); };
        const auto drawn = [&](int row) { return rows->grab(cell(row)).toImage(); };
        const QImage plain = drawn(0);
        EXPECT_NE(plain, drawn(1)) << "by their texts";
        for (const QPoint& line : {plain.rect().bottomLeft(), plain.rect().topRight()}) {
            EXPECT_EQ(plain.pixel(line), list->palette().color(QPalette::Midlight).rgb());
        }
        Person::ClickRow("LVPrompts", 0);
        const QImage chosen = drawn(0);
        list = Person::List("LVActions");
        list->setFocus();
        const QImage elsewhere = Person::List("LVPrompts")->viewport()->grab(cell(0)).toImage();
        EXPECT_TRUE(chosen != plain && elsewhere != plain && elsewhere != chosen);
    });
    // While a row is dragged a line shows where it would go, which Escape takes away.
    Edit(1, [] {
        QTreeView* list = Person::List("LVPrompts");
        QWidget* rows = list->viewport();
        std::vector<QImage> looks;
        for (const int beside : {-5, 0, 5, 5000}) {
            const auto look = [&] {
                looks.push_back(rows->grab().toImage());
                EXPECT_EQ(rows->cursor().shape(), beside < 5000 ? Qt::DragMoveCursor : Qt::ForbiddenCursor);
                if (beside < 5000) {
                    QTest::keyClick(list, Qt::Key_Escape);
                }
            };
            Person::DragRow("LVPrompts", 2, "LVPrompts", 0, look, beside);
            EXPECT_EQ(rows->cursor().shape(), Qt::ArrowCursor);
        }
        EXPECT_EQ(looks[3], rows->grab().toImage());
        EXPECT_NE(looks[0], looks[3]);
        EXPECT_EQ(looks[0], looks[1]);
        EXPECT_NE(looks[1], looks[2]);
        EXPECT_FALSE(Person::Dirty());
        // A double click beside the rows opens none.
        QTest::mouseDClick(rows, Qt::LeftButton, {}, {5, rows->height() - 2});
        QTest::mouseRelease(rows, Qt::LeftButton, {}, {5, rows->height() - 2});
        EXPECT_EQ(Person::Caption("cmdPromptsEdit"), "Edit");
    });
    // A row that is dragged to the edge scrolls the list, and goes to where the edge is by then.
    Edit(4, [] {
        QTreeView* list = Person::List("LVActions");
        const int beside = list->viewport()->height() - 4 - Person::InRow("LVActions", 0).y();
        const int edge = list->indexAt({5, list->viewport()->height() - 4}).row();
        const QScrollBar& bar = *list->verticalScrollBar();
        const auto wait = [&] { EXPECT_TRUE(QTest::qWaitFor([&] { return bar.value() > 3; })); };
        Person::DragRow("LVActions", 0, "LVActions", 0, wait, beside);
        EXPECT_GT(Person::SelectedRows("LVActions").front(), edge);
        const int reached = bar.value();
        QTest::qWait(120);
        EXPECT_EQ(bar.value(), reached);
    });
}

TEST_F(Lists, HaveAMenuOfWhatCanBeDone) {
    Edit(1, [] {
        const auto choose = [](const std::string& list, const char* chosen) {
            std::string offered;
            QTimer::singleShot(0, [&] {
                auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
                ASSERT_NE(menu, nullptr);
                for (QAction* action : menu->actions()) {
                    if (action->isEnabled() || action->isSeparator()) {
                        const bool keyShown =
                            action->isShortcutVisibleInContextMenu() && !action->shortcut().isEmpty();
                        offered += action->isSeparator()
                                       ? "| "
                                       : action->text().toStdString() + (keyShown ? " " : ", ");
                    }
                    if (action->text() == QLatin1String(chosen)) {
                        menu->setActiveAction(action);
                    }
                }
                QTest::keyClick(menu, Qt::Key_Return);
            });
            QTest::keyClick(Person::List(list), Qt::Key_F10, Qt::ShiftModifier);
            return offered;
        };
        QGuiApplication::clipboard()->clear();
        EXPECT_EQ(choose("LVActions", "Add"), "Add Insert Remove Edit Up Down Quick | | | | Find ");
        EXPECT_EQ(choose("LVActions", "Copy"),
                  "Add Insert Remove Edit Up Down Quick | Undo | Cut Copy | Information on MSG 1, | Find ");
        EXPECT_EQ(
            choose("LVActions", "Undo"),
            "Add Insert Remove Edit Up Down Quick | Undo | Cut Copy Paste | Information on MSG 1, | Find ");
        EXPECT_EQ(Person::Count("LVActions"), 9);
        EXPECT_EQ(Person::Window("GUI")->focusWidget(), Person::List("LVActions"));
        EXPECT_EQ(
            choose("LVActions", "Edit"),
            "Add Insert Remove Edit Up Down Quick | Redo | Cut Copy Paste | Information on XFER 1, | Find ");
        EXPECT_EQ(choose("LVActions", "Edit Off"), "Edit Off | Undo | Copy | Information on XFER 1, | Find ");
        EXPECT_EQ(choose("LVExceptions", "Find"), "Edit Default, | Undo | Paste | | Find ");
        EXPECT_EQ(Person::Window("GUI")->focusWidget(), Person::TextBox("txtFind"));
    });
}

} // namespace
} // namespace KAL_AUTO_Node
