#include "platform/VisibleText.h"

#include <algorithm>
#include <array>
#include <clocale>
#include <cstdio>
#include <cwchar>
#include <optional>

namespace KAL_AUTO_Node {

namespace {

// The letters of all languages, for as long as it lives, whatever the process's own locale is.
class Utf8Letters {
  public:
    Utf8Letters() : before_(Letters() != nullptr ? uselocale(Letters()) : nullptr) {}

    ~Utf8Letters() {
        if (before_ != nullptr) {
            uselocale(before_);
        }
    }

    Utf8Letters(const Utf8Letters&) = delete;
    Utf8Letters& operator=(const Utf8Letters&) = delete;

  private:
    // Made once: reading a locale takes longer than all else that is done with a text here.
    static locale_t Letters() {
        static const locale_t letters = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
        return letters;
    }

    locale_t before_;
};

// Half a surrogate pair, or beyond the last: the C library decodes them, others take their bytes for none.
bool IsNoCharacter(wchar_t code) { return (code >= 0xD800 && code <= 0xDFFF) || code > 0x10FFFF; }

// Calls with each character's bytes and its code; a byte that begins no character is one by itself, with
// the code WEOF.
template <class Take>
void ForEachCharacter(std::string_view text, Take take) {
    std::optional<Utf8Letters> letters;
    std::mbstate_t state{};
    while (!text.empty()) {
        // Most texts have no others, for which a locale would be read.
        if (const auto byte = static_cast<unsigned char>(text.front()); byte < 0x80) {
            take(text.substr(0, 1), wint_t{byte});
            text.remove_prefix(1);
            continue;
        }
        if (!letters) {
            letters.emplace();
        }
        wchar_t character = 0;
        const std::size_t length = std::mbrtowc(&character, text.data(), text.size(), &state);
        if (length > text.size() || IsNoCharacter(character)) {
            state = {};
            take(text.substr(0, 1), WEOF);
            text.remove_prefix(1);
        } else {
            take(text.substr(0, length), static_cast<wint_t>(character));
            text.remove_prefix(length);
        }
    }
}

bool TurnsDirection(char32_t character) {
    return (character >= 0x202A && character <= 0x202E) || (character >= 0x2066 && character <= 0x2069) ||
           character == 0x200E || character == 0x200F || character == 0x061C;
}

bool SteersTerminal(char32_t character) {
    return character < 0x20 || (character >= 0x7F && character < 0xA0) || character == 0x2028 ||
           character == 0x2029;
}

std::string Escaped(const char* format, unsigned code) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), format, code);
    return text.data();
}

} // namespace

bool Steers(char32_t character) { return SteersTerminal(character) || TurnsDirection(character); }

std::string Visible(std::string_view text) {
    std::string visible;
    ForEachCharacter(text, [&](std::string_view bytes, wint_t character) {
        if (character == WEOF) {
            visible += Escaped("\\x%02x", static_cast<unsigned char>(bytes.front()));
        } else if (Steers(character)) {
            visible += Escaped(character < 0x100 ? "\\x%02x" : "\\u%04x", character);
        } else {
            visible += bytes;
        }
    });
    return visible;
}

std::string VisibleLines(std::string_view text) {
    std::string visible;
    for (;;) {
        const auto end = text.find('\n');
        std::string_view line = text.substr(0, end);
        if (line.ends_with('\r') && end != std::string_view::npos) {
            line.remove_suffix(1);
        }
        visible += Visible(line);
        if (end == std::string_view::npos) {
            return visible;
        }
        visible += '\n';
        text.remove_prefix(end + 1);
    }
}

std::size_t DisplayWidth(std::string_view text) {
    std::size_t width = 0;
    ForEachCharacter(text, [&](std::string_view, wint_t character) {
        width += static_cast<std::size_t>(std::max(0, wcwidth(static_cast<wchar_t>(character))));
    });
    return width;
}

} // namespace KAL_AUTO_Node
