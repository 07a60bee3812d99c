#pragma once

#include "ExpectedLists.h"

#include <numeric>
#include <random>

namespace KAL_AUTO_Node {

// Uses one window at random and keeps an account of its own of what has to come of it.
class RandomPerson : public ExpectedLists {
  public:
    RandomPerson(Person& person, unsigned seed) : ExpectedLists(person), random_(seed) {}

    void Step() {
        using Deed = void (RandomPerson::*)(Kind);
        using This = RandomPerson;
        static const std::vector<Deed> browsing{&This::PressButton, &This::PressButton,  &This::PressButton,
                                                &This::PressKey,    &This::Point,        &This::Point,
                                                &This::QuickAssign, &This::CopyAndPaste, &This::Undo};
        static const std::vector<Deed> editing{&This::ChooseType, &This::ChooseNumber, &This::TypeRange,
                                               &This::CloseEditors};
        Person::MarkUnchanged();
        changed_ = false;
        selected_.reset();
        focus_.clear();
        marked_.reset();
        const auto list = editing_ != None && Below(2) == 0 ? editing_ : static_cast<Kind>(Below(3));
        const Deed deed = OneOf(open_ >= 0 && Below(2) == 0 ? editing : browsing);
        const Account::Rows before = rows_;
        (this->*deed)(list);
        if (deed != &This::Undo) {
            const bool inRow = deed == &This::CloseEditors ||
                               (begun_ >= 0 && rows_[editing_].size() == before[editing_].size());
            account_.NoteDeed(before, inRow ? session_ : 0);
        }
    }

    // Takes everything back, or does it again.
    void RestoreAll(bool undo) {
        while (account_.CanRestore(undo) && !testing::Test::HasFailure()) {
            Restore(P, undo);
            Check();
        }
    }

  private:
    int Below(int end) { return static_cast<int>(random_() % static_cast<unsigned>(end)); }

    template <class Item>
    Item OneOf(const std::vector<Item>& items) {
        return items[static_cast<std::size_t>(Below(static_cast<int>(items.size())))];
    }

    void ChooseType(Kind /*list*/) {
        const std::string name = OneOf(Chosen[editing_]);
        const std::string was = At(editing_, open_).name;
        last_ = Editor("Node") + " " + name;
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
            last_ = Editor("Number") + " " + number;
            if (Below(2) == 0) {
                Person::Choose(Editor("Number"), number);
            } else {
                // As assistive technology does; what is not offered is corrected.
                Person::Combo(Editor("Number"))->lineEdit()->setText(QString::fromStdString(number + "x"));
            }
            row.number = number;
        }
    }

    // Only digits get into a row, and an emptied box leaves it as it is.
    void TypeRange(Kind /*list*/) {
        if (editing_ != A) {
            return;
        }
        const bool low = Below(2) == 0;
        const std::string box = low ? LowBox : "txtActionsDTMFRangeHigh";
        std::string digits = OneOf(Strings{"7", "007", "1*2 a", "*"});
        last_ = box + " " + digits;
        Person::TypeOver(box, digits);
        std::erase_if(digits, [](char typed) { return typed < '0' || typed > '9'; });
        std::string& range = At(A, open_).lead;
        const std::size_t dash = range.find('-');
        if (!digits.empty()) {
            range = low ? digits + range.substr(dash) : range.substr(0, dash + 1) + digits;
        }
        Person::Combo("cmbActionsNode")->setFocus();
        const std::size_t end = range.find('-');
        EXPECT_EQ(Person::TextBox(box)->text().toStdString(),
                  low ? range.substr(0, end) : range.substr(end + 1));
    }

