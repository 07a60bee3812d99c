#include "Walk.h"

#include <random>
#include <sstream>

namespace KAL_AUTO_Node {
namespace {

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

const Texts Kinds{"Prompts", "Actions", "Exceptions"};

// Deeds that go together.
Texts SomeDeeds(std::mt19937& random) {
    const auto below = [&](int end) { return static_cast<int>(random() % static_cast<unsigned>(end)); };
    const auto oneOf = [&](const Texts& texts) { return texts[random() % texts.size()]; };
    const std::string list = oneOf(Kinds);
    const std::string view = "LV" + list;
    const auto row = [&] { return ' ' + std::to_string(below(Person::Count(view))); };
    auto open = Person::OpenEditors();
    open.erase("txtActionsDash"); // takes no focus
    const int kind = below(8);
    if (kind < 2) {
        return {"press cmd" + list +
                oneOf(list == "Exceptions" ? Texts{"Edit", "Default"}
                                           : Texts{"Edit", "Add", "Insert", "Remove", "Up", "Down"})};
    }
    if (kind < 5) {
        return {"focus " + view, "key " + oneOf({"Del", "Return", "F2", "End", "Ctrl+A", "Ctrl+C", "Ctrl+X",
                                                 "Ctrl+V", "Ctrl+V", "Ctrl+Z", "Ctrl+Z", "Ctrl+Shift+Z"})};
    }
    if (kind > 5 && !open.empty()) {
        const std::string editor = oneOf({open.begin(), open.end()});
        if (below(4) == 0) {
            return {"focus " + editor, "key " + oneOf({"Return", "Esc"})};
        }
        if (editor.starts_with("txt")) {
            return {"focus " + editor, "key Ctrl+A", "type " + oneOf({"7", "007", "1*2 a", "*"})};
        }
        const QComboBox* box = Person::Combo(editor);
        return box->count() == 0
                   ? Texts()
                   : Texts{"choose " + editor + ' ' + box->itemText(below(box->count())).toStdString()};
    }
    if (Person::Count(view) == 0) {
        return {};
    }
    return {below(4) == 0 ? "drag " + view + row() + ' ' + view + row()
                          : "click " + view + row() + oneOf({"", " Ctrl", " Shift"})};
}

std::vector<Texts> AllRows() {
    return {Person::Rows("LVPrompts"), Person::Rows("LVActions"), Person::Rows("LVExceptions")};
}

// What holds of every list, however it came about.
void CheckLists() {
    Texts editing;
    for (const std::string& list : Kinds) {
        const std::string view = "LV" + list;
        int before = 0;
        for (int row = 0; row < Person::Count(view); ++row) {
            const auto cell = [&](int column) { return Person::Cell(view, row, column); };
            const int number = std::stoi(cell(0));
            EXPECT_EQ(Person::Key(view, row), cell(0) + 'a');
            EXPECT_GT(number, std::exchange(before, number));
            EXPECT_TRUE(list != "Prompts" || cell(1) == cell(0));
            EXPECT_TRUE(list != "Actions" || cell(1) == cell(7) + '-' + cell(8));
            EXPECT_EQ(cell(2),
                      cell(5) == (list == "Exceptions" ? "814" : "999") ? cell(4) : cell(4) + ' ' + cell(6));
        }
        if (Person::Caption("cmd" + list + "Edit") != "Edit") {
            editing.push_back(list);
        }
    }
    EXPECT_GT(Person::Count("LVPrompts"), 0);
    EXPECT_EQ(Person::Count("LVExceptions"), 5);
    EXPECT_LE(editing.size(), 1U);
    for (const std::string& editor : Person::OpenEditors()) {
        ASSERT_EQ(editing.size(), 1U) << editor;
        const std::string view = "LV" + editing.front();
        const int row = Person::List(view)->currentIndex().row();
        EXPECT_EQ(Person::SelectedRows(view), std::vector{row});
        EXPECT_NE(editor.find(editing.front()), std::string::npos);
        EXPECT_TRUE(!editor.ends_with("Node") || Person::Text(editor) == Person::Cell(view, row, 4));
    }
}

// At nodes whose stored rows have gaps, and with types that cannot be edited. What fails is told as the
// transcript would have it.
TEST_F(Transcript, HoldsWhatHoldsOfListsWhateverIsDone) {
    const char* given = std::getenv("KAL_TEST_SEED");
    const unsigned long seed = given != nullptr ? std::strtoul(given, nullptr, 10) : std::random_device()();
    store_.Execute(
        "UPDATE Detail_AUTO_Action SET SequenceNo = SequenceNo * 1000 WHERE NodeMasterID IN (5, 8)");
    for (const int node : {15, 5, 8}) {
        EXPECT_TRUE(person_.Edit(node, [&] {
            std::mt19937 random(seed);
            const auto first = AllRows();
            std::string done = "KAL_TEST_SEED=" + std::to_string(seed) + "\n$ edit " + std::to_string(node);
            const auto act = [&](const std::string& deed) {
                Person::Window("GUI")->activateWindow();
                Person::WaitForFocus();
                done += "\n$ " + deed;
                const QString words = QString::fromStdString(deed);
                Do(words.section(' ', 0, 0), words.section(' ', 1));
            };
            for (int round = 0; round < Rounds(120) && !HasFailure(); ++round) {
                const auto rows = AllRows();
                Person::MarkUnchanged();
                for (const std::string& deed : SomeDeeds(random)) {
                    act(deed);
                }
                SCOPED_TRACE(done);
                CheckLists();
                const auto left = AllRows();
                for (std::size_t list = 0; list < rows.size(); ++list) {
                    EXPECT_TRUE(left[list].size() == rows[list].size() || Person::Dirty());
                }
                for (const Box& box : person_.Boxes()) {
                    EXPECT_TRUE(box.text.starts_with("Please check the") ||
                                box.text.starts_with("Do you want to vacate") ||
                                box.text.ends_with(" to paste.") ||
                                box.text.ends_with(". Nothing was pasted."))
                        << box.text;
                }
                if (round % 100 == 30) {
                    const auto all = [&](const char* key) {
                        act("focus LVActions");
                        for (int i = 0; i < 100; ++i) {
                            act(std::string("key ") + key);
                        }
                        return AllRows();
                    };
                    const auto latest = all("Ctrl+Shift+Z");
                    EXPECT_TRUE(all("Ctrl+Z") == first || round > 30);
                    EXPECT_EQ(all("Ctrl+Shift+Z"), latest);
                }
            }
        }));
    }
}

} // namespace
} // namespace KAL_AUTO_Node
