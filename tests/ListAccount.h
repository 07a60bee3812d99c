#pragma once

#include <array>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace KAL_AUTO_Node {

using Strings = std::vector<std::string>;

enum Kind { P, A, E, None };

inline const Strings Kinds{"Prompts", "Actions", "Exceptions"};

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

    bool operator==(const Row&) const = default;

    [[nodiscard]] bool Numberless() const { return name == "EMPTY" || name == "NONE"; }
};

// The rows of the three lists as they have to be, and as they were before each deed.
class Account {
  public:
    using Rows = std::array<std::vector<Row>, 3>;

    Rows now;

    [[nodiscard]] bool CanRestore(bool undo) const { return !(undo ? past_ : future_).empty(); }

    // Those on one row while it is edited belong together; the others have no such row, 0.
    void NoteDeed(const Rows& before, int editedRow) {
        if (now == before) {
            return;
        }
        const bool sameRow = editedRow > 0 && editedRow == latest_;
        latest_ = editedRow;
        future_.clear();
        if (!sameRow) {
            past_.push_back(before);
            past_.erase(past_.begin(), past_.end() - std::min<std::ptrdiff_t>(100, std::ssize(past_)));
        } else if (past_.back() == now) {
            past_.pop_back();
            latest_ = 0;
        }
    }

    // Takes a deed back, or does it again; returns whether there was one.
    bool Restore(bool undo) {
        if (!CanRestore(undo)) {
            return false;
        }
        auto& from = undo ? past_ : future_;
        (undo ? future_ : past_).push_back(std::exchange(now, from.back()));
        from.pop_back();
        latest_ = 0;
        return true;
    }

  private:
    std::vector<Rows> past_;
    std::vector<Rows> future_;
    int latest_ = 0;
};

} // namespace KAL_AUTO_Node
