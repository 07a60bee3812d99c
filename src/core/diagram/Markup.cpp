#include "diagram/Markup.h"

#include "platform/VisibleText.h"
#include "platform/WholeNumber.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

// A longer text, or line, hides the rest of the picture.
constexpr std::size_t TextLimit = 60;
constexpr std::size_t LineLimit = 24;

bool BeginsCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; }

// The first characters of a text, so many at most.
std::string_view FirstCharacters(std::string_view text, std::size_t limit) {
    std::size_t characters = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (BeginsCharacter(text[i]) && ++characters > limit) {
            return text.substr(0, i);
        }
    }
    return text;
}

// Whether a digit sequence comes directly after another of its length.
bool Follows(const std::string& first, const std::string& second) {
    const auto low = WholeNumber<std::uint64_t>(first);
    const auto high = WholeNumber<std::uint64_t>(second);
    return low && high && first.size() == second.size() && *high == *low + 1;
}

} // namespace

std::string Shortened(std::string_view text, std::size_t characters) {
    // Bytes that begin no character count, too, so that a text of nothing else has an end.
    const std::string_view head = text.substr(0, characters * 4);
    const std::string visible = Visible(FirstCharacters(head, characters));
    const std::string_view shown = FirstCharacters(visible, characters);
    std::string shortened(shown);
    if (FirstCharacters(text, characters).size() < text.size() || shown.size() < visible.size()) {
        shortened += "…";
    }
    return shortened;
}

std::string Escaped(std::string_view text) {
    // The last two are characters to the system, but not to the reader of the markup.
    static constexpr std::pair<std::string_view, std::string_view> escapes[] = {
        {"&", "&amp;"},   {"<", "&lt;"},         {">", "&gt;"},
        {"\"", "&quot;"}, {"\uFFFE", "\\ufffe"}, {"\uFFFF", "\\uffff"}};
    std::string markup;
    markup.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t next = std::min(text.size(), text.find_first_of("&<>\"\xEF", at));
        markup += text.substr(at, next - at);
        at = next;
        if (at == text.size()) {
            break;
        }
        const auto* const escape = std::ranges::find_if(
            escapes, [&](const auto& one) { return text.substr(at).starts_with(one.first); });
        const bool isEscaped = escape != std::end(escapes);
        markup += isEscaped ? escape->second : text.substr(at, 1);
        at += isEscaped ? escape->first.size() : 1;
    }
    return markup;
}

std::string Markup(std::string_view text) {
    std::string markup = Escaped(Shortened(text, TextLimit));
    // dot puts names in for \N and the like, in markup, too.
    for (std::size_t at = 0; (at = markup.find('\\', at)) != std::string::npos; at += 2) {
        markup.insert(at, 1, '\\');
    }
    return markup;
}

std::string Markup(std::string_view name, std::string_view label) {
    std::string text = Markup(name);
    if (!label.empty()) {
        text += ' ';
        text += Markup(label);
    }
    return text;
}

std::string EntriesMarkup(const std::vector<std::string>& entries) {
    std::string markup;
    std::size_t width = 0; // of the line
    for (std::size_t i = 0; i < entries.size(); ++i) {
        std::string entry = entries[i];
        while (i + 1 < entries.size() && Follows(entries[i], entries[i + 1])) {
            ++i;
        }
        if (entry != entries[i]) {
            entry += '-';
            entry += entries[i];
        }
        if (i + 1 < entries.size()) {
            entry += ',';
        }
        if (width > 0) {
            const bool fits = width + entry.size() < LineLimit;
            markup += fits ? " " : "<BR/>";
            width = fits ? width + 1 : 0;
        }
        width += entry.size();
        markup += Markup(entry);
    }
    return markup;
}

std::string LinesMarkup(const std::vector<std::string>& lines, std::size_t limit) {
    // A line that says that one more follows could as well be that one.
    const std::size_t count = lines.size() > limit + 1 ? limit : lines.size();
    std::string markup;
    for (std::size_t i = 0; i < count; ++i) {
        markup += i > 0 ? "<BR/>" : "";
        markup += lines[i];
    }
    if (count < lines.size()) {
        markup += "<BR/>and ";
        markup += std::to_string(lines.size() - count);
        markup += " more";
    }
    return markup;
}

std::string RowMarkup(const std::string& text, const char* fill, const std::string& place) {
    if (text.empty()) {
        return "";
    }
    std::string row = R"(<TR><TD ALIGN="LEFT" BALIGN="LEFT")";
    if (fill != nullptr) {
        row += std::string(" BGCOLOR=\"") + fill + '"';
    }
    if (!place.empty()) {
        row += " HREF=\"#" + place + '"';
    }
    return row += '>' + text + "</TD></TR>";
}

} // namespace KAL_AUTO_Node
