#include "platform/FoldCase.h"

#include <algorithm>
#include <cwchar>
#include <cwctype>
#include <locale>

namespace KAL_AUTO_Node {

namespace {

using Converter = std::codecvt<char32_t, char8_t, std::mbstate_t>;

// Its letters are all of Unicode's, whatever language the process runs in.
locale_t Letters() {
    static const locale_t letters = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    return letters;
}

constexpr char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

} // namespace

std::string FoldAscii(std::string_view text) {
    std::string folded(text);
    std::ranges::transform(folded, folded.begin(), Lower);
    return folded;
}

bool SameInAscii(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::ranges::equal(a, b, {}, Lower, Lower);
}

std::string FoldCase(std::string_view text) {
    const auto isAscii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
    if (std::ranges::all_of(text, isAscii) || Letters() == nullptr) {
        return FoldAscii(text);
    }
    const auto& converter = std::use_facet<Converter>(std::locale::classic());
    const std::u8string bytes(text.begin(), text.end());
    std::u32string characters(bytes.size(), U'\0');
    std::mbstate_t state{};
    const char8_t* read = nullptr;
    char32_t* decoded = nullptr;
    if (converter.in(state, bytes.data(), bytes.data() + bytes.size(), read, characters.data(),
                     characters.data() + characters.size(), decoded) != Converter::ok) {
        return FoldAscii(text);
    }
    characters.resize(static_cast<std::size_t>(decoded - characters.data()));
    // The converter lets halves of surrogate pairs pass.
    if (std::ranges::any_of(characters, [](char32_t c) { return c >= 0xD800 && c <= 0xDFFF; })) {
        return FoldAscii(text);
    }
    for (char32_t& character : characters) {
        character = static_cast<char32_t>(towlower_l(static_cast<wint_t>(character), Letters()));
    }
    std::u8string folded(characters.size() * 4, u8'\0');
    state = {};
    const char32_t* written = nullptr;
    char8_t* encoded = nullptr;
    converter.out(state, characters.data(), characters.data() + characters.size(), written, folded.data(),
                  folded.data() + folded.size(), encoded);
    return {folded.data(), encoded};
}

} // namespace KAL_AUTO_Node
