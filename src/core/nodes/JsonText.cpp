#include "nodes/JsonText.h"

#include "platform/VisibleText.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace KAL_AUTO_Node {

namespace {

using Json = nlohmann::ordered_json;

bool IsPlain(char c) { return c >= ' ' && c <= '~' && c != '"' && c != '\\'; }

// Of the character that begins there, in a text that is UTF-8.
std::size_t LengthAt(std::string_view text, std::size_t at) {
    const auto lead = static_cast<unsigned char>(text[at]);
    return lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

char32_t CharacterAt(std::string_view text, std::size_t at, std::size_t length) {
    char32_t character = static_cast<unsigned char>(text[at]) & (length == 1 ? 0x7FU : 0xFFU >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
        character = character << 6U | (static_cast<unsigned char>(text[at + i]) & 0x3FU);
    }
    return character;
}

void AppendEscaped(std::string& json, char32_t character) {
    static constexpr std::string_view names = "btn?fr"; // from backspace on
    const auto name = static_cast<std::size_t>(character) - 8;
    json += '\\';
    if (character == '"' || character == '\\') {
        json += static_cast<char>(character);
    } else if (character >= 8 && name < names.size() && names[name] != '?') {
        json += names[name];
    } else {
        json += 'u';
        for (int shift = 12; shift >= 0; shift -= 4) {
            json += "0123456789abcdef"[character >> static_cast<unsigned>(shift) & 0xFU];
        }
    }
}

// What a reader's screen would obey stands there as its number.
void AppendQuoted(std::string& json, std::string_view text) {
    json += '"';
    // Nearly all are.
    if (std::ranges::all_of(text, IsPlain)) {
        json += text;
    } else {
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t length = LengthAt(text, at);
            const char32_t character = CharacterAt(text, at, length);
            if (character == '"' || character == '\\' || Steers(character)) {
                AppendEscaped(json, character);
            } else {
                json += text.substr(at, length);
            }
            at += length;
        }
    }
    json += '"';
}

void Write(JsonWriter& json, const Json& document) {
    switch (document.type()) {
    case Json::value_t::object:
        json.Begin('{');
        for (const auto& [name, value] : document.items()) {
            json.Name(name);
            Write(json, value);
        }
        json.End('}');
        break;
    case Json::value_t::array:
        json.Begin('[');
        for (const Json& item : document) {
            Write(json, item);
        }
        json.End(']');
        break;
    case Json::value_t::string:
        json.Value(std::string_view(document.get_ref<const std::string&>()));
        break;
    case Json::value_t::boolean:
        json.Value(document.get<bool>());
        break;
    case Json::value_t::number_unsigned:
        json.Value(document.get<std::uint64_t>());
        break;
    case Json::value_t::number_integer:
        json.Value(document.get<std::int64_t>());
        break;
    default: // nothing here has fractions
        json.Null();
    }
}

} // namespace

void AppendJsonText(std::string& json, std::string_view text) {
    if (IsUtf8(text)) {
        AppendQuoted(json, text);
    } else {
        json += std::string("{\"") + BytesMember + "\": \"" + DigitsOfBytes(text) + "\"}";
    }
}

bool IsUtf8(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const auto byte = [&](std::size_t i) {
            return at + i < text.size() ? static_cast<unsigned char>(text[at + i]) : 0U;
        };
        const unsigned lead = byte(0);
        const std::size_t length = lead < 0x80   ? 1
                                   : lead < 0xC2 ? 0
                                   : lead < 0xE0 ? 2
                                   : lead < 0xF0 ? 3
                                   : lead < 0xF5 ? 4
                                                 : 0;
        // What would have a shorter form, is half a surrogate pair, or lies beyond the last character.
        const unsigned low = lead == 0xE0 ? 0xA0U : lead == 0xF0 ? 0x90U : 0x80U;
        const unsigned high = lead == 0xED ? 0x9FU : lead == 0xF4 ? 0x8FU : 0xBFU;
        if (length == 0 || (length > 1 && (byte(1) < low || byte(1) > high))) {
            return false;
        }
        for (std::size_t i = 2; i < length; ++i) {
            if ((byte(i) & 0xC0U) != 0x80U) {
                return false;
            }
        }
        at += length;
    }
    return true;
}

std::string DigitsOfBytes(std::string_view bytes) {
    static constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (const char byte : bytes) {
        text += digits[static_cast<unsigned char>(byte) >> 4U];
        text += digits[static_cast<unsigned char>(byte) & 0xFU];
    }
    return text;
}

std::optional<std::string> BytesOfDigits(std::string_view digits) {
    static constexpr std::string_view all = "0123456789abcdef";
    std::string bytes;
    for (std::size_t at = 0; at < digits.size(); at += 2) {
        const auto high = all.find(digits[at]);
        const auto low = at + 1 < digits.size() ? all.find(digits[at + 1]) : std::string_view::npos;
        if (high == std::string_view::npos || low == std::string_view::npos) {
            return std::nullopt;
        }
        bytes += static_cast<char>(high << 4U | low);
    }
    return bytes;
}

std::string JsonText(const Json& document) {
    std::string text;
    JsonWriter json(text, JsonWriter::Layout::Lines);
    Write(json, document);
    return text;
}

} // namespace KAL_AUTO_Node
