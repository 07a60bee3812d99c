#include "nodes/Matches.h"
#include "nodes/Merging.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <string_view>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

using Listed = std::span<const ListedRow>;

struct Run {
    std::size_t first = 0;
    std::size_t count = 0;

    friend bool operator==(const Run&, const Run&) = default;
};

// Rows of one name that stand elsewhere than before: between which places.
struct Move {
    std::vector<std::size_t> from; // rows before
    std::vector<std::size_t> to; // twice the place at which they come in, and one more where a row became one
    std::size_t first = 0;
    std::size_t end = 0;

    friend bool operator==(const Move&, const Move&) = default;
};

// What one has made of a list, told by the rows that were there and the gaps before each and behind the last.
class Edit {
  public:
    Edit(Listed before, Listed after)
        : before_(before), after_(after), becomes_(before.size()), replaced_(before.size()),
          added_(before.size() + 1), closed_(before.size() + 1) {
        auto pairs = Matches(before.size(), after.size(), [&](std::size_t from, std::size_t to) {
            return before[from].name == after[to].name;
        });
        pairs.emplace_back(before.size(), after.size());
        Run gone;
        Run come;
        for (const auto& [from, to] : pairs) {
            gone.count = from - gone.first;
            come.count = to - come.first;
            Take(gone, come);
            if (from < before.size()) {
                becomes_[from] = to;
            }
            gone.first = from + 1;
            come.first = to + 1;
        }
        FindMoves();
    }

    [[nodiscard]] bool Keeps(std::size_t row) const {
        return becomes_[row] && after_[*becomes_[row]] == before_[row];
    }

    // Whether the row has become the same with both.
    [[nodiscard]] bool DoesAs(const Edit& other, std::size_t row) const {
        return becomes_[row] && other.becomes_[row]
                   ? after_[*becomes_[row]] == other.after_[*other.becomes_[row]]
                   : !becomes_[row] && !other.becomes_[row] && replaced_[row] == other.replaced_[row];
    }

    [[nodiscard]] std::optional<std::size_t> Becomes(std::size_t row) const { return becomes_[row]; }

    [[nodiscard]] Run AddedAt(std::size_t gap) const { return added_[gap]; }

    // Whether rows of the other's have no certain place there.
    [[nodiscard]] bool IsClosed(std::size_t gap) const { return closed_[gap]; }

    // Whether a row beside the gap stands elsewhere now.
    [[nodiscard]] bool MovesFrom(std::size_t gap) const {
        return std::ranges::any_of(moves_, [&](const Move& move) {
            return std::ranges::any_of(move.from,
                                       [&](std::size_t row) { return row == gap || row + 1 == gap; });
        });
    }

    // Rows that come in at the gap from elsewhere.
    [[nodiscard]] std::vector<Move> MovesTo(std::size_t gap) const {
        std::vector<Move> moves;
        std::ranges::copy_if(moves_, std::back_inserter(moves), [&](const Move& move) {
            return std::ranges::find(move.to, gap * 2) != move.to.end();
        });
        return moves;
    }

    [[nodiscard]] Listed Rows(Run run) const { return after_.subspan(run.first, run.count); }

    // Whether what was moved was let alone by the other, and the order there as well.
    [[nodiscard]] bool MovesBeside(const Edit& other) const {
        return std::ranges::all_of(moves_, [&](const Move& move) {
            if (std::ranges::find(other.moves_, move) != other.moves_.end()) {
                return true;
            }
            return std::ranges::all_of(move.from, [&](std::size_t row) { return other.Keeps(row); }) &&
                   std::ranges::none_of(other.moves_, [&](const Move& its) {
                       return move.first < its.end && its.first < move.end;
                   });
        });
    }

  private:
    // Rows of which none stayed: as many others have come row by row, or another number instead of all.
    void Take(Run gone, Run come) {
        if (gone.count == come.count) {
            for (std::size_t i = 0; i < gone.count; ++i) {
                becomes_[gone.first + i] = come.first + i;
            }
            return;
        }
        added_[gone.first] = come;
        if (gone.count > 0 && come.count > 0) {
            std::fill_n(replaced_.begin() + static_cast<std::ptrdiff_t>(gone.first), gone.count, gone);
            std::fill_n(closed_.begin() + static_cast<std::ptrdiff_t>(gone.first), gone.count + 1, true);
        }
    }

