#include "HistoryModel.h"

#include <algorithm>
#include <limits>
#include <set>
#include <unordered_set>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

constexpr std::size_t MostStates = 1'000'000;
constexpr const char* None = "-";

std::string_view TakeField(std::string_view& rest, char end) {
    const std::string_view field = rest.substr(0, rest.find(end));
    rest.remove_prefix(std::min(rest.size(), field.size() + 1));
    return field;
}

struct NodeState {
    std::string content;
    std::string next{}; // what a save is turning it into, or was when it ended half-way
    bool left = false;  // half-way
    int saver = -1;     // the operation
    std::string log{};  // what was done and what was there before
    // Where saves that ended half-way, and were saved over by others that did, lead back to.
    std::vector<std::string> older{};

    [[nodiscard]] bool IsHalf() const { return !next.empty(); }

    [[nodiscard]] bool IsBeingSaved() const { return IsHalf() && !left; }

    [[nodiscard]] std::string Pattern() const { return IsHalf() ? content + '=' + next : content; }

    void Become(const std::string& work, const std::string& now) {
        log += work + ':' + Pattern() + ';';
        content = now;
        next.clear();
    }

    // What is finished leaves nothing to be put back.
    void Finish(const std::string& work, const std::string& now) {
        Become(work, now);
        older.clear();
    }

    // What is half stands in the way, an older half perhaps.
    [[nodiscard]] bool MayHinder() const { return IsHalf() || !older.empty(); }
};

using State = std::array<NodeState, NodesInHistory>;

// Of a half, each part may be the old or the new one, and the new rows come one by one after the old ones
// have gone.
bool Matches(std::string_view pattern, std::string_view content) {
    std::string_view old = TakeField(pattern, '=');
    for (const char end : {'/', '|'}) {
        const auto part = TakeField(content, end);
        const auto was = TakeField(old, end);
        const auto becomes = TakeField(pattern, end);
        if (part != was && (pattern.empty() || part != becomes)) {
            return false;
        }
    }
    return content == old || (!pattern.empty() && pattern.starts_with(content));
}

bool LogMatches(std::string_view log, std::string_view told) {
    while (!log.empty() && !told.empty()) {
        std::string_view entry = TakeField(log, ';');
        std::string_view version = TakeField(told, ';');
        if (TakeField(entry, ':') != TakeField(version, ':') || !Matches(entry, version)) {
            return false;
        }
    }
    return log.empty() && told.empty();
}

std::vector<State> Imported(State state, std::size_t from, std::string_view rest) {
    if (from == state.size()) {
        return {state};
    }
    const std::string content(TakeField(rest, ';'));
    std::vector<State> states;
    // What is there already stays, and a half may be there.
    if (Matches(state[from].Pattern(), content)) {
        states = Imported(state, from + 1, rest);
    }
    if (!state[from].IsBeingSaved() && state[from].Pattern() != content) {
        state[from].Finish("import", content);
        std::ranges::move(Imported(state, from + 1, rest), std::back_inserter(states));
    }
    return states;
}

// What is half is left alone where it refers to the other target only, and else stands in the way.
int Repointed(State& state, const Operation& did) {
    int count = 0;
    for (NodeState& node : state) {
        std::string content = node.content;
        const int rows = node.IsHalf() ? 0
                                       : ReplaceAll(content, '>' + std::to_string(FirstTarget + did.node),
                                                    '>' + std::to_string(FirstTarget + did.other));
        if (rows > 0) {
            node.Finish("repoint", content);
        }
        count += rows;
    }
    return count;
}

