#include "platform/RegistryExport.h"

#include "platform/FoldCase.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cwchar>
#include <limits>
#include <locale>
#include <system_error>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

constexpr std::string_view Blanks = " \t";

std::string_view Trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(Blanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(Blanks) - first + 1);
}

bool TakePrefix(std::string_view& text, std::string_view prefix) {
    if (!text.starts_with(prefix)) {
        return false;
    }
    text.remove_prefix(prefix.size());
    return true;
}

// The UTF-8 of little-endian UTF-16. Half a surrogate pair becomes a replacement character; a last odd byte
// is no character and left out.
std::string FromUtf16(std::string_view bytes) {
    std::u16string units(bytes.size() / 2, u'\0');
    for (std::size_t at = 0; at < units.size(); ++at) {
        const auto low = static_cast<unsigned char>(bytes[2 * at]);
        const auto high = static_cast<unsigned char>(bytes[2 * at + 1]);
        units[at] = static_cast<char16_t>(low | high << 8);
    }
    using Utf16 = std::codecvt<char16_t, char8_t, std::mbstate_t>;
    const auto& converter = std::use_facet<Utf16>(std::locale::classic());
    std::string text;
    const char16_t* from = units.data();
    const char16_t* const end = from + units.size();
    while (from != end) {
        std::array<char8_t, 4096> part{};
        char8_t* partEnd = part.data();
        std::mbstate_t state{};
        const auto result =
            converter.out(state, from, end, from, part.data(), part.data() + part.size(), partEnd);
        text.append(part.data(), partEnd);
        if (result == Utf16::error || partEnd == part.data()) {
            text += "\uFFFD";
            ++from;
        }
    }
    return text;
}

std::string Decoded(std::string_view text) {
    if (TakePrefix(text, "\xFF\xFE")) {
        return FromUtf16(text);
    }
    TakePrefix(text, "\xEF\xBB\xBF");
    return std::string(text);
}

// The lines of a text, read one after the other, without their ends and outer blanks.
class Lines {
  public:
    explicit Lines(std::string_view text) : rest_(text) {}

    [[nodiscard]] bool AtEnd() const { return rest_.empty(); }

    [[nodiscard]] std::string_view Next() const {
        std::string_view line = rest_.substr(0, rest_.find('\n'));
        if (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        return Trimmed(line);
    }

    std::string_view Take() {
        const std::string_view line = Next();
        const auto end = rest_.find('\n');
        rest_ = end == std::string_view::npos ? std::string_view() : rest_.substr(end + 1);
        return line;
    }

  private:
    std::string_view rest_;
};

// Takes a quoted text off the beginning; nothing where the closing quotation mark is missing. An export
// escapes only backslashes and quotation marks, so a backslash before anything else stands for itself.
std::optional<std::string> TakeQuoted(std::string_view& text) {
    std::string quoted;
    for (std::size_t at = 1; at < text.size(); ++at) {
        if (text[at] == '"') {
            text.remove_prefix(at + 1);
            return quoted;
        }
        const bool escape = text[at] == '\\' && at + 1 < text.size();
        if (escape && (text[at + 1] == '\\' || text[at + 1] == '"')) {
            ++at;
        }
        quoted += text[at];
    }
    return std::nullopt;
}

std::string_view WithoutComment(std::string_view unquoted) {
    return Trimmed(unquoted.substr(0, unquoted.find(';')));
}

std::optional<std::uint32_t> HexNumber(std::string_view digits, std::uint32_t maximum) {
    std::uint32_t number = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, failure] = std::from_chars(digits.data(), end, number, 16);
    if (failure != std::errc() || stop != end || number > maximum) {
        return std::nullopt;
    }
    return number;
}

// The bytes of hex data: hex numbers, separated by commas.
std::optional<std::string> HexBytes(std::string_view list) {
    std::string bytes;
    if (Trimmed(list).empty()) {
        return bytes;
    }
    while (true) {
        const auto comma = list.find(',');
        const auto byte =
            HexNumber(Trimmed(list.substr(0, comma)), std::numeric_limits<unsigned char>::max());
        if (!byte) {
            return std::nullopt;
        }
        bytes += static_cast<char>(*byte);
        if (comma == std::string_view::npos) {
            return bytes;
        }
        list.remove_prefix(comma + 1);
    }
}

// The whole of hex data that begins with this part of its line: a backslash at the end continues it on the
// next one. Nothing where the data breaks off; the line found instead is left to be read for itself.
std::optional<std::string> WithContinuations(std::string_view part, Lines& lines) {
    static constexpr std::string_view HexData = "0123456789ABCDEFabcdef, \t\\";
    std::string whole;
    for (part = WithoutComment(part); part.ends_with('\\'); part = WithoutComment(lines.Take())) {
        part.remove_suffix(1);
        whole += part;
        while (lines.Next().starts_with(';')) {
            lines.Take();
        }
        const std::string_view next = WithoutComment(lines.Next());
        if (next.empty() || next.find_first_not_of(HexData) != std::string_view::npos) {
            return std::nullopt;
        }
    }
    whole += part;
    return whole;
}

std::string LittleEndian(std::uint32_t number) {
    std::string bytes;
    for (int shift = 0; shift < 32; shift += 8) {
        bytes += static_cast<char>(number >> shift & 0xFF);
    }
    return bytes;
}

struct HiveNames {
    std::string_view name;
    std::string_view shortForm;
};

// In the order of RegistryHive.
constexpr std::array<HiveNames, 5> Hives{{
    {"hkey_classes_root", "hkcr"},
    {"hkey_current_user", "hkcu"},
    {"hkey_local_machine", "hklm"},
    {"hkey_users", "hku"},
    {"hkey_current_config", "hkcc"},
}};

