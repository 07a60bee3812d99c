#include "nodes/AutoNode.h"

#include <algorithm>
#include <map>
#include <set>
#include <span>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

constexpr const char* Becomes = " → ";

// Where two lists are compared row against row: beyond this many pairs their middles are taken as wholly
// different, as finding the best match would take longer than anybody waits.
constexpr std::size_t MostPairs = 4'000'000;

class Words {
  public:
    void Add(std::string line) { lines_.push_back(std::move(line)); }

    void Change(const std::string& what, const std::string& before, const std::string& after) {
        if (before != after) {
            Add(what + ' ' + before + Becomes + after);
        }
    }

    // What tells two references apart may be no part of what is shown.
    void Change(const std::string& what, const Reference& before, const Reference& after, Slot from) {
        const std::string shownBefore = DisplayText(before, from);
        const std::string shownAfter = DisplayText(after, from);
        if (shownBefore != shownAfter) {
            Change(what, shownBefore, shownAfter);
        } else if (before != after) {
            Change(what, Whole(before), Whole(after));
        }
    }

    std::vector<std::string> Take() { return std::move(lines_); }

  private:
    static std::string Whole(const Reference& reference) {
        return reference.type + ' ' + std::to_string(reference.number) + " (type " +
               std::to_string(reference.typeID) + ')';
    }

    std::vector<std::string> lines_;
};

std::string Quoted(const std::optional<std::string>& text) { return text ? '"' + *text + '"' : "none"; }

std::string Number(const std::optional<std::int64_t>& number) {
    return number ? std::to_string(*number) : "none";
}

void CompareSettings(const Settings& before, const Settings& after, Words& words) {
    for (const SettingField& rule : SettingFields) {
        words.Change(rule.name, Number(before.*rule.value), Number(after.*rule.value));
    }
    words.Change("terminating digit", Quoted(before.terminatingDigit), Quoted(after.terminatingDigit));
}

// Pairs of equal rows, in order: the longest common subsequence of two lists.
std::vector<std::pair<std::size_t, std::size_t>> Matches(std::span<const Prompt> before,
                                                         std::span<const Prompt> after) {
    const std::size_t rows = before.size();
    const std::size_t columns = after.size();
    if (rows * columns > MostPairs) {
        return {};
    }
    std::vector<std::uint32_t> lengths((rows + 1) * (columns + 1));
    const auto length = [&](std::size_t row, std::size_t column) -> std::uint32_t& {
        return lengths[row * (columns + 1) + column];
    };
    for (std::size_t row = rows; row-- > 0;) {
        for (std::size_t column = columns; column-- > 0;) {
            length(row, column) = before[row].target == after[column].target
                                      ? length(row + 1, column + 1) + 1
                                      : std::max(length(row + 1, column), length(row, column + 1));
        }
    }
    std::vector<std::pair<std::size_t, std::size_t>> pairs;
    for (std::size_t row = 0, column = 0; row < rows && column < columns;) {
        if (before[row].target == after[column].target) {
            pairs.emplace_back(row++, column++);
        } else if (length(row + 1, column) >= length(row, column + 1)) {
            ++row;
        } else {
            ++column;
        }
    }
    return pairs;
}

std::string PromptText(const Prompt& prompt) { return DisplayText(prompt.target, Slot::Prompts); }

void ComparePrompts(std::span<const Prompt> before, std::span<const Prompt> after, Words& words) {
    const auto sameTarget = [](const Prompt& a, const Prompt& b) { return a.target == b.target; };
    const auto start =
        static_cast<std::size_t>(std::ranges::mismatch(before, after, sameTarget).in1 - before.begin());
    std::size_t end = 0;
    while (end < std::min(before.size(), after.size()) - start &&
           sameTarget(before[before.size() - 1 - end], after[after.size() - 1 - end])) {
        ++end;
    }
    const auto middle = [&](std::span<const Prompt> list) {
        return list.subspan(start, list.size() - start - end);
    };
    auto pairs = Matches(middle(before), middle(after));
    pairs.emplace_back(middle(before).size(), middle(after).size());
    std::size_t from = 0;
    std::size_t to = 0;
    // What stands between two matches changed row by row; the longer side was removed or added.
    for (const auto& [matchedFrom, matchedTo] : pairs) {
        for (; from < matchedFrom || to < matchedTo;) {
            const std::string name = "prompt " + std::to_string(start + (from < matchedFrom ? from : to) + 1);
            if (from < matchedFrom && to < matchedTo) {
                words.Change(name, before[start + from++].target, after[start + to++].target, Slot::Prompts);
            } else if (from < matchedFrom) {
                words.Add(name + " removed: " + PromptText(before[start + from++]));
            } else {
                words.Add(name + " added: " + PromptText(after[start + to++]));
            }
        }
        ++from;
        ++to;
    }
}

// "key 3", or "keys 10-19".
std::string KeyText(const Action& action) {
    const auto [low, high] = RangeOf(action);
    return low == high ? "key " + std::string(low) : "keys " + EntryText(action);
}

std::string ActionText(const Action& action) { return DisplayText(action.target, Slot::Actions); }

// The ends as they are stored; a missing one is shown as another would be.
std::string StoredRange(const Action& action) { return Quoted(action.low) + " to " + Quoted(action.high); }

// Entries are told by their keys; those that stand for the same keys more than once, by their turn.
void CompareActions(std::span<const Action> before, std::span<const Action> after, Words& words) {
    std::map<std::string, std::vector<const Action*>> successors;
    for (const Action& action : after) {
        successors[EntryText(action)].push_back(&action);
    }
    std::map<std::string, std::size_t> turns;
    std::vector<const Action*> kept;
    for (const Action& action : before) {
        const std::string entry = EntryText(action);
        const auto& candidates = successors[entry];
        const std::size_t turn = turns[entry]++;
        if (turn >= candidates.size()) {
            words.Add(KeyText(action) + " removed: " + ActionText(action));
            continue;
        }
        words.Change(KeyText(action), action.target, candidates[turn]->target, Slot::Actions);
        words.Change(KeyText(action) + ", stored range", StoredRange(action), StoredRange(*candidates[turn]));
        kept.push_back(candidates[turn]);
    }
    const std::set<const Action*> known(kept.begin(), kept.end());
    for (const Action& action : after) {
        if (!known.contains(&action)) {
            words.Add(KeyText(action) + " added: " + ActionText(action));
        }
    }
    // The rows of one list lie in their order.
    if (!std::ranges::is_sorted(kept)) {
        words.Add("the entries stand in another order");
    }
}

} // namespace

std::vector<std::string> Differences(const AutoNode& before, const AutoNode& after) {
    Words words;
    words.Change("type", before.type, after.type);
    words.Change("label", Quoted(before.label), Quoted(after.label));
    CompareSettings(before.settings, after.settings, words);
    ComparePrompts(before.prompts, after.prompts, words);
    CompareActions(before.actions, after.actions, words);
    for (std::size_t i = 0; i < Branches.size(); ++i) {
        words.Change(std::string("branch ") + Branches[i].label, before.branches[i], after.branches[i],
                     Branches[i].slot);
    }
    return words.Take();
}

} // namespace KAL_AUTO_Node
