#include "exchange/MergedText.h"

#include "exchange/ExchangeText.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

// What stands last has no comma behind it, whichever side is kept: a side without rows takes along those
// before.
void KeepRowsLast(std::vector<Stretch>& stretches) {
    const auto hasNone = [](const Stretch& stretch) {
        return !stretch.settled &&
               std::ranges::any_of(stretch.rows, [](const auto& rows) { return rows.empty(); });
    };
    while (stretches.size() > 1 && hasNone(stretches.back())) {
        Stretch last = std::move(stretches.back());
        stretches.pop_back();
        Stretch& before = stretches.back();
        if (std::exchange(before.settled, false)) {
            before.rows.fill(std::vector(before.rows[Ours]));
        }
        for (std::size_t side = 0; side < last.rows.size(); ++side) {
            std::ranges::move(last.rows.at(side), std::back_inserter(before.rows.at(side)));
        }
        std::ranges::move(last.conflicts, std::back_inserter(before.conflicts));
    }
}

class Writer {
  public:
    Writer(std::string& text, std::vector<MergeConflict>& conflicts) : text_(text), conflicts_(conflicts) {}

    // Behind a line's end.
    void Append(Stretch& stretch, bool isLast) {
        if (stretch.settled) {
            AppendRows(stretch.rows[Ours], isLast);
            return;
        }
        lines_ += std::ranges::count(std::string_view(text_).substr(counted_), '\n');
        counted_ = text_.size();
        for (MergeConflict& conflict : stretch.conflicts) {
            conflict.line = static_cast<std::size_t>(lines_) + 1;
            conflicts_.push_back(std::move(conflict));
        }
        static constexpr std::array<std::pair<Side, const char*>, 3> Marks = {
            {{Ours, "<<<<<<< ours\n"}, {Base, "||||||| before\n"}, {Theirs, "=======\n"}}};
        for (const auto& [side, mark] : Marks) {
            text_ += mark;
            AppendRows(stretch.rows.at(side), isLast);
        }
        text_ += ">>>>>>> theirs\n";
    }

  private:
    void AppendRows(const std::vector<std::string>& rows, bool areLast) {
        for (const std::string& row : rows) {
            text_ += row;
            text_ += areLast && &row == &rows.back() ? "\n" : Exchange::RowEnd;
        }
    }

    std::string& text_;
    std::vector<MergeConflict>& conflicts_;
    std::size_t counted_ = 0;
    std::ptrdiff_t lines_ = 0; // of what is counted
};

} // namespace

std::string MergedText::Write(std::optional<Partition> scope, std::span<const StoreTable* const> tables,
                              std::vector<MergeConflict>& conflicts) {
    std::string text = Exchange::Head(scope);
    Writer writer(text, conflicts);
    for (const StoreTable* table : tables) {
        text += table == tables.front() ? "" : Exchange::RowEnd;
        text += Exchange::TableHead(*table);
        text += '\n';
        auto& stretches = tables_[table];
        std::ranges::sort(stretches, {}, &Stretch::key);
        KeepRowsLast(stretches);
        for (Stretch& stretch : stretches) {
            writer.Append(stretch, &stretch == &stretches.back());
        }
        text += ']';
    }
    return text + Exchange::End;
}

} // namespace KAL_AUTO_Node
