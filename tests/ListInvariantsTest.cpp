#include "Person.h"
#include "TestStore.h"

#include <QDeadlineTimer>

#include <array>
#include <cstdlib>
#include <map>
#include <random>

namespace KAL_AUTO_Node {
namespace {

using Strings = std::vector<std::string>;

enum Kind { P, A, E, None };

const Strings Kinds{"Prompts", "Actions", "Exceptions"};
const Strings Exceptions{"Timeout", "Invalid", "Abort", "Star", "Pound"};

// Of the types used here, as the test limits them.
struct Type {
    int id;
    int last; // the highest number
};

const std::map<std::string, Type> Types{
    {"MSG", {0, 9}},    {"TIME", {2, 3}},      {"HOLD", {5, 0}},   {"LIST", {8, 0}},   {"AUTO", {9, 40}},
    {"TABLE", {13, 0}}, {"SPEAK", {816, 999}}, {"M_ON", {817, 9}}, {"NONE", {814, 0}}, {"EMPTY", {999, 0}}};
const std::array<Strings, 3> Chosen{Strings{"MSG", "TIME", "SPEAK"}, Strings{"MSG", "TIME", "HOLD", "EMPTY"},
                                    Strings{"MSG", "TIME", "AUTO", "NONE"}};

struct Row {
    std::string name;
    std::string number;
    std::string label;
    std::string lead; // range or exception

    [[nodiscard]] bool Numberless() const { return name == "EMPTY" || name == "NONE"; }
};

// Uses one window at random and keeps an account of its own of what has to come of it.
class RandomPerson {
  public:
    RandomPerson(Person& person, unsigned seed) : person_(person), random_(seed) {
        for (const Kind list : {P, A, E}) {
            for (int row = 0; row < Person::Count(List(list)); ++row) {
                const auto cell = [&](int column) { return Person::Cell(List(list), row, column); };
                rows_[list].push_back({cell(4), cell(6), cell(3), list == P ? "" : cell(1)});
            }
        }
    }

    void Step() {
        using Deed = void (RandomPerson::*)(Kind);
        using This = RandomPerson;
        static const std::vector<Deed> browsing{&This::PressButton, &This::PressButton, &This::PressButton,
                                                &This::PressKey,    &This::Point,       &This::Point};
        static const std::vector<Deed> editing{&This::ChooseType, &This::ChooseNumber, &This::ChooseNumber,
                                               &This::CloseEditors};
        Person::MarkUnchanged();
        changed_ = false;
        selected_.reset();
        const auto list = editing_ != None && Below(2) == 0 ? editing_ : static_cast<Kind>(Below(3));
        (this->*OneOf(open_ >= 0 && Below(2) == 0 ? editing : browsing))(list);
    }

    void Check() {
        for (const Kind list : {P, A, E}) {
            ASSERT_EQ(Person::Count(List(list)), Size(list)) << List(list);
            for (int row = 0; row < Size(list); ++row) {
                const Row& is = At(list, row);
                const std::string position = std::to_string(row + 1);
                std::string range = list == A ? "|" + is.lead : "";
                std::ranges::replace(range, '-', '|');
                ASSERT_EQ(Person::Row(List(list), row),
                          position + "|" + (list == P ? position : is.lead) + "|" + is.name +
                              (is.Numberless() ? "" : " " + is.number) + "|" + is.label + "|" + is.name +
                              "|" + std::to_string(Types.at(is.name).id) + "|" + is.number + range);
                ASSERT_EQ(Person::Key(List(list), row), position + "a");
            }
            ASSERT_EQ(Person::Caption(Button(list, "Edit")), editing_ == list ? "Edit Off" : "Edit");
            ASSERT_TRUE(list == E ||
                        Person::Button("cmdQuick" + Kinds[list])->isEnabled() != (editing_ == list));
        }
        if (selected_) {
            ASSERT_EQ(Person::SelectedRows(List(selected_->first)), selected_->second);
        }
        ASSERT_EQ(Person::Dirty(), changed_);
        ASSERT_EQ(person_.Boxes(), std::exchange(boxes_, {}));
        CheckEditors();
    }

  private:
    static std::string List(Kind list) { return "LV" + Kinds[list]; }

    static std::string Button(Kind list, const std::string& action) { return "cmd" + Kinds[list] + action; }

    int Below(int end) { return static_cast<int>(random_() % static_cast<unsigned>(end)); }

    template <class Item>
    Item OneOf(const std::vector<Item>& items) {
        return items[static_cast<std::size_t>(Below(static_cast<int>(items.size())))];
    }

    [[nodiscard]] int Size(Kind list) const { return static_cast<int>(rows_[list].size()); }

    static int Current(Kind list) { return Person::List(List(list))->currentIndex().row(); }

    Row& At(Kind list, int row) { return rows_[list].at(static_cast<std::size_t>(row)); }

    // Edit mode of a list ends when the focus goes to another.
    void Focus(Kind list) {
        if (editing_ != None && editing_ != list) {
            editing_ = None;
            open_ = -1;
            changed_ = true;
        }
    }

