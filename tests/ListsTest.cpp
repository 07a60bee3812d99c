#include "Person.h"
#include "TestStore.h"
#include "editor/EditorWindow.h"
#include "rules/Rows.h"

#include <QClipboard>
#include <QHeaderView>
#include <QWheelEvent>

#include <algorithm>

namespace KAL_AUTO_Node {
namespace {

using Strings = std::vector<std::string>;

// The names of a list's controls.
struct Names {
    const char* list;
    const char* edit;
    const char* node;
    const char* number;
    const char* add = nullptr;
    const char* insert = nullptr;
    const char* remove = nullptr;
    const char* up = nullptr;
    const char* down = nullptr;
    const char* quick = nullptr;
};

constexpr Names Prompts{"LVPrompts",      "cmdPromptsEdit",   "cmbPromptsNode",   "cmbPromptsNumber",
                        "cmdPromptsAdd",  "cmdPromptsInsert", "cmdPromptsRemove", "cmdPromptsUp",
                        "cmdPromptsDown", "cmdQuickPrompts"};
constexpr Names Actions{"LVActions",      "cmdActionsEdit",   "cmbActionsNode",   "cmbActionsNumber",
                        "cmdActionsAdd",  "cmdActionsInsert", "cmdActionsRemove", "cmdActionsUp",
                        "cmdActionsDown", "cmdQuickActions"};
constexpr Names Timeout{"LVExceptions", "cmdExceptionsEdit", "cmbExceptionsTimeoutNode",
                        "cmbExceptionsTimeoutNumber"};

constexpr const char* LowBox = "txtActionsDTMFRangeLow";
constexpr const char* Dash = "txtActionsDash";
constexpr const char* HighBox = "txtActionsDTMFRangeHigh";

// Widths of the in-place editors in pixels.
constexpr int NodeWidth = 65;
constexpr int LoneNodeWidth = 111;
constexpr int NumberWidth = 46;

QWidget* Control(const char* name) { return Person::Find<QWidget>(name); }

bool Shown(const char* name) { return Control(name)->isVisible(); }

std::string Caption(const char* button) { return Person::Button(button)->text().toStdString(); }

std::string Focused() {
    const QWidget* focused = QApplication::focusWidget();
    return focused == nullptr ? "nothing" : focused->objectName().toStdString();
}

// A key for whatever has the focus.
void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    ASSERT_NE(QApplication::focusWidget(), nullptr);
    QTest::keyClick(QApplication::focusWidget(), key, modifiers);
}

// On the label, which no editor covers.
QPoint Label(const char* list, int row) {
    QTreeView* view = Person::List(list);
    const QModelIndex cell = view->model()->index(row, 3);
    view->scrollTo(cell);
    return view->visualRect(cell).center();
}

void Click(const char* list, int row, Qt::KeyboardModifiers modifiers = {}) {
    QTest::mouseClick(Person::List(list)->viewport(), Qt::LeftButton, modifiers, Label(list, row));
}

// Types over what the box holds.
void TypeOver(const char* box, const char* text) {
    Control(box)->setFocus();
    QTest::keyClick(Control(box), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(Control(box), QString::fromLatin1(text));
}

void MarkUnchanged() { Person::Button("cmdApply")->setEnabled(false); }

std::vector<int> Selected(const char* list) {
    std::vector<int> rows;
    for (const QModelIndex& index : Person::List(list)->selectionModel()->selectedRows(1)) {
        rows.push_back(index.row());
    }
    std::ranges::sort(rows);
    return rows;
}

// What the rows refer to, after making sure that keys and positions run from 1.
Strings Targets(const char* list) {
    Strings targets;
    for (int row = 0; row < Person::Count(list); ++row) {
        const std::string position = std::to_string(row + 1);
        EXPECT_EQ(Person::Key(list, row), position + "a");
        EXPECT_EQ(Person::Cell(list, row, 0), position);
        if (list == std::string("LVPrompts")) {
            EXPECT_EQ(Person::Cell(list, row, 1), position);
        }
        targets.push_back(Person::Cell(list, row, 2));
    }
    return targets;
}

Box Unavailable(const std::string& type) {
    return Information("Please check the \"Max Number of each Node\" Section for " + type +
                       " Node in Partition Settings.");
}

Box VacateQuestion() {
    return {"Confirmation", "Do you want to vacate Prompts Table?", QMessageBox::Question,
            QMessageBox::Yes | QMessageBox::No};
}

QRect OnScreen(const QWidget* widget, const QRect& rect) {
    return {widget->mapToGlobal(rect.topLeft()), rect.size()};
}

// Where an editor has to be: so far from the left of a column, over the whole height of the row.
void ExpectOver(const char* editor, const char* list, int row, int column, int offset, int width) {
    const QTreeView* view = Person::List(list);
    const QRect cell = view->visualRect(view->model()->index(row, column));
    const QRect expected(view->columnViewportPosition(column) + offset, cell.top(), width, cell.height());
    EXPECT_TRUE(Shown(editor)) << editor;
    EXPECT_EQ(OnScreen(Control(editor), Control(editor)->rect()), OnScreen(view->viewport(), expected))
        << editor << " over row " << row << " of " << list;
}

void ExpectPickersOver(const Names& names, int row) {
    ExpectOver(names.node, names.list, row, 2, 0, NodeWidth);
    ExpectOver(names.number, names.list, row, 2, NodeWidth, NumberWidth);
}

void ExpectRangeBoxesOver(int row) {
    ExpectOver(LowBox, "LVActions", row, 1, 0, 50);
    ExpectOver(Dash, "LVActions", row, 1, 50, 6);
    ExpectOver(HighBox, "LVActions", row, 1, 56, 50);
}

class Lists : public testing::Test {
  protected:
    // Opens a node, does things and expects the boxes given, no others.
    void Edit(int node, const std::function<void()>& deeds, const std::vector<Box>& boxes = {}) {
        EXPECT_TRUE(person_.Edit(node, [&] {
            EXPECT_TRUE(QTest::qWaitForWindowActive(Person::Window("GUI")));
            deeds();
        }));
        EXPECT_EQ(person_.Boxes(), boxes);
    }

    void SetMax(const char* types, int max) const {
        store_.Execute("UPDATE Node_Type_Max SET Max_Number = " + std::to_string(max) +
                       " WHERE PartitionID = 2 AND NodeType_ID IN (" + types + ")");
    }

    TestStore store_;
    Person person_;
};

// Prompts and actions where they behave alike.
class RowLists : public Lists, public testing::WithParamInterface<Names> {
  protected:
    [[nodiscard]] bool OfPrompts() const { return GetParam().list == std::string("LVPrompts"); }
};

INSTANTIATE_TEST_SUITE_P(, RowLists, testing::Values(Prompts, Actions),
                         [](const auto& test) { return std::string(test.param.list + 2); });

TEST_P(RowLists, AddAppendsTheFirstMessageAndInsertPutsItBefore) {
    const Names& names = GetParam();
    Edit(OfPrompts() ? 6 : 10, [&] {
        Strings expected = Targets(names.list);
        ASSERT_EQ(expected.size(), 5U);
        Person::Press(names.add);
        expected.push_back("MSG 1");
        EXPECT_EQ(Targets(names.list), expected);
        EXPECT_EQ(Person::Row(names.list, 5),
                  OfPrompts() ? "6|6|MSG 1||MSG|0|1" : "6|6-6|MSG 1||MSG|0|1|6|6");
        EXPECT_EQ(Selected(names.list), std::vector{5});
        EXPECT_TRUE(Person::Dirty());

        MarkUnchanged();
        Click(names.list, 1);
        Person::Press(names.insert);
        expected.insert(expected.begin() + 1, "MSG 1");
        EXPECT_EQ(Targets(names.list), expected);
        EXPECT_EQ(Person::Row(names.list, 1),
                  OfPrompts() ? "2|2|MSG 1||MSG|0|1" : "2|2-2|MSG 1||MSG|0|1|2|2");
        EXPECT_EQ(Selected(names.list), std::vector{1});
        EXPECT_FALSE(Shown(names.node) || Shown(names.number));
        EXPECT_TRUE(Person::Dirty());
        // Only an action keeps what stands in its first column.
        EXPECT_EQ(Person::Cell(names.list, 2, 1), OfPrompts() ? "3" : "2-2");

        // With two rows or none selected, prompts stay as they are and an action is appended.
        for (const bool two : {true, false}) {
            MarkUnchanged();
            Click(names.list, 0);
            Click(names.list, two ? 2 : 0, Qt::ControlModifier);
            ASSERT_EQ(Selected(names.list).size(), two ? 2U : 0U);
            Person::Press(names.insert);
            if (!OfPrompts()) {
                expected.push_back("MSG 1");
            }
            EXPECT_EQ(Targets(names.list), expected);
            EXPECT_EQ(Person::Dirty(), !OfPrompts());
        }
    });
}

TEST_P(RowLists, RemoveRenumbersAndSelectsWhatFollows) {
    const Names& names = GetParam();
    Edit(OfPrompts() ? 6 : 10, [&] {
        Strings expected = Targets(names.list);
        Click(names.list, 1);
        Click(names.list, 3, Qt::ControlModifier);
        Person::Press(names.remove);
        expected.erase(expected.begin() + 3);
        expected.erase(expected.begin() + 1);
        EXPECT_EQ(Targets(names.list), expected);
        EXPECT_EQ(Selected(names.list), std::vector{0});
        EXPECT_TRUE(Person::Dirty());

        Click(names.list, 1);
        Person::Press(names.remove);
        expected.erase(expected.begin() + 1);
        EXPECT_EQ(Targets(names.list), expected);
        EXPECT_EQ(Selected(names.list), std::vector{1});
        Person::Press(names.remove);
        expected.pop_back();
        EXPECT_EQ(Targets(names.list), expected);
        EXPECT_EQ(Selected(names.list), std::vector{0});
    });
    // From the keyboard, everything at once.
    Edit(4, [&] {
        Person::List(names.list)->setFocus();
        Key(Qt::Key_A, Qt::ControlModifier);
        EXPECT_EQ(Selected(names.list).size(), OfPrompts() ? 30U : 60U);
        EXPECT_FALSE(Person::Dirty());
        Key(Qt::Key_Delete);
        EXPECT_TRUE(Person::Dirty());
        EXPECT_EQ(Targets(names.list), OfPrompts() ? Strings{"EMPTY"} : Strings());
        if (OfPrompts()) {
            EXPECT_EQ(Person::Row(names.list, 0), "1|1|EMPTY||EMPTY|999|1");
            EXPECT_EQ(Selected(names.list), std::vector{0});
            EXPECT_EQ(Control(names.node)->width(), LoneNodeWidth);
        }
    });
}

TEST_P(RowLists, UpAndDownMoveOneRowAndAlwaysMark) {
    const Names& names = GetParam();
    Edit(OfPrompts() ? 6 : 10, [&] {
        Strings expected = Targets(names.list);
        const int last = Person::Count(names.list) - 1;
        struct Move {
            const char* button;
            int row;
            int to;
        };
        for (const Move& move : {Move{names.up, 2, 1}, Move{names.down, 0, 1}, Move{names.up, last, last - 1},
                                 Move{names.up, 0, 0}, Move{names.down, last, last}}) {
            MarkUnchanged();
            Click(names.list, move.row);
            std::string moved = Person::Row(names.list, move.row);
            Person::Press(move.button);
            std::swap(expected[static_cast<std::size_t>(move.row)],
                      expected[static_cast<std::size_t>(move.to)]);
            EXPECT_EQ(Targets(names.list), expected);
            EXPECT_EQ(Selected(names.list), std::vector{move.to});
            EXPECT_TRUE(Person::Dirty());
            // All of the row but its position has moved.
            const std::string now = Person::Row(names.list, move.to);
            const auto content = [&](const std::string& row) {
                const std::size_t first = row.find('|') + 1;
                return row.substr(OfPrompts() ? row.find('|', first) : first);
            };
            EXPECT_EQ(content(now), content(moved));
        }
        MarkUnchanged();
        Click(names.list, 1);
        Click(names.list, 2, Qt::ControlModifier);
        Person::Press(names.down);
        EXPECT_EQ(Targets(names.list), expected);
        EXPECT_TRUE(Person::Dirty());
    });
}

TEST_P(RowLists, ATypeWithFewerNumbersStartsAgainAtOne) {
    const Names& names = GetParam();
    SetMax("2", 9);
    Edit(1, [&] {
        const int row = 2;
        const std::string lead = Person::Cell(names.list, row, 1);
        EXPECT_EQ(Person::Cell(names.list, row, 3), OfPrompts() ? "Today's specials" : "Opening hours");
        Person::Press(names.edit);
        Click(names.list, row);
        MarkUnchanged();
        EXPECT_EQ(Person::Cell(names.list, row, 3), "");
        Person::Choose(names.number, "12");
        EXPECT_EQ(Person::Cell(names.list, row, 2), "MSG 12");
        Person::Choose(names.node, "LIST");
        EXPECT_EQ(Person::Cell(names.list, row, 2), "LIST 12");
        EXPECT_EQ(Person::Text(names.number), "12");
        Person::Choose(names.node, "TIME");
        EXPECT_EQ(Person::Combo(names.number)->count(), 9);
        EXPECT_EQ(Person::Text(names.number), "1");
        EXPECT_EQ(Person::Row(names.list, row),
                  "3|" + lead + "|TIME 1||TIME|2|1" + (OfPrompts() ? "" : "|3|3"));
        EXPECT_FALSE(Person::Dirty());
        // Typed numbers stay among those offered.
        for (const auto& [typed, left] :
             {std::pair{"25", "2"}, {"0", "1"}, {"x", "1"}, {"7a", "7"}, {"9", "9"}}) {
            TypeOver(names.number, typed);
            EXPECT_EQ(Person::Text(names.number), left) << typed;
            EXPECT_EQ(Person::Cell(names.list, row, 2), std::string("TIME ") + left);
            EXPECT_EQ(Person::Cell(names.list, row, 6), left);
        }
        // A pasted text comes as a whole; the 0 ends it.
        QApplication::clipboard()->setText("05");
        TypeOver(names.number, "");
        QTest::keyClick(Control(names.number), Qt::Key_V, Qt::ControlModifier);
        EXPECT_EQ(Person::Cell(names.list, row, 2), "TIME 1");
    });
}

TEST_F(Lists, AddOnAnEmptyList) {
    Edit(2, [] {
        for (const Names& names : {Prompts, Actions}) {
            EXPECT_EQ(Person::Count(names.list), 0);
            Person::Press(names.add);
            EXPECT_EQ(Targets(names.list), Strings{"MSG 1"});
        }
        EXPECT_EQ(Person::Row("LVActions", 0), "1|1-1|MSG 1||MSG|0|1|1|1");
    });
    // The placeholder gives way to the first prompt.
    for (const char* button : {"cmdPromptsAdd", "cmdPromptsInsert"}) {
        Edit(7, [&] {
            EXPECT_EQ(Targets("LVPrompts"), Strings{"EMPTY"});
            Click("LVPrompts", 0);
            Person::Press(button);
            EXPECT_EQ(Targets("LVPrompts"), Strings{"MSG 1"}) << button;
            EXPECT_EQ(Selected("LVPrompts"), std::vector{0});
        });
    }
}

TEST_F(Lists, OnlyOneIsEditedAtATimeAndEachToggleMarks) {
    Edit(1, [] {
        const std::vector<Names> lists{Prompts, Actions, Timeout};
        for (const Names& names : lists) {
            Click(names.list, 0);
        }
        for (const auto& [from, to] : {std::pair{0, 1}, {1, 2}, {2, 0}, {0, 2}, {2, 1}, {1, 0}}) {
            const Names& first = lists[static_cast<std::size_t>(from)];
            const Names& second = lists[static_cast<std::size_t>(to)];
            Person::Press(first.edit);
            EXPECT_TRUE(Shown(first.node) && Shown(first.number)) << first.list;
            MarkUnchanged();
            Person::Press(second.edit);
            EXPECT_EQ(Caption(first.edit) + Caption(second.edit), "EditEdit Off");
            EXPECT_TRUE(Shown(second.node) && Shown(second.number)) << second.list;
            EXPECT_FALSE(Shown(first.node) || Shown(first.number)) << first.list;
            EXPECT_EQ(Focused(), to == 1 ? LowBox : second.node);
            EXPECT_TRUE(Person::Dirty());
            MarkUnchanged();
            Person::Press(second.edit);
            EXPECT_EQ(Caption(second.edit), "Edit");
            EXPECT_FALSE(Shown(second.node) || Shown(second.number)) << second.list;
            EXPECT_TRUE(Person::Dirty());
        }
        for (const Names& names : {Prompts, Actions}) {
            for (const bool editing : {true, false}) {
                Person::Press(names.edit);
                for (const char* button :
                     {names.add, names.insert, names.remove, names.up, names.down, names.quick}) {
                    EXPECT_EQ(Person::Button(button)->isEnabled(), !editing) << button;
                }
            }
        }
    });
}

// A person who works with assistive technology presses a button without moving the focus there.
TEST_F(Lists, EditModeBeginsWhereTheFocusIsInAnotherListsEditor) {
    Edit(2, [] {
        Person::Press("cmdActionsAdd");
        Person::Press("cmdActionsEdit");
        ASSERT_EQ(Focused(), LowBox);
        Person::Button("cmdPromptsEdit")->click();
        EXPECT_EQ(Caption("cmdPromptsEdit") + Caption("cmdActionsEdit"), "Edit OffEdit");
    });
}

TEST_F(Lists, EditorsSitOverTheirRowWhereverItMoves) {
    Edit(4, [] {
        Person::Press("cmdActionsEdit");
        Click("LVActions", 2);
        ExpectPickersOver(Actions, 2);
        ExpectRangeBoxesOver(2);
        Person::Window("GUI")->resize(1250, 800);
        QCoreApplication::processEvents();
        ExpectPickersOver(Actions, 2);
        ExpectRangeBoxesOver(2);
        Person::List("LVActions")->header()->resizeSection(1, 150);
        ExpectPickersOver(Actions, 2);
        ExpectRangeBoxesOver(2);
        // A click gives the columns their widths back.
        Click("LVActions", 3);
        EXPECT_EQ(Person::List("LVActions")->columnWidth(1), 106);
        ExpectPickersOver(Actions, 3);

        Click("LVActions", 50);
        ExpectPickersOver(Actions, 50);
        ExpectRangeBoxesOver(50);
        QWidget* viewport = Person::List("LVActions")->viewport();
        const QPointF at(20, 20);
        QWheelEvent wheel(at, viewport->mapToGlobal(at), {}, {0, 120}, Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(viewport, &wheel);
        for (const char* editor : {LowBox, Dash, HighBox, Actions.node, Actions.number}) {
            EXPECT_FALSE(Shown(editor)) << editor;
        }
        EXPECT_EQ(Caption("cmdActionsEdit"), "Edit Off");

        Person::Press("cmdPromptsEdit");
        Click("LVPrompts", 29);
        ExpectPickersOver(Prompts, 29);
        Person::Window("GUI")->resize(1000, 700);
        QCoreApplication::processEvents();
        if (Shown(Prompts.node)) {
            ExpectPickersOver(Prompts, 29);
        }
        Person::Press("cmdExceptionsEdit");
        Click("LVExceptions", 0);
        ExpectPickersOver(Timeout, 0);
        Person::Window("GUI")->resize(1100, 800);
        QCoreApplication::processEvents();
        ExpectPickersOver(Timeout, 0);
    });
}

// What is chosen must never land in another row than the one under the editors.
TEST_F(Lists, ARowThatOnlyGetsSelectedTakesNothingFromTheEditors) {
    for (const Names& names : {Prompts, Actions, Timeout}) {
        for (const std::string way : {"right click", "drag", "keyboard"}) {
            SCOPED_TRACE(std::string(names.list) + ", " + way);
            Edit(1, [&] {
                Person::Press(names.edit);
                Click(names.list, 0);
                QTreeView* view = Person::List(names.list);
                if (way == "right click") {
                    QTest::mouseClick(view->viewport(), Qt::RightButton, {}, Label(names.list, 2));
                } else if (way == "drag") {
                    QTest::mousePress(view->viewport(), Qt::LeftButton, {}, Label(names.list, 1));
                    QTest::mouseRelease(view->viewport(), Qt::LeftButton, {}, Label(names.list, 2));
                } else {
                    QTest::keyClick(view, Qt::Key_Down, Qt::ShiftModifier);
                }
                const QWidget* editor = Control(names.node);
                if (editor->isVisible()) {
                    const QPoint middle = editor->mapToGlobal(editor->rect().center());
                    EXPECT_EQ(view->indexAt(view->viewport()->mapFromGlobal(middle)).row(),
                              view->currentIndex().row());
                }
            });
        }
    }
}

TEST_F(Lists, VacatingAsksFirst) {
    person_.WillAnswer({QMessageBox::No, QMessageBox::Yes});
    Edit(1,
         [] {
             Person::Press("cmdPromptsEdit");
             Click("LVPrompts", 1);
             MarkUnchanged();
             Person::Choose("cmbPromptsNode", "EMPTY");
             EXPECT_EQ(Targets("LVPrompts"), (Strings{"TIME 1", "MSG 2", "MSG 3"}));
             EXPECT_EQ(Person::Text("cmbPromptsNode"), "MSG");
             EXPECT_EQ(Person::Text("cmbPromptsNumber"), "2");
             ExpectPickersOver(Prompts, 1);

             Person::Choose("cmbPromptsNode", "EMPTY");
             EXPECT_EQ(Targets("LVPrompts"), Strings{"EMPTY"});
             EXPECT_EQ(Person::Row("LVPrompts", 0), "1|1|EMPTY||EMPTY|999|1");
             EXPECT_FALSE(Shown("cmbPromptsNode") || Shown("cmbPromptsNumber"));
             EXPECT_EQ(Caption("cmdPromptsEdit"), "Edit Off");
             EXPECT_FALSE(Person::Dirty());

             // The placeholder itself is edited without a question, alone over both places.
             Click("LVPrompts", 0);
             ExpectOver("cmbPromptsNode", "LVPrompts", 0, 2, 0, LoneNodeWidth);
             EXPECT_FALSE(Shown("cmbPromptsNumber"));
             Person::Choose("cmbPromptsNode", "TIME");
             EXPECT_EQ(Targets("LVPrompts"), Strings{"TIME 1"});
             ExpectPickersOver(Prompts, 0);
         },
         {VacateQuestion(), VacateQuestion()});
}

TEST_F(Lists, AnActionWithoutANumber) {
    Edit(14,
         [] {
             Person::Press("cmdActionsEdit");
             Click("LVActions", 0);
             Person::Choose("cmbActionsNode", "EMPTY");
             EXPECT_EQ(Person::Row("LVActions", 0), "1|1-1|EMPTY||EMPTY|999|1|1|1");
             ExpectOver("cmbActionsNode", "LVActions", 0, 2, 0, LoneNodeWidth);
             EXPECT_FALSE(Shown("cmbActionsNumber"));
             Person::Choose("cmbActionsNode", "SPEAK");
             EXPECT_EQ(Person::Row("LVActions", 0), "1|1-1|SPEAK 1||SPEAK|816|1|1|1");
             ExpectPickersOver(Actions, 0);
             // Its number is above those of its type, of which there are none.
             Click("LVActions", 2);
             EXPECT_EQ(Person::Row("LVActions", 2), "3|3-3|EMPTY||EMPTY|999|1|3|3");
             EXPECT_FALSE(Shown("cmbActionsNode") || Shown(LowBox) || Shown(Dash) || Shown(HighBox));
         },
         {Unavailable("EMPTY")});
}

TEST_F(Lists, RangeBoxesTakeDigitsOnly) {
    Edit(1, [] {
        Person::Press("cmdActionsEdit");
        Click("LVActions", 5);
        EXPECT_EQ(Person::TextBox(LowBox)->text(), "601");
        EXPECT_EQ(Person::TextBox(HighBox)->text(), "660");
        EXPECT_EQ(Person::TextBox(Dash)->text(), "-");
        TypeOver(LowBox, "1*2");
        EXPECT_EQ(Person::Row("LVActions", 5), "6|12-660|CMD 1||CMD|1|1|12|660");
        // Low may exceed high, and leading zeros count.
        TypeOver(HighBox, "a0 0#7");
        EXPECT_EQ(Person::TextBox(HighBox)->text(), "007");
        EXPECT_EQ(Person::Row("LVActions", 5), "6|12-007|CMD 1||CMD|1|1|12|007");
        for (const auto& [box, other, stored] :
             {std::tuple{LowBox, HighBox, "12"}, {HighBox, LowBox, "007"}}) {
            TypeOver(box, "*");
            EXPECT_EQ(Person::TextBox(box)->text(), "");
            EXPECT_EQ(Person::Cell("LVActions", 5, 1), "12-007");
            Person::TextBox(other)->setFocus();
            EXPECT_EQ(Person::TextBox(box)->text(), stored);
            EXPECT_EQ(Person::TextBox(other)->selectedText(), Person::TextBox(other)->text());
        }
        // Emptied and left for another row: neither row changes.
        TypeOver(LowBox, "*");
        Click("LVActions", 0);
        EXPECT_EQ(Person::Row("LVActions", 5), "6|12-007|CMD 1||CMD|1|1|12|007");
        EXPECT_EQ(Person::Row("LVActions", 0), "1|1-1|AUTO 8||AUTO|9|8|1|1");
        TypeOver(HighBox, "77");
        Key(Qt::Key_Escape);
        EXPECT_EQ(Person::Row("LVActions", 0), "1|1-1|AUTO 8|Sales|AUTO|9|8|1|1");
    });
}

TEST_F(Lists, ATypeWithoutNumbersIsNotEdited) {
    Edit(5,
         [] {
             Person::Press("cmdActionsEdit");
             const std::string action = Person::Row("LVActions", 0);
             Click("LVActions", 0);
             EXPECT_EQ(Person::Row("LVActions", 0), action);
             EXPECT_FALSE(Shown("cmbActionsNode") || Shown("cmbActionsNumber") || Shown(LowBox) ||
                          Shown(Dash) || Shown(HighBox));
             EXPECT_EQ(Caption("cmdActionsEdit"), "Edit Off");

             Person::Press("cmdExceptionsEdit");
             const std::string invalid = Person::Row("LVExceptions", 1);
             Click("LVExceptions", 1);
             EXPECT_EQ(Person::Row("LVExceptions", 1), invalid);
             EXPECT_FALSE(Shown("cmbExceptionsInvalidNode") || Shown("cmbExceptionsInvalidNumber"));
         },
         {Unavailable("TABLE"), Unavailable("TABLE")});

    // Without messages their other two types are told under the name of the message type where it is looked
    // up so. There a prompt of such a type is rewritten before its number turns out to be none.
    SetMax("0", 0);
    Edit(12,
         [] {
             Person::Press("cmdActionsEdit");
             for (const int row : {0, 3, 4}) {
                 const std::string before = Person::Row("LVActions", row);
                 Click("LVActions", row);
                 EXPECT_EQ(Person::Row("LVActions", row), before);
             }
             Person::Press("cmdPromptsEdit");
             Click("LVPrompts", 0);
             EXPECT_EQ(Person::Row("LVPrompts", 0), "1|1|M_ON 1||M_ON|817|1");
             Click("LVPrompts", 1);
             EXPECT_EQ(Person::Row("LVPrompts", 1), "2|2|MSG 41|Voice of Müller, menu|MSG|0|41");
             EXPECT_FALSE(Shown("cmbPromptsNode") || Shown("cmbPromptsNumber"));
         },
         {Unavailable("MSG"), Unavailable("MSG"), Unavailable("MSG"), Unavailable("M_ON"),
          Unavailable("MSG")});

    store_.Execute("DELETE FROM SR_Node_Type_can_contain_Node_Type WHERE Set_ID = 6");
    const Box noTypes = Information("Please check the \"Max Number of each Node\" in Partition Settings.");
    Edit(1,
         [] {
             Person::Press("cmdActionsAdd");
             Person::Press("cmdActionsInsert");
             EXPECT_EQ(Person::Count("LVActions"), 9);
             EXPECT_FALSE(Person::Dirty());
         },
         {noTypes, noTypes});
}

TEST_F(Lists, ExceptionsHaveEditorsEach) {
    SetMax("1", 9);
    Edit(11, [] {
        Person::Press("cmdExceptionsEdit");
        EXPECT_FALSE(Person::Button("cmdExceptionsDefault")->isEnabled());
        const std::vector<std::pair<std::string, std::string>> rows{{"Timeout", "CMD 2"},
                                                                    {"Invalid", "CMD 2"},
                                                                    {"Abort", "MSG 1"},
                                                                    {"Star", "NONE"},
                                                                    {"Pound", "NONE"}};
        for (int row = 0; row < 5; ++row) {
            Click("LVExceptions", row);
            for (int other = 0; other < 5; ++other) {
                const std::string name = "cmbExceptions" + rows[static_cast<std::size_t>(other)].first;
                EXPECT_EQ(Shown((name + "Node").c_str()), other == row) << name;
                EXPECT_EQ(Shown((name + "Number").c_str()), other == row && row < 3) << name;
            }
            const auto& [slot, target] = rows[static_cast<std::size_t>(row)];
            EXPECT_EQ(Person::Cell("LVExceptions", row, 2), target);
            EXPECT_EQ(Person::Cell("LVExceptions", row, 3), "");
            ExpectOver(("cmbExceptions" + slot + "Node").c_str(), "LVExceptions", row, 2, 0,
                       row < 3 ? NodeWidth : LoneNodeWidth);
        }
        // Opened, a default row gets the number that a chosen one has.
        EXPECT_EQ(Person::Row("LVExceptions", 4), "5|#|NONE||NONE|814|1");

        Click("LVExceptions", 0);
        TypeOver("cmbExceptionsTimeoutNumber", "25");
        EXPECT_EQ(Person::Row("LVExceptions", 0), "1|Timeout|CMD 2||CMD|1|2");
        Person::Choose("cmbExceptionsTimeoutNode", "NONE");
        EXPECT_EQ(Person::Row("LVExceptions", 0), "1|Timeout|NONE||NONE|814|1");
        ExpectOver("cmbExceptionsTimeoutNode", "LVExceptions", 0, 2, 0, LoneNodeWidth);
        EXPECT_FALSE(Shown("cmbExceptionsTimeoutNumber"));

        Person::Press("cmdExceptionsEdit");
        MarkUnchanged();
        Person::Press("cmdExceptionsDefault");
        EXPECT_EQ(Targets("LVExceptions"), (Strings{"MSG 1", "MSG 1", "MSG 1", "NONE", "NONE"}));
        EXPECT_EQ(Person::Row("LVExceptions", 1), "2|Invalid|MSG 1||MSG|0|1");
        EXPECT_EQ(Person::Row("LVExceptions", 3), "4|*|NONE||NONE|814|0");
        EXPECT_TRUE(Selected("LVExceptions").empty());
        EXPECT_TRUE(Person::Dirty());
        // Without a selected row only the mode changes.
        Person::Press("cmdExceptionsEdit");
        EXPECT_EQ(Caption("cmdExceptionsEdit"), "Edit Off");
        EXPECT_FALSE(Shown("cmbExceptionsTimeoutNode"));
    });
}

TEST_F(Lists, EscapeTakesTheRowBackAndEnterAcceptsIt) {
    Edit(1, [] {
        for (const Names& names : {Prompts, Actions, Timeout}) {
            SCOPED_TRACE(names.list);
            const std::string before = Person::Row(names.list, 2);
            const bool exceptions = names.list == std::string("LVExceptions");
            const char* node = exceptions ? "cmbExceptionsAbortNode" : names.node;
            const char* number = exceptions ? "cmbExceptionsAbortNumber" : names.number;
            Person::Press(names.edit);
            for (const char* leftFrom : {node, number}) {
                Click(names.list, 2);
                Person::Choose(node, "TIME");
                Person::Choose(number, "7");
                EXPECT_EQ(Person::Cell(names.list, 2, 2), "TIME 7");
                Control(leftFrom)->setFocus();
                Key(Qt::Key_Escape);
                EXPECT_EQ(Person::Row(names.list, 2), before);
                EXPECT_FALSE(Shown(node) || Shown(number));
                EXPECT_EQ(Caption(names.edit), "Edit Off");
                EXPECT_EQ(Focused(), names.list);
            }
            // From the list, Enter opens the row again.
            Key(Qt::Key_Return);
            Person::Choose(node, "LIST");
            Control(number)->setFocus();
            Key(Qt::Key_Enter);
            EXPECT_EQ(Person::Cell(names.list, 2, 4), "LIST");
            EXPECT_FALSE(Shown(node) || Shown(number));
            EXPECT_EQ(Caption(names.edit), "Edit Off");
            EXPECT_EQ(Focused(), names.list);
            Key(Qt::Key_Escape);
            EXPECT_EQ(Caption(names.edit), "Edit");
        }
        // With the focus on the button that ends edit mode, Enter must not press another.
        Click("LVActions", 0);
        Person::Press("cmdActionsEdit");
        Person::Button("cmdActionsEdit")->setFocus();
        Key(Qt::Key_Return);
        ASSERT_TRUE(Person::Window("GUI")->isVisible());
    });
}

TEST_F(Lists, ARowIsEditedFromTheKeyboardAlone) {
    Edit(1, [] {
        Person::List("LVActions")->setFocus();
        Key(Qt::Key_Home);
        Key(Qt::Key_Down);
        EXPECT_EQ(Selected("LVActions"), std::vector{1});
        for (int presses = 0; presses < 40 && Focused() != "cmdActionsEdit"; ++presses) {
            Key(Qt::Key_Tab);
        }
        Key(Qt::Key_Space);
        Strings stops;
        for (int stop = 0; stop < 4; ++stop) {
            stops.push_back(Focused());
            Key(Qt::Key_Tab);
        }
        EXPECT_EQ(stops, (Strings{LowBox, HighBox, "cmbActionsNode", "cmbActionsNumber"}));
        Key(Qt::Key_Tab, Qt::ShiftModifier);
        EXPECT_EQ(Focused(), "cmbActionsNumber");
        QTest::keyClicks(QApplication::focusWidget(), "4");
        Key(Qt::Key_Tab, Qt::ShiftModifier);
        // A letter chooses a type.
        Key(Qt::Key_X);
        Key(Qt::Key_Tab, Qt::ShiftModifier);
        QTest::keyClicks(QApplication::focusWidget(), "29");
        Key(Qt::Key_Return);
        EXPECT_EQ(Person::Row("LVActions", 1), "2|2-29|XFER 4||XFER|4|4|2|29");
        Key(Qt::Key_Down);
        EXPECT_EQ(Focused(), LowBox);
        ExpectRangeBoxesOver(2);
        Key(Qt::Key_Escape);
        Key(Qt::Key_Escape);
        EXPECT_EQ(Caption("cmdActionsEdit"), "Edit");
        EXPECT_TRUE(Person::Window("GUI")->isVisible());
    });
}

// No store leads there: what a type without a stored limit gets depends on the type alone, and this one gets
// numbers.
TEST(ListsWithoutStore, OnlyAnInvalidEntryShowsANumberOfACommandThatHasNone) {
    const ComponentFactory components;
    EditorWindow window(components);
    GUI& gui = window.Form();
    gui.CreateNodeLists();
    gui.Lists().NodeNameCollection.Add("MSG", "0");
    gui.Lists().NodeNameCollection.Add("SPEAK", "816");
    gui.Lists().MaxNodeNumberCollection.Add(9, "0");
    gui.Lists().MaxNodeNumberCollection.Add(0, "816");
    gui.ResetExceptionsListView();
    for (const ExceptionRule& exception : ExceptionRules) {
        gui.NodePicker(exception.slot)->AddItems({{"MSG", 0}, {"SPEAK", 816}});
        gui.LVExceptions->Append(
            {RowAt(gui.LVExceptions->Count() + 1, exception.label, "MSG 2", {"MSG", "0", "2"})});
    }
    gui.show();
    Person::Press("cmdExceptionsEdit");
    for (int row = 0; row < 5; ++row) {
        Click("LVExceptions", row);
        const std::string slot = RuleOf(ExceptionRules.at(static_cast<std::size_t>(row)).slot).nodePicker;
        Person::Choose(slot.c_str(), "SPEAK");
        EXPECT_EQ(Person::Cell("LVExceptions", row, 2), "SPEAK 1");
        EXPECT_EQ(Person::Text((slot.substr(0, slot.size() - 4) + "Number").c_str()), row == 1 ? "1" : "")
            << slot;
    }
}

} // namespace
} // namespace KAL_AUTO_Node
