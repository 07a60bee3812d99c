#pragma once

#include <concepts>
#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>

namespace KAL_AUTO_Node {

// JSON is UTF-8, and texts of the store are whatever other programs have written.
enum class NotUtf8 {
    Refuse,  // by throwing nlohmann::json::exception
    Replace, // bytes that are no UTF-8 become replacement characters
    Letters, // each byte of a text becomes the letter of its number; BytesOfLetters brings them back
};

void AppendJsonText(std::string& json, std::string_view text, NotUtf8 how);

[[nodiscard]] bool IsUtf8(std::string_view text);

// Two digits of base 16 a byte, and back; nothing for what are none.
[[nodiscard]] std::string DigitsOfBytes(std::string_view bytes);
[[nodiscard]] std::optional<std::string> BytesOfDigits(std::string_view digits);

[[nodiscard]] std::string BytesOfLetters(const std::string& letters);

// Writes JSON without blanks at the end of a text, which outlives it.
class JsonWriter {
  public:
    JsonWriter(std::string& json, NotUtf8 how) : json_(json), how_(how) {}

    // An object or an array, by its brackets; a member's value where its name was told before.
    void Begin(char bracket) {
        Separate();
        json_ += bracket;
    }

    void End(char bracket) { json_ += bracket; }

    // Of the value that follows. It is plain: neither quotes nor backslashes nor control characters.
    void Name(std::string_view name) {
        Separate();
        json_ += '"';
        json_ += name;
        json_ += "\":";
    }

    void Value(std::integral auto value) {
        Separate();
        if constexpr (std::same_as<decltype(value), bool>) {
            json_ += value ? "true" : "false";
        } else {
            json_ += std::to_string(value);
        }
    }

    void Value(std::string_view text) {
        Separate();
        AppendJsonText(json_, text, how_);
    }

    template <class Kind>
    void Value(const std::optional<Kind>& value) {
        if (value) {
            Value(*value);
        } else {
            Null();
        }
    }

    void Null() {
        Separate();
        json_ += "null";
    }

    void Member(std::string_view name, const auto& value) {
        Name(name);
        Value(value);
    }

  private:
    // What was written tells where a comma is due.
    void Separate() {
        if (!json_.empty() && std::string_view("{[:").find(json_.back()) == std::string_view::npos) {
            json_ += ',';
        }
    }

    std::string& json_;
    NotUtf8 how_;
};

// The text of a document, lines indented. Bytes that are no UTF-8 become replacement characters.
[[nodiscard]] std::string JsonText(const nlohmann::ordered_json& document);

} // namespace KAL_AUTO_Node