    [[nodiscard]] std::string Editor(const std::string& kind) const {
        return "cmb" + Kinds[editing_] + (editing_ == E ? Exceptions[static_cast<std::size_t>(open_)] : "") +
               kind;
    }

    void CheckEditors() {
        std::set<std::string> open;
        if (open_ >= 0) {
            const Row& row = At(editing_, open_);
            const QTreeView* view = Person::List(List(editing_));
            const QWidget* node = Person::Combo(Editor("Node"));
            const QPoint place = node->mapToGlobal(node->rect().center());
            ASSERT_EQ(view->indexAt(view->viewport()->mapFromGlobal(place)).row(), open_);
            ASSERT_EQ(Current(editing_), open_) << "the editors would write to another row";
            ASSERT_EQ(node->width(), row.Numberless() ? 111 : 65);
            ASSERT_EQ(Person::Text(Editor("Node")), row.name);
            if (Types.at(row.name).last > 0) {
                ASSERT_EQ(Person::Text(Editor("Number")), refused_.empty() ? row.number : refused_);
            }
            open.insert(Editor("Node"));
            if (!row.Numberless()) {
                open.insert(Editor("Number"));
            }
            if (editing_ == A) {
                open.insert({"txtActionsDTMFRangeLow", "txtActionsDash", "txtActionsDTMFRangeHigh"});
            }
        }
        ASSERT_EQ(Person::OpenEditors(), open);
    }

    // Prompts and exceptions take a number only while the row is highlighted, too.
    bool TakesNumber() {
        return editing_ == A || std::ranges::count(Person::SelectedRows(List(editing_)), open_) > 0;
    }

    void TakeType(const std::string& name) {
        Row& row = At(editing_, open_);
        refused_.clear();
        row.name = name;
        if (row.Numberless() || std::stoi(row.number) > Types.at(name).last) {
            row.number = "1";
        }
        if (name != "EMPTY") {
            row.label.clear();
        }
    }

    void Open(int row) {
        open_ = row;
        refused_.clear();
        before_ = At(editing_, row);
        const bool available = before_.name != "TABLE" && before_.name != "LIST";
        if (available && (editing_ != P || before_.name != "EMPTY")) {
            TakeType(before_.name);
        }
        const bool numbered = std::stoi(At(editing_, row).number) <= Types.at(before_.name).last;
        if (!available || (!numbered && (editing_ == A || !before_.Numberless()))) {
            boxes_.push_back(Information("Please check the \"Max Number of each Node\" Section for " +
                                         before_.name + " Node in Partition Settings."));
            open_ = -1;
        }
    }

    void ChooseType(Kind /*list*/) {
        const std::string name = OneOf(Chosen[editing_]);
        Person::Choose(Editor("Node"), name);
        TakeType(name);
    }

    void ChooseNumber(Kind /*list*/) {
        Row& row = At(editing_, open_);
        if (const int last = Types.at(row.name).last; last > 0) {
            const std::string number = std::to_string(Below(last) + 1);
            Person::Choose(Editor("Number"), number);
            refused_ = TakesNumber() ? "" : number;
            row.number = TakesNumber() ? number : row.number;
        }
    }

    void CloseEditors(Kind /*list*/) {
        const Qt::Key key = OneOf(std::vector{Qt::Key_Return, Qt::Key_Escape});
        Person::Combo(Editor("Node"))->setFocus();
        QTest::keyClick(Person::Combo(Editor("Node")), key);
        if (key == Qt::Key_Escape) {
            At(editing_, open_) = before_;
        }
        open_ = -1;
    }

    void Selected(Kind list, int row) { selected_ = {list, {row}}; }

    // A new message before a row, or at the end.
    void Make(Kind list, int row) {
        if (list == P && rows_[P].front().name == "EMPTY") {
            rows_[P].clear();
            row = 0;
        }
        const std::string digits = std::to_string(row + 1);
        rows_[list].insert(rows_[list].begin() + row,
                           {"MSG", "1", "", list == A ? digits + "-" + digits : ""});
        Selected(list, row);
    }

    void Remove(Kind list, const std::vector<int>& selected) {
        for (auto row = selected.rbegin(); row != selected.rend(); ++row) {
            rows_[list].erase(rows_[list].begin() + *row);
        }
        if (list == P && rows_[P].empty()) {
            rows_[P].push_back({"EMPTY", "1", "", ""});
        }
        if (!selected.empty()) {
            changed_ = true;
            // The editors stay on a row that is left and is the selected item afterwards.
            const bool run = selected.back() - selected.front() == static_cast<int>(selected.size()) - 1;
            const bool left = run && (open_ < selected.front() || open_ > selected.back());
            const int place = open_ > selected.back() ? open_ - static_cast<int>(selected.size()) : open_;
            const int next = selected.size() == 1 ? selected.front() : 0;
            open_ = left && place == std::min(next, Size(list) - 1) ? place : -1;
            if (Size(list) > 0) {
                Selected(list, std::min(next, Size(list) - 1));
            }
        }
    }

