#pragma once

#include "Person.h"

#include <array>
#include <map>
#include <random>

namespace KAL_AUTO_Node {

using Strings = std::vector<std::string>;

enum Kind { P, A, E, None };

inline const Strings Kinds{"Prompts", "Actions", "Exceptions"};
inline const std::string LowBox = "txtActionsDTMFRangeLow";
inline const Strings Exceptions{"Timeout", "Invalid", "Abort", "Star", "Pound"};

// Of the types used here, as the test limits them.
struct Type {
    int id;
    int last; // the highest number
};

inline const std::map<std::string, Type> Types{
    {"MSG", {0, 9}},    {"TIME", {2, 3}},      {"HOLD", {5, 0}},   {"LIST", {8, 0}},   {"AUTO", {9, 40}},
    {"TABLE", {13, 0}}, {"SPEAK", {816, 999}}, {"M_ON", {817, 9}}, {"NONE", {814, 0}}, {"EMPTY", {999, 0}}};
inline const std::array<Strings, 3> Chosen{Strings{"MSG", "TIME", "SPEAK", "EMPTY"},
                                           Strings{"MSG", "TIME", "HOLD", "EMPTY"},
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
        focus_.clear();
        marked_.reset();
        const auto list = editing_ != None && Below(2) == 0 ? editing_ : static_cast<Kind>(Below(3));
        (this->*OneOf(open_ >= 0 && Below(2) == 0 ? editing : browsing))(list);
    }

