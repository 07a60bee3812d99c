#pragma once

#include "calls/DigitSpace.h"
#include "calls/Target.h"
#include "nodes/AutoNode.h"

#include <array>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

// Why a step has several outcomes, or what else is to be said of it, or why a way ends.
enum class Reason : std::size_t {
    SeveralActions,
    NoAction,
    AskedAgain,
    RangeUnclear,
    SettingUnclear,
    LongerEntry,
    Terminator,
    NotFollowed,
    MissingNode,
    NoTarget,
    EntryTooLong,
};

struct ReasonText {
    const char* code; // stays as it is: programs read it
    const char* meaning;
};

inline constexpr std::array<ReasonText, 11> ReasonTexts = {{
    {"several-actions",
     "Several actions hold the entry, and lead to different nodes; which of them wins is not known."},
    {"no-action",
     "No action holds the entry, and callers may be asked again before the call goes to Invalid."},
    {"asked-again", "Nothing is entered, and callers may be asked again before the call goes to Timeout."},
    {"range-unclear",
     "An action whose ends differ in length, or are missing or not of digits, may hold the entry."},
    {"setting-unclear",
     "The number of digits, or the terminating digit, is not stored or has none of its values."},
    {"longer-entry",
     "The entry begins a longer one that an action holds, so that the call waits for more digits."},
    {"terminator", "The key ends an entry, and is pressed alone: it may be taken as itself, or as no entry."},
    {"not-followed", "A node of another type: which way the call goes on from it is not known here."},
    {"missing-node", "The node does not exist."},
    {"no-target", "The reference is to no node; what the call does then is not known."},
    {"entry-too-long", "The node takes fewer digits than the entry has."},
}};

[[nodiscard]] constexpr const ReasonText& TextOf(Reason reason) {
    return ReasonTexts[static_cast<std::size_t>(reason)];
}

// Where a step may lead.
struct Outcome {
    enum class By { Action, Exception, Again };

    Target target; // the node itself where callers are asked again
    By by = By::Action;
    std::size_t place = 0; // of the action, or among the exceptions, by position from 0

    // To callers it is the same, by whatever they get there.
    [[nodiscard]] bool IsLike(const Outcome& other) const {
        return (by == By::Again) == (other.by == By::Again) && target == other.target;
    }

    friend bool operator==(const Outcome&, const Outcome&) = default;
};

struct Outcomes {
    std::vector<Outcome> ways;   // none like another
    std::size_t more = 0;        // of further ways, where not all are listed
    std::vector<Reason> reasons; // each once

    [[nodiscard]] bool IsCertain() const { return ways.size() + more == 1; }

    [[nodiscard]] bool Has(Reason reason) const {
        return std::ranges::find(reasons, reason) != reasons.end();
    }

    friend bool operator==(const Outcomes&, const Outcomes&) = default;
};

// An AUTO node as callers meet it. What the store does not decide is not decided here: each of its readings
// is an outcome.
class Menu {
  public:
    Menu(int number, AutoNode node);

    [[nodiscard]] int Number() const { return number_; }

    [[nodiscard]] const AutoNode& Node() const { return node_; }

    [[nodiscard]] Target Itself() const { return {AutoType, number_, true, node_.type}; }

    [[nodiscard]] EntryLength Entries() const { return entries_; }

    [[nodiscard]] std::span<const DigitRange> Ranges() const { return ranges_; }

    // Whether callers may be asked again after nothing or something that no action holds.
    [[nodiscard]] bool MayAskAgain() const { return node_.settings.retryLimit != 0; }

    // Whether callers can end an entry by a key, so that none has to wait.
    [[nodiscard]] bool HasTerminator() const { return TerminatingDigitOf(node_.settings) != 0; }

    [[nodiscard]] Target ActionTarget(std::size_t action) const {
        return TargetOf(node_.actions[action].target, Slot::Actions);
    }

    [[nodiscard]] Target ExceptionTarget(std::size_t branch) const {
        return TargetOf(node_.branches.at(branch), Branches.at(branch).slot);
    }

    // Of 1 to as many digits as the node takes.
    [[nodiscard]] Outcomes Enter(const std::string& digits) const;
    // Of all entries of an interval of the node's digit space; the first of them where they are many.
    [[nodiscard]] Outcomes Enter(int length, const DigitInterval& interval) const;
    // By the exception's position.
    [[nodiscard]] Outcomes Except(std::size_t branch) const;

  private:
    struct Holders;

    [[nodiscard]] Outcomes Combine(const Holders& holders) const;
    void AddNoEntry(Outcomes& outcomes, std::size_t branch, Reason reason) const;

    int number_;
    AutoNode node_;
    EntryLength entries_;
    std::vector<DigitRange> ranges_;
};

// The prompts of a node that callers hear, in their order; EMPTY ones they do not.
[[nodiscard]] std::vector<Target> PlayedBy(const AutoNode& node);

// Entries next to one another that lead to the same.
struct EntrySpan {
    std::string low;
    std::string high;
    Outcomes outcomes;
};

// All entries that a node takes, by length and in order.
[[nodiscard]] std::vector<EntrySpan> SpansOf(const Menu& menu);

// In words: "MSG 31", "nowhere (Invalid, or the menu again)". Of a step that is an exception, by its
// position. Targets may be told in another way.
[[nodiscard]] std::string TextOf(const Outcomes& outcomes, std::optional<std::size_t> branch = std::nullopt,
                                 const std::function<std::string(const Target&)>& nameOf = &Target::Text);

} // namespace KAL_AUTO_Node
