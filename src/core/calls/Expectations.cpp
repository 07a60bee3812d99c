#include "calls/Expectations.h"

#include "platform/RuntimeError.h"

#include <algorithm>
#include <map>
#include <sstream>

namespace KAL_AUTO_Node {

namespace {

constexpr std::string_view Arrow = "->";

[[noreturn]] void Refuse(const std::string& what) {
    throw RuntimeError(ErrorNumber::InvalidProcedureCall, what);
}

std::vector<std::string> WordsOf(const std::string& text) {
    std::istringstream words(text);
    std::vector<std::string> all;
    for (std::string word; words >> word;) {
        all.push_back(std::move(word));
    }
    return all;
}

// A number of 16 bits. What names it.
std::int16_t Number(const std::string& word, const char* what) {
    const auto number = NodeNumberOf(word);
    if (!number) {
        Refuse('\'' + word + "' is no " + what);
    }
    return static_cast<std::int16_t>(*number);
}

// The name of a type may have blanks, the number comes last.
std::string Joined(std::span<const std::string> words) {
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : " ") + word;
    }
    return text;
}

void ReadStart(const std::string& text, const TypeNames& names, Expectation& expectation) {
    const auto words = WordsOf(text);
    if (words.size() < 4) {
        Refuse("it does not begin with CONFIG PARTITION AUTO NODE:");
    }
    expectation.partition = {Number(words[0], "configuration"), Number(words[1], "partition")};
    expectation.number = Number(words.back(), "node number");
    if (names.Meant(Joined(std::span(words).subspan(2, words.size() - 3))) != AutoType) {
        Refuse("it does not begin at an AUTO node");
    }
}

void ReadEnd(const std::string& text, const TypeNames& names, Expectation& expectation) {
    auto words = WordsOf(text);
    expectation.isNot = !words.empty() && words.front() == "not";
    if (expectation.isNot) {
        words.erase(words.begin());
    }
    if (words.empty()) {
        Refuse("it does not tell where the call has to get to");
    }
    if (words.size() > 1) {
        expectation.target = NodeNumberOf(words.back());
        if (expectation.target) {
            words.pop_back();
        }
    }
    expectation.typeID = names.Meant(Joined(words));
    const bool numberless =
        expectation.typeID == NumberlessType || expectation.typeID == NumberlessExceptionType;
    if (!expectation.target && !numberless) {
        Refuse("it lacks the number of the node that the call has to get to");
    }
}

} // namespace

std::optional<Expectation> ExpectationOf(const std::string& line, const TypeNames& names) {
    const auto first = line.find_first_not_of(" \t\r");
    if (first == std::string::npos || line[first] == '#') {
        return std::nullopt;
    }
    const auto colon = line.find(':');
    const auto arrow = line.find(Arrow, colon == std::string::npos ? 0 : colon);
    if (colon == std::string::npos || arrow == std::string::npos) {
        Refuse("it has not the form CONFIG PARTITION AUTO NODE: STEP... -> TYPE NUMBER");
    }
    Expectation expectation;
    ReadStart(line.substr(0, colon), names, expectation);
    expectation.steps = StepsOf(WordsOf(line.substr(colon + 1, arrow - colon - 1)), names);
    ReadEnd(line.substr(arrow + Arrow.size()), names, expectation);
    return expectation;
}

Judgement Judge(const CallMap& map, const Expectation& expectation) {
    const Walk walk = WalkFrom(map, expectation.number, expectation.steps);
    Judgement judgement;
    bool open = false;   // a way that may go on in steps that are left
    bool closed = false; // one that surely does not
    for (std::size_t i = 0; i + 1 < walk.size(); ++i) {
        if (expectation.steps[i].kind == Step::Kind::Choose) {
            continue;
        }
        for (const Stop& stop : walk[i]) {
            if (stop.end) {
                judgement.ended.push_back(stop.node);
                const bool goesOn = *stop.end == Reason::EntryTooLong || !map.WaysFrom(stop.node).empty();
                open = open || goesOn;
                closed = closed || !goesOn;
            }
        }
    }
    bool meant = false;
    bool other = closed;
    for (const Stop& stop : walk.back()) {
        judgement.reached.push_back(stop.node);
        const bool is = stop.node.typeID == expectation.typeID &&
                        stop.node.hasNumber == expectation.target.has_value() &&
                        stop.node.number == expectation.target.value_or(0);
        meant = meant || is;
        other = other || !is;
    }
    if (expectation.isNot) {
        std::swap(meant, other);
    }
    judgement.verdict = open || (meant && other) ? Verdict::Possible
                        : meant                  ? Verdict::Certain
                                                 : Verdict::Contradicted;
    return judgement;
}

void WriteExpectations(const CallMap& map, const TypeNames& names,
                       const std::function<void(const std::string& line)>& take) {
    const std::string place =
        std::to_string(map.partition.config) + ' ' + std::to_string(map.partition.number) + ' ';
    for (const auto& [number, node] : map.menus) {
        // The template is no menu that anybody calls.
        if (number == TemplateNumber) {
            continue;
        }
        const Menu& menu = node;
        const auto write = [&](const std::string& step, const Target& target) {
            // One that could not be read is for people.
            std::string line = names.Knows(target.typeID) ? "" : "# ";
            line += place;
            line += names.Name(AutoType) + ' ' + std::to_string(menu.Number());
            line += ": ";
            line += step;
            line += " -> ";
            line += names.Name(target.typeID);
            line += target.hasNumber ? ' ' + std::to_string(target.number) : "";
            take(line);
        };
        // For each action the first entry that leads to its node for certain.
        std::map<std::size_t, std::string> entries;
        for (const EntrySpan& span : SpansOf(menu)) {
            if (span.outcomes.IsCertain() && span.outcomes.ways.front().by == Outcome::By::Action) {
                entries.try_emplace(span.outcomes.ways.front().place, span.low);
            }
        }
        for (const auto& [action, entry] : entries) {
            write(entry, menu.ActionTarget(action));
        }
        for (std::size_t branch = 0; branch < Branches.size(); ++branch) {
            if (menu.Except(branch).IsCertain()) {
                write(StepName(branch), menu.ExceptionTarget(branch));
            }
        }
    }
}

} // namespace KAL_AUTO_Node
