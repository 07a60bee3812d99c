#include "diagram/Markup.h"

#include "platform/VisibleText.h"
#include "platform/WholeNumber.h"

#include <algorithm>
#include <cstdint>
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

void Replace(std::string& text, std::string_view what, std::string_view by) {
    for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += by.size()) {
        text.replace(at, what.size(), by);
    }
}

// Whether a digit sequence comes directly after another of its length.
bool Follows(const std::string& first, const std::string& second) {
    const auto low = WholeNumber<std::uint64_t>(first);
    const auto high = WholeNumber<std::uint64_t>(second);
    return low && high && first.size() == second.size() && *high == *low + 1;
}

} // namespace

std::string Markup(std::string_view text) {
    // Bytes that begin no character count, too, so that a text of nothing else has an end.
    const std::string_view head = text.substr(0, TextLimit * 4);
    const std::string visible = Visible(FirstCharacters(head, TextLimit));
    const std::string_view shown = FirstCharacters(visible, TextLimit);
    std::string markup(shown);
    if (FirstCharacters(text, TextLimit).size() < text.size() || shown.size() < visible.size()) {
        markup += "…";
    }
    Replace(markup, "&", "&amp;");
    Replace(markup, "<", "&lt;");
    Replace(markup, ">", "&gt;");
    Replace(markup, "\"", "&quot;");
    // Characters to the system, but not to the reader of the markup.
    Replace(markup, "\uFFFE", "\\ufffe");
    Replace(markup, "\uFFFF", "\\uffff");
    // dot puts names in for \N and the like, in markup, too.
    Replace(markup, "\\", "\\\\");
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