    void CloseEditors(Kind /*list*/) {
        const Qt::Key key = OneOf(std::vector{Qt::Key_Return, Qt::Key_Escape});
        last_ = Editor("Node") + QKeySequence(key).toString().toStdString();
        Person::Combo(Editor("Node"))->setFocus();
        QTest::keyClick(Person::Combo(Editor("Node")), key);
        if (key == Qt::Key_Escape) {
            At(editing_, open_) = before_;
        }
        open_ = begun_ = -1;
        focus_ = List(editing_);
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

    void Undo(Kind list) { Restore(list, Below(3) > 0); }

    void Restore(Kind list, bool undo) {
        selected_.reset();
        const Account::Rows before = rows_;
        const bool restores = account_.Restore(undo);
        last_ = List(list) + (undo ? " undo" : " redo");
        Person::List(List(list))->setFocus();
        QTest::keyClick(Person::List(List(list)), Qt::Key_Z,
                        undo ? Qt::ControlModifier : Qt::ControlModifier | Qt::ShiftModifier);
        Focus(list);
        for (const Kind other : {P, A, E}) {
            if (restores && rows_[other] != before[other]) {
                Focus(other);
                if (editing_ == other) {
                    open_ = begun_ = -1;
                }
                const auto& [is, was] = std::tie(rows_[other], before[other]);
                const auto differing = std::ranges::mismatch(is, was).in1 - is.begin();
                if (!is.empty()) {
                    Selected(other, std::min(static_cast<int>(differing), Size(other) - 1));
                }
                focus_ = List(other);
                changed_ = true;
            }
        }
    }

    void QuickAssign(Kind list) {
        if (list == E || editing_ == list) {
            return;
        }
        const std::string type = OneOf(list == P ? Strings{"MSG", "SPEAK"} : Strings{"MSG", "TIME"});
        const int from = Below(3) + 1;
        const int to = Below(3) + 1;
        const bool adds = Below(2) == 0;
        last_ = "cmdQuick" + Kinds[list];
        Person::InQuickAssign(last_, [&] {
            Person::Choose("cmbNodeTypes", type);
            Person::Choose("cmbFrom", std::to_string(from));
            Person::Choose("cmbTo", std::to_string(to));
            Person::Press(adds ? "cmdAdd" : "cmdRemove");
        });
        Focus(list);
        changed_ = true;
        auto& rows = rows_[list];
        if (!adds) {
            std::erase_if(rows, [&](const Row& row) {
                return row.name == type && std::stoi(row.number) >= from && std::stoi(row.number) <= to;
            });
        } else if (list == P && from <= to && rows.front().name == "EMPTY") {
            rows.clear();
        }
        for (int number = from; adds && number <= to; ++number) {
            rows.push_back({type, std::to_string(number), "", list == A ? "0-100" : ""});
        }
        if (list == P && rows.empty()) {
            rows.push_back({"EMPTY", "1", "", ""});
        }
    }

    static bool CanBePasted(Kind list, const Row& row) {
        const int last = Types.at(row.name).last;
        return (list != P || row.name != "EMPTY") && row.name != "LIST" && row.name != "TABLE" &&
               (last == 0 || std::stoi(row.number) <= last);
    }

    void CopyAndPaste(Kind list) {
        const std::vector<int> selected = Person::SelectedRows(List(list));
        if (selected.empty() ||
            !std::ranges::all_of(selected, [&](int row) { return CanBePasted(list, At(list, row)); })) {
            return;
        }
        last_ = List(list) + " copied and pasted";
        for (const Qt::Key key : {Qt::Key_C, Qt::Key_V}) {
            Person::List(List(list))->setFocus();
            QTest::keyClick(Person::List(List(list)), key, Qt::ControlModifier);
        }
        Focus(list);
        if (editing_ == list) {
            return;
        }
        changed_ = true;
        std::vector<Row> copies;
        for (const int row : selected) {
            const Row& is = At(list, row);
            copies.push_back({is.name, is.Numberless() ? "1" : is.number, "", is.lead});
        }
        if (list == E) {
            At(E, selected.front()) = copies.front();
            return;
        }
        const int at = selected.size() == 1 ? selected.front() : Size(list);
        rows_[list].insert(rows_[list].begin() + at, copies.begin(), copies.end());
        selected_ = {list, std::vector<int>(copies.size())};
        std::iota(selected_->second.begin(), selected_->second.end(), at);
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

    std::mt19937 random_;
};

} // namespace KAL_AUTO_Node