    void FindMoves() {
        std::map<std::string_view, Move> moves;
        for (std::size_t row = 0; row < before_.size(); ++row) {
            const auto now = becomes_[row];
            if (!now || after_[*now].name != before_[row].name) {
                moves[before_[row].name].from.push_back(row);
            }
        }
        const auto comes = [&](const ListedRow& row, std::size_t place) {
            if (const auto found = moves.find(row.name); found != moves.end()) {
                found->second.to.push_back(place);
            }
        };
        for (std::size_t gap = 0; gap < added_.size(); ++gap) {
            for (const ListedRow& row : Rows(added_[gap])) {
                comes(row, gap * 2);
            }
            if (gap < before_.size() && becomes_[gap] && after_[*becomes_[gap]].name != before_[gap].name) {
                comes(after_[*becomes_[gap]], gap * 2 + 1);
            }
        }
        for (auto& [name, move] : moves) {
            if (!move.to.empty()) {
                move.first = std::min(move.from.front(), move.to.front() / 2);
                move.end = std::max(move.from.back() + 1, (move.to.back() + 1) / 2);
                moves_.push_back(std::move(move));
            }
        }
    }

    Listed before_;
    Listed after_;
    std::vector<std::optional<std::size_t>> becomes_; // the rows before; nothing where they went
    std::vector<Run> replaced_; // with which rows before they went, where others came instead of all
    std::vector<Run> added_;    // at the gaps
    std::vector<bool> closed_;
    std::vector<Move> moves_;
};

class Merger {
  public:
    Merger(std::size_t before, const Edit& one, const Edit& other, ListKind kind)
        : before_(before), one_(one), other_(other), kind_(kind) {}

    std::optional<std::vector<MergedRow>> Merge() {
        if (!one_.MovesBeside(other_) || !other_.MovesBeside(one_)) {
            return std::nullopt;
        }
        for (std::size_t place = 0; place <= before_; ++place) {
            if (!FillGap(place) || (place < before_ && !SettleRow(place))) {
                return std::nullopt;
            }
        }
        return std::move(rows_);
    }

  private:
    bool FillGap(std::size_t gap) {
        const auto added = one_.AddedAt(gap);
        const auto its = other_.AddedAt(gap);
        // Of rows that come more than once, different ones may have been brought there.
        const bool same = std::ranges::equal(one_.Rows(added), other_.Rows(its)) &&
                          one_.MovesTo(gap) == other_.MovesTo(gap);
        const auto isInDoubt = [&](const Edit& edit) {
            return edit.IsClosed(gap) ||
                   (kind_ == ListKind::Ordered && (edit.AddedAt(gap).count > 0 || edit.MovesFrom(gap)));
        };
        if (!same && ((its.count > 0 && isInDoubt(one_)) || (added.count > 0 && isInDoubt(other_)))) {
            return false;
        }
        for (std::size_t i = 0; i < added.count; ++i) {
            rows_.push_back({false, added.first + i});
        }
        for (std::size_t i = 0; !same && i < its.count; ++i) {
            rows_.push_back({true, its.first + i});
        }
        return true;
    }

    bool SettleRow(std::size_t row) {
        const bool ofOther = one_.Keeps(row) && !other_.DoesAs(one_, row);
        if (!ofOther && !other_.Keeps(row) && !other_.DoesAs(one_, row)) {
            return false;
        }
        if (const auto now = ofOther ? other_.Becomes(row) : one_.Becomes(row)) {
            rows_.push_back({ofOther, *now});
        }
        return true;
    }

    std::size_t before_;
    const Edit& one_;
    const Edit& other_;
    ListKind kind_;
    std::vector<MergedRow> rows_;
};

std::map<std::string_view, std::size_t> Names(Listed rows) {
    std::map<std::string_view, std::size_t> counts;
    for (const ListedRow& row : rows) {
        ++counts[row.name];
    }
    return counts;
}

// Both may have made rows that cannot stand beside one another.
bool GoTogether(const std::vector<MergedRow>& rows, Listed one, Listed other, ListKind kind) {
    const auto row = [&](const MergedRow& merged) -> const ListedRow& {
        return (merged.ofOther ? other : one)[merged.place];
    };
    if (rows.size() > 1 &&
        std::ranges::any_of(rows, [&](const MergedRow& merged) { return row(merged).standsForNone; })) {
        return false;
    }
    if (kind == ListKind::Ordered) {
        return true;
    }
    auto ofOne = Names(one);
    auto ofOther = Names(other);
    std::map<std::string_view, std::size_t> counts;
    return std::ranges::all_of(rows, [&](const MergedRow& merged) {
        const std::string_view name = row(merged).name;
        return ++counts[name] <= std::max(ofOne[name], ofOther[name]);
    });
}

} // namespace

std::optional<std::vector<MergedRow>> MergeLists(std::span<const ListedRow> before,
                                                 std::span<const ListedRow> one,
                                                 std::span<const ListedRow> other, ListKind kind) {
    auto rows = Merger(before.size(), Edit(before, one), Edit(before, other), kind).Merge();
    return rows && GoTogether(*rows, one, other, kind) ? rows : std::nullopt;
}

} // namespace KAL_AUTO_Node
