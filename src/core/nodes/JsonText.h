#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>

namespace KAL_AUTO_Node {

// JSON is UTF-8, and texts of the store are whatever other programs have written: one that is no UTF-8 stands
// there as {"bytes": "4361fee9"}, two digits a byte.
inline constexpr const char* BytesMember = "bytes";

void AppendJsonText(std::string& json, std::string_view text);

[[nodiscard]] bool IsUtf8(std::string_view text);

// Two digits of base 16 a byte, and back; nothing for what are none.
[[nodiscard]] std::string DigitsOfBytes(std::string_view bytes);
[[nodiscard]] std::optional<std::string> BytesOfDigits(std::string_view digits);

// Writes JSON at the end of a text, which outlives it. What would steer a terminal stands there as its
// number.
class JsonWriter {
  public:
    // Without blanks, or in lines, indented by two blanks.
    enum class Layout { Tight, Lines };

    explicit JsonWriter(std::string& json, Layout layout = Layout::Tight) : json_(json), layout_(layout) {}

    // An object or an array, by its brackets; a member's value where its name was told before.
    void Begin(char bracket) {
        Separate();
        json_ += bracket;
        ++level_;
    }

    void End(char bracket) {
        --level_;
        if (!IsFirst()) {
            NewLine();
        }
        json_ += bracket;
    }

    // Of the value that follows. It is plain: neither quotes nor backslashes nor control characters.
    void Name(std::string_view name) {
        Separate();
        json_ += '"';
        json_ += name;
        json_ += layout_ == Layout::Lines ? "\": " : "\":";
        isNamed_ = true;
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
        AppendJsonText(json_, text);
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
    [[nodiscard]] bool IsFirst() const { return json_.ends_with('{') || json_.ends_with('['); }

    // What was written tells where a comma is due.
    void Separate() {
        if (isNamed_ || level_ == 0) {
            isNamed_ = false;
            return;
        }
        json_ += IsFirst() ? "" : ",";
        NewLine();
    }

    void NewLine() {
        if (layout_ == Layout::Lines) {
            json_ += '\n';
            json_.append(2 * level_, ' ');
        }
    }

    std::string& json_;
    Layout layout_;
    std::size_t level_ = 0;
    bool isNamed_ = false; // a name was written, and its value not yet
};

// The text of a document, in lines.
[[nodiscard]] std::string JsonText(const nlohmann::ordered_json& document);

} // namespace KAL_AUTO_Node
