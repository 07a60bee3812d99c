#include "testing/Person.h"

#include <random>

namespace KAL_AUTO_Node {
namespace {

const Texts Kinds{"Prompts", "Actions", "Exceptions"};

// Uses one window at random.
class RandomPerson {
  public:
    explicit RandomPerson(unsigned seed) : random_(seed) {}

    void Step() {
        const std::string list = OneOf(Kinds);
        const std::string view = "LV" + list;
        auto open = Person::OpenEditors();
        open.erase("txtActionsDash"); // takes no focus
        switch (const int deed = Below(8)) {
        case 0:
        case 1:
            return Press("cmd" + list +
                         OneOf(list == "Exceptions"
                                   ? Texts{"Edit", "Default"}
                                   : Texts{"Edit", "Add", "Insert", "Remove", "Up", "Down"}));
        case 2:
            return Key(view, OneOf(std::vector{Qt::Key_Delete, Qt::Key_Return, Qt::Key_F2, Qt::Key_End}), {});
        case 3:
            return Key(view, OneOf(std::vector{Qt::Key_A, Qt::Key_C, Qt::Key_X, Qt::Key_V, Qt::Key_V}),
                       Qt::ControlModifier);
        case 4:
            return Undo(view, Below(3) > 0);
        case 5:
            if (list != "Exceptions" && Person::Button("cmdQuick" + list)->isEnabled()) {
                return Quick(list);
            }
            [[fallthrough]];
        default:
            if (deed > 5 && !open.empty()) {
                return UseEditor(OneOf(Texts(open.begin(), open.end())));
            }
            if (const int rows = Person::Count(view); rows > 0 && Below(4) == 0) {
                last_ = view + " dragged";
                Person::DragRow(view, Below(rows), view, Below(rows));
            } else if (rows > 0) {
                last_ = view + " clicked";
                Person::ClickRow(view, Below(rows),
                                 OneOf(std::vector{Qt::NoModifier, Qt::ControlModifier, Qt::ShiftModifier}),
                                 Below(5) == 0 ? Qt::RightButton : Qt::LeftButton);
            }
        }
    }

    void Undo(const std::string& view, bool undo) {
        Key(view, Qt::Key_Z, undo ? Qt::ControlModifier : Qt::ControlModifier | Qt::ShiftModifier);
    }

    [[nodiscard]] const std::string& Last() const { return last_; }

  private:
    int Below(int end) { return static_cast<int>(random_() % static_cast<unsigned>(end)); }

    template <class Item>
    Item OneOf(const std::vector<Item>& items) {
        return items[static_cast<std::size_t>(Below(static_cast<int>(items.size())))];
    }

    void Press(const std::string& button) {
        last_ = button;
        Person::Press(button);
    }

    void Key(const std::string& control, Qt::Key key, Qt::KeyboardModifiers with) {
        last_ = control + ' ' + QKeySequence(key | with).toString().toStdString();
        auto* widget = Person::Find<QWidget>(control);
        widget->setFocus();
        QTest::keyClick(widget, key, with);
    }

    void UseEditor(const std::string& editor) {
        last_ = editor;
        if (Below(4) == 0) {
            Key(editor, OneOf(std::vector{Qt::Key_Return, Qt::Key_Escape}), {});
        } else if (editor.starts_with("txt")) {
            Person::TypeOver(editor, OneOf(Texts{"7", "007", "1*2 a", "*"}));
        } else if (const int entries = Person::Combo(editor)->count(); entries > 0) {
            Person::Choose(editor, Person::Combo(editor)->itemText(Below(entries)).toStdString());
        }
    }

    void Quick(const std::string& list) {
        last_ = "cmdQuick" + list;
        Person::InQuickAssign(last_, [&] {
            Person::Combo("cmbFrom")->setCurrentIndex(Below(3));
            Person::Combo("cmbTo")->setCurrentIndex(Below(3));
            Person::Press(OneOf(Texts{"cmdAdd", "cmdRemove"}));
        });
    }

    std::mt19937 random_;
    std::string last_;
};

std::vector<Texts> AllRows() {
    return {Person::Rows("LVPrompts"), Person::Rows("LVActions"), Person::Rows("LVExceptions")};
}

// What holds of every list, however it came about.
void Check() {
    Texts editing;
    for (const std::string& list : Kinds) {
        const std::string view = "LV" + list;
        int before = 0;
        const auto* model = Person::List(view)->model();
        for (int row = 0; row < model->rowCount(); ++row) {
            const auto cell = [&](int column) {
                return model->index(row, column).data().toString().toStdString();
            };
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
        if (editor.ends_with("Node")) {
            EXPECT_EQ(Person::Text(editor), Person::Cell(view, row, 4));
        }
    }
}

// From nodes whose stored rows have gaps, and with types that cannot be edited.
TEST(ListInvariants, HoldInAnyOrderOfOperations) {
    const char* given = std::getenv("KAL_TEST_SEED");
    const unsigned long seed = given != nullptr ? std::strtoul(given, nullptr, 10) : std::random_device()();
    const TestStore store;
    store.Execute(
        "UPDATE Detail_AUTO_Action SET SequenceNo = SequenceNo * 1000 WHERE NodeMasterID IN (5, 8)");
    Person person;
    for (const int node : {15, 5, 8}) {
        EXPECT_TRUE(person.Edit(node, [&] {
            RandomPerson random(static_cast<unsigned>(seed));
            const auto first = AllRows();
            for (int deed = 0; deed < Rounds(250) && !testing::Test::HasFailure(); ++deed) {
                // Where no window manager brings it back to the front when a message box has closed.
                const auto activate = [] {
                    Person::Window("GUI")->activateWindow();
                    Person::WaitForFocus();
                };
                activate();
                const auto rows = AllRows();
                Person::MarkUnchanged();
                random.Step();
                SCOPED_TRACE("KAL_TEST_SEED=" + std::to_string(seed) + ", node " + std::to_string(node) +
                             ", deed " + std::to_string(deed) + ", last " + random.Last());
                Check();
                const auto left = AllRows();
                for (std::size_t list = 0; list < rows.size(); ++list) {
                    EXPECT_TRUE(left[list].size() == rows[list].size() || Person::Dirty());
                }
                for (const Box& box : person.Boxes()) {
                    EXPECT_TRUE(box.text.starts_with("Please check the") ||
                                box.text.starts_with("Do you want to vacate") ||
                                box.text.ends_with(" to paste.") ||
                                box.text.ends_with(". Nothing was pasted."))
                        << box.text;
                }
                if (deed % 100 == 30) {
                    activate();
                    const auto all = [&](bool undo) {
                        for (int i = 0; i < 100; ++i) {
                            random.Undo("LVActions", undo);
                        }
                        return AllRows();
                    };
                    const auto latest = all(false);
                    EXPECT_TRUE(all(true) == first || deed > 30);
                    EXPECT_EQ(all(false), latest);
                }
            }
        }));
    }
}

} // namespace
} // namespace KAL_AUTO_Node
