// Texts without case, and the names that are collected without regard to it, a line each.

#include "platform/FoldCase.h"

#include "fuzz/Examine.h"
#include "fuzz/Utf8.h"
#include "nodes/RequiredNodes.h"

#include <algorithm>

namespace KAL_AUTO_Node {

namespace {

void ExamineFold(std::string_view text) {
    const std::string folded = FoldCase(text);
    Require(FoldCase(folded) == folded, "a folded text stays as it is");
    Require(FoldCase(FoldAscii(text)) == folded, "the case of ASCII letters makes no difference");
    const auto before = CharactersOf(text);
    const auto after = CharactersOf(folded);
    Require(before.has_value() == after.has_value(), "a folded text is UTF-8 where the text is");
    Require(!before || before->size() == after->size(), "each character has its own");
    Require(before || folded == FoldAscii(text), "other bytes stay as they are");
}

void ExamineCollecting(RequiredNodes& required, std::string_view line) {
    const std::size_t before = required.Nodes().size();
    const bool begins = std::ranges::any_of(required.Nodes(), [&](const RequiredNode& node) {
        return FoldCase(node.name).starts_with(FoldCase(line));
    });
    required.Add(std::string(line), {AutoType, 1});
    Require((required.Nodes().size() == before) == begins, "a name that another begins with stands for it");
}

} // namespace

void Examine(std::string_view input) {
    ExamineFold(input);
    RequiredNodes required;
    while (true) {
        const auto end = input.find('\n');
        ExamineCollecting(required, input.substr(0, end));
        if (end == std::string_view::npos) {
            return;
        }
        input.remove_prefix(end + 1);
    }
}

} // namespace KAL_AUTO_Node
