// Nodes as any program may have stored them: the history's text brings them back, and no difference between
// two is left out.

#include "fuzz/Examine.h"
#include "history/NodeContent.h"

#include <algorithm>
#include <fuzzer/FuzzedDataProvider.h>
#include <iterator>

namespace KAL_AUTO_Node {

namespace {

class Source {
  public:
    explicit Source(std::string_view input)
        : bytes_(reinterpret_cast<const std::uint8_t*>(input.data()), input.size()) {}

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

    // A node with a few of its parts changed, or changed into what they were.
    AutoNode Changed(AutoNode node) {
        while (bytes_.ConsumeBool()) {
            switch (bytes_.ConsumeIntegralInRange(0, 5)) {
            case 0:
                node.label = OptionalText();
                break;
            case 1:
                node.settings.terminatingDigit = OptionalText();
                break;
            case 2:
                node.settings.*bytes_.PickValueInArray(SettingValues) = Setting();
                break;
            case 3:
                node.branches[bytes_.ConsumeIntegralInRange<std::size_t>(0, node.branches.size() - 1)] =
                    Target();
                break;
            case 4:
                ChangeRows(node.prompts, [this](Prompt& prompt) { prompt.target = Target(); });
                break;
            default:
                ChangeRows(node.actions, [this](Action& action) {
                    if (bytes_.ConsumeBool()) {
                        (bytes_.ConsumeBool() ? action.low : action.high) = OptionalText();
                    } else {
                        action.target = Target();
                    }
                });
            }
        }
        return node;
    }

  private:
    static constexpr std::optional<std::int64_t> Settings::*SettingValues[] = {
        &Settings::numberOfDigits, &Settings::retryLimit, &Settings::selectionTimeout,
        &Settings::digitTimeout};

    template <class Row, class ChangeRow>
    void ChangeRows(std::vector<Row>& rows, ChangeRow change) {
        if (rows.empty()) {
            return;
        }
        const auto any = [&] {
            return rows.begin() + bytes_.ConsumeIntegralInRange<std::ptrdiff_t>(0, std::ssize(rows) - 1);
        };
        switch (bytes_.ConsumeIntegralInRange(0, 3)) {
        case 0:
            rows.erase(any());
            break;
        case 1:
            rows.push_back(Row(*any()));
            break;
        case 2:
            std::iter_swap(any(), any());
            break;
        default:
            change(*any());
        }
    }

    std::string Text() { return bytes_.ConsumeRandomLengthString(12); }

    // Often one of few, so that two of them are alike or easily taken for one another.
    std::optional<std::string> OptionalText() {
        constexpr const char* known[] = {"none", "0", "1", "1-2", "\"", ""};
        const auto kind = bytes_.ConsumeIntegralInRange<std::size_t>(0, std::size(known) + 1);
        if (kind < std::size(known)) {
            return known[kind];
        }
        return kind == std::size(known) ? std::optional(Text()) : std::nullopt;
    }

    std::optional<std::int64_t> Setting() {
        return bytes_.ConsumeBool() ? std::optional(bytes_.ConsumeIntegral<std::int64_t>()) : std::nullopt;
    }

    Reference Target() { return {bytes_.ConsumeIntegral<int>(), Text(), bytes_.ConsumeIntegral<int>(), {}}; }

    // Few, so that input is left for what changes.
    int Rows() { return bytes_.ConsumeIntegralInRange(0, 3); }

    AutoNode Node() {
        AutoNode node{
            Text(), OptionalText(), {Setting(), OptionalText(), Setting(), Setting(), Setting()}, {}, {}, {}};
        for (auto& branch : node.branches) {
            branch = Target();
        }
        for (int rows = Rows(); rows > 0; --rows) {
            node.prompts.push_back({bytes_.ConsumeIntegral<int>(), Target()});
        }
        for (int rows = Rows(); rows > 0; --rows) {
            node.actions.push_back({bytes_.ConsumeIntegral<int>(), Target(), OptionalText(), OptionalText()});
        }
        return node;
    }

    FuzzedDataProvider bytes_;
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
    // One or the other, as the text takes far longer.
    const bool examinesText = input.starts_with('T');
    Source source(input);
    const NodeContent content = source.Content();
    if (examinesText) {
        const std::string text = TextOf({{1, 2}, 3}, content);
        Require(ContentOf(text) == content, "a content comes back equal");
        Require(TextOf({{1, 2}, 3}, ContentOf(text)) == text, "what comes back has the same text");
    } else if (content.node) {
        const AutoNode& before = *content.node;
        const AutoNode after = source.Changed(before);
        const bool same = WithoutSequences(before) == WithoutSequences(after);
        Require(Differences(before, after).empty() == same, "each difference is told, and none besides");
    }
}

} // namespace KAL_AUTO_Node