    void PressButton(Kind list) {
        const std::string action =
            OneOf(list == E ? Strings{"Edit", "Default"}
                            : Strings{"Edit", "Add", "Insert", "Remove", "Up", "Down"});
        const std::vector<int> selected = Person::SelectedRows(List(list));
        const bool one = selected.size() == 1;
        Person::Press(Button(list, action));
        if (editing_ == list && action != "Edit") {
            return;
        }
        Focus(list);
        changed_ = changed_ || (action != "Remove" && (action != "Insert" || list == A || one));
        if (action == "Edit") {
            editing_ = editing_ == list ? None : list;
            open_ = -1;
            if (const int row = Current(list); editing_ == list && row >= 0) {
                Open(row);
            }
        } else if (action == "Default") {
            for (Row& row : rows_[E]) {
                row = &row < &rows_[E][3] ? Row{"MSG", "1", "", row.lead} : Row{"NONE", "0", "", row.lead};
            }
        } else if (action == "Add" || (action == "Insert" && (list == A || one))) {
            Make(list, action == "Insert" && one ? selected.front() : Size(list));
        } else if (action == "Remove") {
            Remove(list, selected);
        } else if (one && action != "Insert") {
            const int to = selected.front() + (action == "Up" ? -1 : 1);
            std::swap(At(list, selected.front()), At(list, std::clamp(to, 0, Size(list) - 1)));
            Selected(list, std::clamp(to, 0, Size(list) - 1));
        }
    }

    void PressKey(Kind list) {
        const Qt::Key key = OneOf(std::vector{Qt::Key_A, Qt::Key_Delete});
        const std::vector<int> selected = Person::SelectedRows(List(list));
        Person::List(List(list))->setFocus();
        QTest::keyClick(Person::List(List(list)), key,
                        key == Qt::Key_A ? Qt::ControlModifier : Qt::NoModifier);
        Focus(list);
        if (list != E && key == Qt::Key_Delete) {
            Remove(list, selected);
        } else if (list != E && editing_ != list) {
            EXPECT_EQ(static_cast<int>(Person::SelectedRows(List(list)).size()), Size(list));
        }
    }

    // Clicks a row, or makes it the selected item in a way that is no click.
    void Point(Kind list) {
        if (Size(list) < 2) {
            return;
        }
        const int row = Below(Size(list));
        const std::string way = OneOf(Strings{"click", "click", "control", "right", "drag"});
        if (way == "drag") {
            Person::DragRow(List(list), row > 0 ? row - 1 : 1, row);
        } else {
            Person::ClickRow(List(list), row, way == "control" ? Qt::ControlModifier : Qt::NoModifier,
                             way == "right" ? Qt::RightButton : Qt::LeftButton);
        }
        Focus(list);
        if (editing_ == list && (way == "click" || way == "control")) {
            Open(row);
        } else if (editing_ == list && (way == "drag" || row != open_)) {
            open_ = -1;
        }
    }

    Person& person_;
    std::mt19937 random_;
    std::array<std::vector<Row>, 3> rows_;
    Kind editing_ = None;
    int open_ = -1;        // the row under the editors
    std::string refused_;  // the number in their box, where the row did not take it
    Row before_;           // as it was when they were opened
    bool changed_ = false; // by the last operation
    std::optional<std::pair<Kind, std::vector<int>>> selected_; // by it, and that alone
    std::vector<Box> boxes_;
};

TEST(ListInvariants, HoldInAnyOrderOfOperations) {
    const char* given = std::getenv("KAL_TEST_SEED");
    const unsigned long seed = given != nullptr ? std::strtoul(given, nullptr, 10) : std::random_device()();
    const TestStore store;
    store.Execute(
        "UPDATE Node_Type_Max SET Max_Number = CASE NodeType_ID WHEN 0 THEN 9 WHEN 2 THEN 3 ELSE 0 END"
        " WHERE PartitionID = 2 AND NodeType_ID IN (0, 2, 8);"
        "DELETE FROM Node_Type_Max WHERE PartitionID = 2 AND NodeType_ID = 5;"
        "INSERT INTO Detail_AUTO_Prompts (ConfigID, PartID, NodeMasterID, SequenceNo, NodeTypeID,"
        " NodeType, NodeNumber) VALUES (1, 2, 5, 2, 8, 'LIST', 3), (1, 2, 5, 3, 817, 'M_ON', 2)");
    Person person;
    EXPECT_TRUE(person.Edit(5, [&] {
        RandomPerson random(person, static_cast<unsigned>(seed));
        const QDeadlineTimer limit(4000);
        for (int deed = 0; deed < 800 && !limit.hasExpired() && !HasFailure(); ++deed) {
            // Where no window manager brings it back to the front when a message box has closed.
            Person::Window("GUI")->activateWindow();
            Person::WaitForFocus();
            random.Step();
            SCOPED_TRACE("KAL_TEST_SEED=" + std::to_string(seed) + ", deed " + std::to_string(deed));
            random.Check();
        }
    }));
}

} // namespace
} // namespace KAL_AUTO_Node
