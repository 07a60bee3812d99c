#include "nodes/AutoNode.h"
#include "nodes/Matches.h"

#include <algorithm>
#include <map>
#include <set>
#include <span>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

constexpr const char* Becomes = " → ";

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

std::string PromptText(const Prompt& prompt) { return DisplayText(prompt.target, Slot::Prompts); }

void ComparePrompts(std::span<const Prompt> before, std::span<const Prompt> after, Words& words) {
    auto pairs = Matches(before.size(), after.size(), [&](std::size_t from, std::size_t to) {
        return before[from].target == after[to].target;
    });
    pairs.emplace_back(before.size(), after.size());
    std::size_t from = 0;
    std::size_t to = 0;
    // What stands between two matches changed row by row; the longer side was removed or added.
    for (const auto& [matchedFrom, matchedTo] : pairs) {
        for (; from < matchedFrom || to < matchedTo;) {
            const std::string name = "prompt " + std::to_string((from < matchedFrom ? from : to) + 1);
            if (from < matchedFrom && to < matchedTo) {
                words.Change(name, before[from++].target, after[to++].target, Slot::Prompts);
            } else if (from < matchedFrom) {
                words.Add(name + " removed: " + PromptText(before[from++]));
            } else {
                words.Add(name + " added: " + PromptText(after[to++]));
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