// The states that an operation may leave; none where its answer is another then. A save in a file has two
// steps.
std::vector<State> After(State state, const Operation& did, int index, bool ends, bool inFile) {
    NodeState& node = state[static_cast<std::size_t>(did.node)];
    NodeState& other = state[static_cast<std::size_t>(did.other)];
    const auto is = [&](const char* text) { return did.answer == text; };
    const bool done = !did.answer || is("done");
    const bool isThere = !did.answer || Matches(node.Pattern(), *did.answer);
    bool may = false;
    if (is("failed") || (did.verb == "back" && is("0"))) {
        may = true; // a half that is not told of is as it was
    } else if (is("busy") || (did.verb == "repoint" && is("hindered"))) {
        may = std::ranges::any_of(state, &NodeState::MayHinder);
    } else if (is("gone")) {
        may = node.content == None;
    } else if (is("changed")) {
        may = node.content != None && !node.IsBeingSaved() && (node.IsHalf() || node.content != did.seen);
    } else if (did.verb == "load") {
        may = isThere;
    } else if (did.verb == "save" && !ends) {
        may = done && !node.IsBeingSaved() && Matches(node.Pattern(), did.seen);
        if (node.IsHalf()) {
            node.older.push_back(node.content);
        }
        node = {did.seen, did.next, !did.answer, index, node.log, node.older};
    } else if (did.verb == "save") {
        may = node.IsHalf() && node.saver == index;
    } else if (did.verb == "back") {
        may = node.MayHinder() && !node.IsBeingSaved();
        const bool isOlder = may && !node.IsHalf();
        node.Become("put_back", isOlder ? node.older.back() : node.content);
        if (isOlder) {
            node.older.pop_back();
        }
    } else if (did.verb == "restore") {
        may = isThere && !node.IsBeingSaved();
        node.Become("restore", did.next);
        if (may && !node.older.empty()) {
            // Those of them that are younger than what is restored are undone.
            State undone = state;
            undone[static_cast<std::size_t>(did.node)].older.clear();
            return {undone, state};
        }
    } else if (did.verb == "repoint") {
        const int count = Repointed(state, did);
        may = !did.answer || *did.answer == std::to_string(count);
    } else if (did.verb == "copy" || did.verb == "remove") {
        const bool copies = did.verb == "copy";
        const bool can = !node.IsHalf() && node.content != None && (!copies || other.Pattern() == None);
        may = can ? done || (is("hindered") && node.MayHinder()) : is("hindered");
        if (can && done) {
            copies ? other.Finish("copy", node.content) : node.Finish("remove", None);
        }
    } else if (did.verb == "import") {
        return done ? Imported(state, 0, did.next) : std::vector<State>();
    } else if (did.verb == "log") {
        may = !did.answer || LogMatches(node.log, *did.answer);
    } else if (did.verb == "export") {
        std::string_view shown = did.answer ? std::string_view(*did.answer) : std::string_view();
        may = !did.answer || std::ranges::all_of(state, [&](const NodeState& one) {
            return Matches(one.Pattern(), TakeField(shown, ';'));
        });
    }
    if (did.verb == "save" && done && (ends || !inFile)) {
        const std::string saved = std::exchange(node.next, "");
        node.Finish("save", saved);
    }
    return may ? std::vector{state} : std::vector<State>();
}

// How far the actors are, and what the store is then.
struct Reached {
    std::vector<std::size_t> done; // of each actor's operations
    std::vector<bool> begun;       // the save that is the next of them
    State state{};

    [[nodiscard]] std::string Key() const {
        std::string key;
        for (std::size_t i = 0; i < done.size(); ++i) {
            key += std::to_string(done[i]) + (begun[i] ? '+' : ' ');
        }
        for (const NodeState& node : state) {
            key += node.Pattern() + (node.left ? '!' : ' ') + node.log + '\n';
            for (const std::string& content : node.older) {
                key += content + '\n';
            }
        }
        return key;
    }
};

class Search {
  public:
    explicit Search(const RecordedHistory& history) : history_(history) {
        for (std::size_t i = 0; i < history.operations.size(); ++i) {
            const auto actor = static_cast<std::size_t>(history.operations[i].actor);
            actors_.resize(std::max(actors_.size(), actor + 1));
            actors_[actor].push_back(i);
        }
    }