// The full path of a key in the one form in which paths are compared.
std::string ComparablePath(std::string_view path) {
    std::string comparable = FoldAscii(path.substr(0, path.find_last_not_of('\\') + 1));
    const std::string hive = comparable.substr(0, comparable.find('\\'));
    const auto* const found = std::ranges::find(Hives, hive, &HiveNames::shortForm);
    return found == Hives.end() ? comparable : comparable.replace(0, hive.size(), found->name);
}

// Whether a key (comparable paths) is another one or lies somewhere under it.
bool IsWithin(std::string_view key, std::string_view other) {
    return TakePrefix(key, other) && (key.empty() || key.starts_with('\\'));
}

// Carries out what an export says about one key. A line that makes no sense is passed over and costs no more
// than its own value; the values after a damaged section line belong to no key, as theirs is unknown.
class ExportReader {
  public:
    explicit ExportReader(std::string key) : key_(std::move(key)) {}

    // The key's values; nothing where the text is no export or leaves no such key.
    std::optional<ExportedValues> Read(std::string_view text) {
        Lines lines(text);
        const std::string_view header = lines.Take();
        utf16Data_ = header == "Windows Registry Editor Version 5.00";
        if (!utf16Data_ && header != "REGEDIT4") {
            return std::nullopt;
        }
        while (!lines.AtEnd()) {
            const std::string_view line = lines.Take();
            if (line.starts_with('[')) {
                ReadSection(line);
            } else if (inKey_) {
                ReadValue(line, lines);
            }
        }
        return std::move(values_);
    }

  private:
    void ReadSection(std::string_view line) {
        inKey_ = false;
        // The last bracket: a key's name may hold one.
        const auto end = line.rfind(']');
        if (end == std::string_view::npos) {
            return;
        }
        std::string_view section = line.substr(1, end - 1);
        const bool deletes = TakePrefix(section, "-");
        const std::string path = ComparablePath(section);
        if (deletes) {
            if (IsWithin(key_, path)) {
                values_.reset();
            }
            return;
        }
        inKey_ = path == key_;
        // A key under this one cannot be without it.
        if (IsWithin(path, key_) && !values_) {
            values_.emplace();
        }
    }

    void ReadValue(std::string_view line, Lines& lines) {
        std::optional<std::string> name;
        if (line.starts_with('"')) {
            name = TakeQuoted(line);
        } else if (TakePrefix(line, "@")) {
            name.emplace();
        }
        line = Trimmed(line);
        if (!name || !TakePrefix(line, "=")) {
            return;
        }
        line = Trimmed(line);
        if (WithoutComment(line) == "-") {
            values_->erase(FoldAscii(*name));
        } else if (auto value = ReadData(line, lines)) {
            values_->insert_or_assign(FoldAscii(*name), std::move(*value));
        }
    }

    [[nodiscard]] std::optional<ExportedValue> ReadData(std::string_view data, Lines& lines) const {
        if (data.starts_with('"')) {
            auto text = TakeQuoted(data);
            if (!text || !WithoutComment(data).empty()) {
                return std::nullopt;
            }
            return ExportedValue{RegistryType::Sz, *text + '\0'};
        }
        const auto colon = data.find(':');
        if (colon == std::string_view::npos) {
            return std::nullopt;
        }
        const std::string kind = FoldAscii(data.substr(0, colon));
        data.remove_prefix(colon + 1);
        if (kind == "dword") {
            return ReadDword(WithoutComment(data));
        }
        return ReadHex(kind, data, lines);
    }

    static std::optional<ExportedValue> ReadDword(std::string_view digits) {
        const auto number = HexNumber(digits, std::numeric_limits<std::uint32_t>::max());
        if (!number) {
            return std::nullopt;
        }
        return ExportedValue{RegistryType::Dword, LittleEndian(*number)};
    }

    [[nodiscard]] std::optional<ExportedValue> ReadHex(std::string_view kind, std::string_view data,
                                                       Lines& lines) const {
        const auto type = HexType(kind);
        if (!type) {
            return std::nullopt;
        }
        const auto list = WithContinuations(data, lines);
        auto bytes = list ? HexBytes(*list) : std::nullopt;
        if (!bytes) {
            return std::nullopt;
        }
        const bool isText =
            type == RegistryType::Sz || type == RegistryType::ExpandSz || type == RegistryType::MultiSz;
        return ExportedValue{*type, isText && utf16Data_ ? FromUtf16(*bytes) : std::move(*bytes)};
    }

    // Of "hex" or "hex(n)".
    static std::optional<RegistryType> HexType(std::string_view kind) {
        if (!TakePrefix(kind, "hex")) {
            return std::nullopt;
        }
        if (kind.empty()) {
            return RegistryType::Binary;
        }
        if (!TakePrefix(kind, "(") || !kind.ends_with(')')) {
            return std::nullopt;
        }
        kind.remove_suffix(1);
        const auto number = HexNumber(kind, std::numeric_limits<std::uint32_t>::max());
        return number ? std::optional(static_cast<RegistryType>(*number)) : std::nullopt;
    }

    std::string key_;
    std::optional<ExportedValues> values_;
    bool inKey_ = false;
    bool utf16Data_ = false;
};

} // namespace

std::optional<ExportedValues> ReadRegistryExport(std::string_view content, RegistryHive hive,
                                                 std::string_view keyPath) {
    ExportReader reader(ComparablePath(std::string(Hives.at(static_cast<std::size_t>(hive)).name) + '\\' +
                                       std::string(keyPath)));
    return reader.Read(Decoded(content));
}

} // namespace KAL_AUTO_Node
