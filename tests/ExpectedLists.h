#pragma once

#include "ListAccount.h"
#include "Person.h"

namespace KAL_AUTO_Node {

inline const std::string LowBox = "txtActionsDTMFRangeLow";
inline const Strings Exceptions{"Timeout", "Invalid", "Abort", "Star", "Pound"};

// The lists of a window as they have to be, with the editors over their rows, the focus and the messages.
class ExpectedLists {
  public:
    explicit ExpectedLists(Person& person) : person_(person) {
        for (const Kind list : {P, A, E}) {
            for (int row = 0; row < Person::Count(List(list)); ++row) {
                const auto cell = [&](int column) { return Person::Cell(List(list), row, column); };
                rows_[list].push_back({cell(4), cell(6), cell(3), list == P ? "" : cell(1)});
            }
        }
    }

    [[nodiscard]] const Account::Rows& Rows() const { return rows_; }

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

  protected:
    static std::string List(Kind list) { return "LV" + Kinds[list]; }

    static std::string Button(Kind list, const std::string& action) { return "cmd" + Kinds[list] + action; }

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
            ++session_;
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

    void BeginEditing(Kind list) {
        editing_ = list;
        if (const int row = Current(list); row >= 0) {
            Open(row);
            marked_ = true;
        }
    }

    Person& person_;
    Account account_;
    Account::Rows& rows_ = account_.now;
    int session_ = 0; // on the row that Escape takes back
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

  private:
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
};

} // namespace KAL_AUTO_Node
