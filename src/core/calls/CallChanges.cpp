#include "calls/CallChanges.h"

#include "calls/Trace.h"
#include "platform/FoldCase.h"

#include <algorithm>
#include <map>
#include <set>

namespace KAL_AUTO_Node {

namespace {

constexpr std::size_t MostEntriesTold = 12;

void Change(std::vector<CallChange>& changes, const std::string& what, std::string before,
            std::string after) {
    changes.push_back({what, {}, std::move(before), std::move(after), {}});
}

void Say(std::vector<CallChange>& changes, const std::string& what, std::string says) {
    changes.push_back({what, {}, {}, {}, std::move(says)});
}

void CompareSettings(const Settings& before, const Settings& after, std::vector<CallChange>& changes) {
    for (const SettingField& rule : SettingFields) {
        if (before.*rule.value != after.*rule.value) {
            Change(changes, rule.name, SettingText(rule, before), SettingText(rule, after));
        }
    }
    // The case of what is stored makes no difference.
    const auto digit = [](const Settings& settings) {
        return settings.terminatingDigit ? std::optional(FoldCase(*settings.terminatingDigit)) : std::nullopt;
    };
    if (digit(before) != digit(after)) {
        Change(changes, "terminating digit", TerminatingDigitText(before), TerminatingDigitText(after));
    }
}

bool IsPartOf(const std::vector<Target>& part, const std::vector<Target>& whole) {
    auto next = part.begin();
    for (const Target& target : whole) {
        next += next != part.end() && *next == target ? 1 : 0;
    }
    return next == part.end();
}

void ComparePrompts(const AutoNode& before, const AutoNode& after, std::vector<CallChange>& changes) {
    struct Times {
        int before = 0;
        int after = 0;
        int seen = 0;
    };

    const std::vector<Target> played = PlayedBy(before);
    const std::vector<Target> then = PlayedBy(after);
    std::map<Target, Times> times;
    for (const Target& target : played) {
        ++times[target].before;
    }
    for (const Target& target : then) {
        ++times[target].after;
    }
    const auto tell = [&](const Target& target, Times& of) {
        if (of.seen++ > 0 || of.before == of.after) {
            return;
        }
        const auto count = [](int number) {
            return number == 1 ? "once" : std::to_string(number) + " times";
        };
        Say(changes, "prompts",
            target.Text() + (of.after == 0 ? " is no longer played"
                             : of.before == 0
                                 ? " is played, too"
                                 : " is played " + count(of.after) + ", not " + count(of.before)));
    };
    for (const auto* list : {&played, &then}) {
        for (const Target& target : *list) {
            tell(target, times.at(target));
        }
    }
    // Those that stay.
    const auto kept = [&](const std::vector<Target>& list) {
        std::vector<Target> rest;
        std::map<Target, int> taken;
        for (const Target& target : list) {
            const Times& of = times.at(target);
            if (taken[target]++ < std::min(of.before, of.after)) {
                rest.push_back(target);
            }
        }
        return rest;
    };
    if (!IsPartOf(kept(then), played) && !IsPartOf(kept(played), then)) {
        Say(changes, "prompts", "they are played in another order");
    }
}

void CompareExceptions(const Menu& before, const Menu& after, std::vector<CallChange>& changes) {
    for (std::size_t branch = 0; branch < Branches.size(); ++branch) {
        const Outcomes was = before.Except(branch);
        const Outcomes is = after.Except(branch);
        const bool same = std::ranges::is_permutation(
            was.ways, is.ways, [](const Outcome& a, const Outcome& b) { return a.IsLike(b); });
        if (!same) {
            const std::string from = TextOf(was, branch);
            std::string to = TextOf(is, branch);
            to += from == to ? " (of another type ID)" : "";
            Change(changes, StepName(branch), from, std::move(to));
        }
    }
}

// The references of nodes of other types, by their places.
void CompareWays(const std::map<NodeKey, std::vector<OtherWay>>& before,
                 const std::map<NodeKey, std::vector<OtherWay>>& after, std::vector<NodeCallChanges>& all) {
    std::map<NodeKey, std::map<std::string, std::pair<std::string, std::string>>> places;
    for (const auto& [node, ways] : before) {
        for (const OtherWay& way : ways) {
            places[node][way.place].first = way.target.Text();
        }
    }
    for (const auto& [node, ways] : after) {
        for (const OtherWay& way : ways) {
            places[node][way.place].second = way.target.Text();
        }
    }
    for (const auto& [node, texts] : places) {
        if (node.number == TemplateNumber) {
            continue;
        }
        NodeCallChanges changed{node, {}};
        for (const auto& [place, text] : texts) {
            const auto& [was, is] = text;
            if (was != is) {
                Change(changed.changes, place, was.empty() ? "nowhere" : was, is.empty() ? "nowhere" : is);
            }
        }
        if (!changed.changes.empty()) {
            all.push_back(std::move(changed));
        }
    }
}

// The AUTO nodes to which calls may get.
std::set<int> Reached(const CallMap& map, const std::vector<int>& entries) {
    std::set<int> reached;
    std::set<Target> seen;
    std::vector<Target> next;
    const auto reach = [&](const Target& target) {
        if (seen.insert(target).second) {
            next.push_back(target);
        }
    };
    for (const int entry : entries) {
        if (const auto menu = map.menus.find(entry); menu != map.menus.end()) {
            reach(menu->second.Itself());
        }
    }
    while (!next.empty()) {
        const Target target = std::move(next.back());
        next.pop_back();
        if (const Menu* menu = map.MenuOf(target)) {
            reached.insert(menu->Number());
            for (const DigitRange& range : menu->Ranges()) {
                reach(menu->ActionTarget(range.action));
            }
            for (std::size_t branch = 0; branch < Branches.size(); ++branch) {
                reach(menu->ExceptionTarget(branch));
            }
        }
        for (const OtherWay& way : map.WaysFrom(target)) {
            reach(way.target);
        }
    }
    return reached;
}

} // namespace

std::string CallChange::Text() const {
    std::string text = what == "node" ? "" : what;
    if (!entries.empty()) {
        text = entries.size() == 1 && entries.front().first == entries.front().second ? "entry" : "entries";
        for (std::size_t i = 0; i < std::min(entries.size(), MostEntriesTold); ++i) {
            const auto& [low, high] = entries[i];
            text += (i > 0 ? ", " : " ") + low + (low == high ? "" : '-' + high);
        }
        if (entries.size() > MostEntriesTold) {
            text += " and " + std::to_string(entries.size() - MostEntriesTold) + " more stretches";
        }
    }
    text += text.empty() ? "" : ": ";
    return text + (says.empty() ? before + " → " + after : says);
}

std::vector<CallChange> CompareCalls(const Menu* before, const Menu* after) {
    std::vector<CallChange> changes;
    if (before == nullptr || after == nullptr) {
        if (before != after) {
            Say(changes, "node", before == nullptr ? "it is new" : "it is gone");
        }
        return changes;
    }
    CompareSettings(before->Node().settings, after->Node().settings, changes);
    ComparePrompts(before->Node(), after->Node(), changes);
    std::ranges::move(CompareEntries(*before, *after), std::back_inserter(changes));
    CompareExceptions(*before, *after, changes);
    return changes;
}

std::vector<NodeCallChanges> CompareCalls(const CallMap& before, const CallMap& after) {
    // Where calls enter that entered nowhere before is where nothing leads any more.
    const std::set<int> reached = Reached(before, before.entries);
    const std::set<int> reachedThen = Reached(after, before.entries);
    std::set<int> numbers;
    for (const auto* map : {&before, &after}) {
        for (const auto& [number, menu] : map->menus) {
            numbers.insert(numbers.end(), number);
        }
    }
    std::vector<NodeCallChanges> all;
    for (const int number : numbers) {
        // The template is no menu that anybody calls.
        if (number == TemplateNumber) {
            continue;
        }
        const auto was = before.menus.find(number);
        const auto is = after.menus.find(number);
        const Menu* from = was == before.menus.end() ? nullptr : &was->second;
        const Menu* to = is == after.menus.end() ? nullptr : &is->second;
        NodeCallChanges node{{AutoType, number}, {}};
        if (from == nullptr || to == nullptr || from->Node() != to->Node()) {
            node.changes = CompareCalls(from, to);
        }
        if (from != nullptr && to != nullptr && reached.contains(number) != reachedThen.contains(number)) {
            Say(node.changes, "node",
                reached.contains(number) ? "no caller gets there any more" : "callers get there now");
        }
        if (!node.changes.empty()) {
            all.push_back(std::move(node));
        }
    }
    for (const auto ways : {&CallMap::others, &CallMap::played}) {
        CompareWays(before.*ways, after.*ways, all);
    }
    return all;
}

} // namespace KAL_AUTO_Node
