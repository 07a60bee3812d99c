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
