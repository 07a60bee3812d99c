// Texts without case, and the list that is searched by them: its last line is searched for among the others.

#include "platform/FoldCase.h"

#include "fuzz/Examine.h"
#include "fuzz/Utf8.h"
#include "nodes/ScratchList.h"

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

void ExamineSearch(ScratchList& list, std::string_view text) {
    const std::string folded = FoldCase(text);
    const auto foldedEntry = [&](std::size_t index) { return FoldCase(list.List(index)); };
    std::optional<std::size_t> equal;
    bool begins = false;
    for (std::size_t i = list.ListCount(); i-- > 0;) {
        if (foldedEntry(i) == folded) {
            equal = i;
        }
        begins = begins || foldedEntry(i).starts_with(folded);
    }
    Require(list.FindStringExact(text) == equal, "the first equal entry is found");
    const auto found = list.FindString(text);
    Require(found.has_value() == begins, "an entry that begins so is found where there is one");
    Require(!found || foldedEntry(*found).starts_with(folded), "what is found begins so");
}

} // namespace

void Examine(std::string_view input) {
    ExamineFold(input);
    ScratchList searchedOnce;
    ScratchList searchedMeanwhile;
    while (true) {
        const auto end = input.find('\n');
        const std::string_view line = input.substr(0, end);
        ExamineSearch(searchedMeanwhile, line);
        if (end == std::string_view::npos) {
            ExamineSearch(searchedOnce, line);
            return;
        }
        searchedOnce.AddItem(std::string(line));
        searchedMeanwhile.AddItem(std::string(line));
        input.remove_prefix(end + 1);
    }
}

} // namespace KAL_AUTO_Node