    bool Run() {
        Reached first{std::vector<std::size_t>(actors_.size()), std::vector<bool>(actors_.size())};
        for (std::size_t i = 0; i < first.state.size(); ++i) {
            first.state[i].content = history_.begin[i];
        }
        Add(std::move(first));
        while (!open_.empty() && known_.size() < MostStates) {
            const Reached reached = std::move(open_.back());
            open_.pop_back();
            if (GoOn(reached)) {
                return true;
            }
        }
        return false;
    }

  private:
    // Whether all is done. Else what may come next is open, what ends first before the others.
    bool GoOn(const Reached& reached) {
        std::set<std::pair<std::int64_t, std::size_t>> next;
        for (std::size_t actor = 0; actor < actors_.size(); ++actor) {
            if (reached.done[actor] < actors_[actor].size()) {
                next.emplace(-history_.operations[actors_[actor][reached.done[actor]]].end, actor);
            }
        }
        for (const auto& [end, actor] : next) {
            const std::size_t index = actors_[actor][reached.done[actor]];
            const Operation& operation = history_.operations[index];
            if (operation.begin > -next.rbegin()->first) {
                continue;
            }
            const bool ends = reached.begun[actor];
            Reached after = reached;
            after.begun[actor] = !ends && history_.inFile && operation.verb == "save" &&
                                 operation.answer.value_or("done") == "done";
            after.done[actor] += after.begun[actor] ? 0 : 1;
            for (State& state :
                 After(reached.state, operation, static_cast<int>(index), ends, history_.inFile)) {
                after.state = std::move(state);
                Add(after);
            }
            if (!operation.answer) {
                after.done[actor] = reached.done[actor] + 1;
                after.begun[actor] = false;
                after.state = reached.state;
                Add(after);
                NodeState& node = after.state[static_cast<std::size_t>(operation.node)];
                if (ends && node.saver == static_cast<int>(index)) {
                    node.next.clear(); // it had begun, and written nothing yet
                    Add(after);
                }
            }
        }
        return next.empty();
    }

    void Add(Reached reached) {
        if (known_.insert(reached.Key()).second) {
            open_.push_back(std::move(reached));
        }
    }

    const RecordedHistory& history_;
    std::vector<std::vector<std::size_t>> actors_; // the positions of their operations
    std::vector<Reached> open_;
    std::unordered_set<std::string> known_;
};

// What had begun by then; what had not ended may yet have any effect.
RecordedHistory UpTo(RecordedHistory history, std::int64_t time) {
    std::erase_if(history.operations, [&](const Operation& operation) { return operation.begin > time; });
    for (Operation& operation : history.operations) {
        if (operation.end > time) {
            operation.end = std::numeric_limits<std::int64_t>::max();
            operation.answer.reset();
        }
    }
    return history;
}

bool HasEffect(const Operation& operation) {
    static const std::set<std::string> without = {"load", "export", "log",     "failed",
                                                  "busy", "gone",   "changed", "hindered"};
    const std::string answer = operation.answer.value_or("");
    return !without.contains(operation.verb) && !without.contains(answer) &&
           (operation.verb != "back" || answer != "0");
}

} // namespace

int ReplaceAll(std::string& text, const std::string& from, const std::string& to) {
    int count = 0;
    for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
        ++count;
    }
    return count;
}

bool IsExplained(const RecordedHistory& history) { return Search(history).Run(); }

RecordedHistory Smallest(const RecordedHistory& history) {
    std::vector<std::int64_t> ends;
    for (const Operation& operation : history.operations) {
        ends.push_back(operation.end);
    }
    std::ranges::sort(ends);
    const auto last =
        std::ranges::partition_point(ends, [&](std::int64_t end) { return IsExplained(UpTo(history, end)); });
    RecordedHistory smallest = last == ends.end() ? history : UpTo(history, *last);
    for (std::size_t i = smallest.operations.size(); i-- > 0;) {
        RecordedHistory without = smallest;
        without.operations.erase(without.operations.begin() + static_cast<std::ptrdiff_t>(i));
        if (!HasEffect(smallest.operations[i]) && !IsExplained(without)) {
            smallest = std::move(without);
        }
    }
    return smallest;
}

} // namespace KAL_AUTO_Node
