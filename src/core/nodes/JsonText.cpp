#include "nodes/JsonText.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace KAL_AUTO_Node {

namespace {

using Json = nlohmann::ordered_json;

bool IsPlain(char c) { return c >= ' ' && c <= '~' && c != '"' && c != '\\'; }

std::string LettersOf(std::string_view bytes) {
    std::string letters;
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        if (value < 0x80) {
            letters += byte;
        } else {
            letters += static_cast<char>(0xC0 | value >> 6);
            letters += static_cast<char>(0x80 | (value & 0x3F));
        }
    }
    return letters;
}

} // namespace

void AppendJsonText(std::string& json, std::string_view text, NotUtf8 how) {
    // Nearly all are, and a document for each would cost more than the rest.
    if (std::ranges::all_of(text, IsPlain)) {
        json += '"';
        json += text;
        json += '"';
        return;
    }
    const auto onError =
        how == NotUtf8::Replace ? Json::error_handler_t::replace : Json::error_handler_t::strict;
    json += Json(how == NotUtf8::Letters ? LettersOf(text) : std::string(text)).dump(-1, ' ', false, onError);
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

std::string BytesOfLetters(const std::string& letters) {
    std::string bytes;
    unsigned lead = 0;
    for (const char byte : letters) {
        const auto value = static_cast<unsigned char>(byte);
        if (value >= 0xC0) {
            lead = value;
        } else {
            bytes += value < 0x80 ? byte : static_cast<char>(lead << 6 | (value & 0x3F));
        }
    }
    return bytes;
}

std::string JsonText(const Json& document) {
    return document.dump(2, ' ', false, Json::error_handler_t::replace);
}

} // namespace KAL_AUTO_Node