    // What the last operation was.
    [[nodiscard]] const std::string& Last() const { return last_; }

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
        if (boxes_.empty() && !focus_.empty()) {
            ASSERT_EQ(Person::Focused(), focus_);
        }
        if (open_ >= 0 && editing_ == A && marked_) {
            const QLineEdit* low = Person::TextBox(LowBox);
            ASSERT_EQ(low->selectedText(), *marked_ ? low->text() : "");
            ASSERT_EQ(low->cursorPosition(), low->text().size());
        }
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
            open_ = begun_ = -1;
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
            ASSERT_EQ(Person::SelectedRows(List(editing_)), std::vector{open_});
            ASSERT_EQ(node->width(), row.Numberless() ? 111 : 65);
            ASSERT_EQ(Person::Text(Editor("Node")), row.name);
            if (Types.at(row.name).last > 0) {
                ASSERT_EQ(Person::Text(Editor("Number")), row.number);
            }
            open.insert(Editor("Node"));
            if (!row.Numberless()) {
                open.insert(Editor("Number"));
            }
            if (editing_ == A) {
                open.insert({LowBox, "txtActionsDash", "txtActionsDTMFRangeHigh"});
            }
        }
        ASSERT_EQ(Person::OpenEditors(), open);
    }

    void TakeType(const std::string& name) {
        Row& row = At(editing_, open_);
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
        if (begun_ != row) {
            begun_ = row;
            before_ = At(editing_, row);
        }
        const Row was = At(editing_, row);
        const bool available = was.name != "TABLE" && was.name != "LIST";
        if (available && (editing_ != P || was.name != "EMPTY")) {
            TakeType(was.name);
        }
        const bool numbered = std::stoi(At(editing_, row).number) <= Types.at(was.name).last;
        focus_ = editing_ == A ? LowBox : Editor("Node");
        if (!available || (!numbered && (editing_ == A || !was.Numberless()))) {
            boxes_.push_back(Information("Please check the \"Max Number of each Node\" Section for " +
                                         was.name + " Node in Partition Settings."));
            open_ = -1;
        }
    }

    void ChooseType(Kind /*list*/) {
        const std::string name = OneOf(Chosen[editing_]);
        const std::string was = At(editing_, open_).name;
        if (editing_ == P && name == "EMPTY" && was != name) {
            Vacate(was);
            return;
        }
        Person::Choose(Editor("Node"), name);
        if (editing_ != P || name != "EMPTY") {
            TakeType(name);
        }
    }

    // Asks first.
    void Vacate(const std::string& was) {
        const auto answer = OneOf(std::vector{QMessageBox::Yes, QMessageBox::No});
        person_.WillAnswer({answer});
        Person::Choose(Editor("Node"), "EMPTY");
        boxes_.push_back({"Confirmation", "Do you want to vacate Prompts Table?", QMessageBox::Question,
                          QMessageBox::Yes | QMessageBox::No});
        if (answer == QMessageBox::Yes) {
            rows_[P] = {{"EMPTY", "1", "", ""}};
            open_ = begun_ = -1;
        } else {
            TakeType(was);
        }
    }

    void ChooseNumber(Kind /*list*/) {
        Row& row = At(editing_, open_);
        if (const int last = Types.at(row.name).last; last > 0) {
            const std::string number = std::to_string(Below(last) + 1);
            if (Below(2) == 0) {
                Person::Choose(Editor("Number"), number);
            } else {
                // As assistive technology does; what is not offered is corrected.
                Person::Combo(Editor("Number"))->lineEdit()->setText(QString::fromStdString(number + "x"));
            }
            row.number = number;
        }
    }

    void CloseEditors(Kind /*list*/) {
        const Qt::Key key = OneOf(std::vector{Qt::Key_Return, Qt::Key_Escape});
        Person::Combo(Editor("Node"))->setFocus();
        QTest::keyClick(Person::Combo(Editor("Node")), key);
        if (key == Qt::Key_Escape) {
            At(editing_, open_) = before_;
        }
        open_ = begun_ = -1;
        focus_ = List(editing_);
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
            // In edit mode it is one row, and the one under the editors where they are open.
            if (editing_ == list) {
                open_ = -1;
                begun_ = begun_ == selected.front() ? -1 : begun_ - (begun_ > selected.front() ? 1 : 0);
            }
            const int next = selected.size() == 1 ? selected.front() : 0;
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
        last_ = Button(list, action);
        Person::Press(last_);
        if (editing_ == list && action != "Edit") {
            return;
        }
        Focus(list);
        changed_ = changed_ || (action != "Remove" && (action != "Insert" || list == A || one));
        if (action == "Edit") {
            if (editing_ == list) {
                editing_ = None;
                open_ = begun_ = -1;
                focus_ = Button(list, action);
            } else {
                BeginEditing(list);
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

    void BeginEditing(Kind list) {
        editing_ = list;
        if (const int row = Current(list); row >= 0) {
            Open(row);
            marked_ = true;
        }
    }

    void PressKey(Kind list) {
        const Qt::Key key =
            OneOf(std::vector{Qt::Key_A, Qt::Key_Delete, Qt::Key_Return, Qt::Key_Enter, Qt::Key_F2});
        const std::vector<int> selected = Person::SelectedRows(List(list));
        last_ = List(list) + QKeySequence(key).toString().toStdString();
        Person::List(List(list))->setFocus();
        QTest::keyClick(Person::List(List(list)), key,
                        key == Qt::Key_A ? Qt::ControlModifier : Qt::NoModifier);
        Focus(list);
        if (key == Qt::Key_Delete) {
            if (list != E) {
                Remove(list, selected);
            }
        } else if (key == Qt::Key_A) {
            const bool all = list != E && editing_ != list;
            EXPECT_EQ(Person::SelectedRows(List(list)).size(),
                      all ? static_cast<std::size_t>(Size(list)) : selected.size());
        } else if (Current(list) >= 0) {
            changed_ = changed_ || editing_ != list;
            BeginEditing(list);
        }
    }

    // Clicks a row, or makes it the selected item in a way that is no click.
    void Point(Kind list) {
        if (Size(list) < 2) {
            return;
        }
        const int row = Below(Size(list));
        const std::string way =
            OneOf(Strings{"click", "click", "double", "beside", "control", "right", "drag"});
        last_ = List(list) + " " + way + " " + std::to_string(row);
        if (way == "beside") {
            QWidget* rows = Person::List(List(list))->viewport();
            const QPoint place(5, rows->height() - 2);
            if (!Person::List(List(list))->indexAt(place).isValid()) {
                QTest::mouseClick(rows, Qt::LeftButton, {}, place);
                Focus(list);
            }
            return;
        }
        if (way == "drag") {
            Person::DragRow(List(list), row > 0 ? row - 1 : 1, row);
        } else {
            Person::ClickRow(List(list), row, way == "control" ? Qt::ControlModifier : Qt::NoModifier,
                             way == "right" ? Qt::RightButton : Qt::LeftButton);
        }
        Focus(list);
        if (way == "double") {
            if (editing_ == list) {
                Open(row); // by its first click
            }
            QWidget* rows = Person::List(List(list))->viewport();
            QTest::mouseDClick(rows, Qt::LeftButton, {}, Person::InRow(List(list), row));
            QTest::mouseRelease(rows, Qt::LeftButton, {}, Person::InRow(List(list), row));
            changed_ = changed_ || editing_ != list;
            editing_ = list;
            Open(row);
            marked_ = false;
        } else if (editing_ == list && (way == "click" || way == "control")) {
            Open(row);
            marked_ = false;
        } else if (editing_ == list && (way == "drag" || row != open_)) {
            open_ = -1;
        }
    }

    Person& person_;
    std::mt19937 random_;
    std::array<std::vector<Row>, 3> rows_;
    Kind editing_ = None;
    int open_ = -1;                                             // the row under the editors
    int begun_ = -1;                                            // the row that Escape takes back,
    Row before_;                                                // and as what
    std::string focus_;                                         // where the last operation put it
    std::optional<bool> marked_;                                // whether it selected the low box's text
    bool changed_ = false;                                      // by the last operation
    std::optional<std::pair<Kind, std::vector<int>>> selected_; // by it, and that alone
    std::vector<Box> boxes_;
    std::string last_;
};

} // namespace KAL_AUTO_Node
