// Nodes as any program may have stored them: the history's text brings them back, and no difference between
// two is left out.

#include "fuzz/Examine.h"
#include "fuzz/Utf8.h"
#include "history/NodeContent.h"

#include <fuzzer/FuzzedDataProvider.h>

namespace KAL_AUTO_Node {

namespace {

class Source {
  public:
    explicit Source(std::string_view input)
        : bytes_(reinterpret_cast<const std::uint8_t*>(input.data()), input.size()) {}

    [[nodiscard]] bool AllUtf8() const { return allUtf8_; }

    NodeContent Content() {
        NodeContent content;
        if (bytes_.ConsumeBool()) {
            content.node = Node();
        }
        if (bytes_.ConsumeBool()) {
            content.entry = {Text(), OptionalText(), OptionalText()};
        }
        return content;
    }

  private:
    std::string Text() {
        std::string text = bytes_.ConsumeRandomLengthString(12);
        allUtf8_ = allUtf8_ && IsUtf8(text);
        return text;
    }

    std::optional<std::string> OptionalText() {
        return bytes_.ConsumeBool() ? std::optional(Text()) : std::nullopt;
    }

    std::optional<std::int64_t> Setting() {
        return bytes_.ConsumeBool() ? std::optional(bytes_.ConsumeIntegral<std::int64_t>()) : std::nullopt;
    }

    Reference Target() { return {bytes_.ConsumeIntegral<int>(), Text(), bytes_.ConsumeIntegral<int>(), {}}; }

    AutoNode Node() {
        AutoNode node{
            Text(), OptionalText(), {Setting(), OptionalText(), Setting(), Setting(), Setting()}, {}, {}, {}};
        for (auto& branch : node.branches) {
            branch = Target();
        }
        while (bytes_.ConsumeBool()) {
            node.prompts.push_back({bytes_.ConsumeIntegral<int>(), Target()});
        }
        while (bytes_.ConsumeBool()) {
            node.actions.push_back({bytes_.ConsumeIntegral<int>(), Target(), OptionalText(), OptionalText()});
        }
        return node;
    }

    FuzzedDataProvider bytes_;
    bool allUtf8_ = true;
};

AutoNode WithoutSequences(AutoNode node) {
    for (Prompt& prompt : node.prompts) {
        prompt.sequence = 0;
    }
    for (Action& action : node.actions) {
        action.sequence = 0;
    }
    return node;
}

} // namespace

void Examine(std::string_view input) {
    Source source(input);
    const NodeContent before = source.Content();
    const NodeContent after = source.Content();
    const std::string text = TextOf({1, 2}, 3, before);
    const NodeContent back = ContentOf(text);
    Require(!source.AllUtf8() || back == before, "a content comes back equal");
    Require(TextOf({1, 2}, 3, back) == text, "what comes back has the same text");
    if (before.node && after.node) {
        Require(Differences(*before.node, *before.node).empty(), "a node is like itself");
        const bool same = WithoutSequences(*before.node) == WithoutSequences(*after.node);
        Require(Differences(*before.node, *after.node).empty() == same, "each difference is told");
    }
}

} // namespace KAL_AUTO_Node
