// An export of the registry: whatever a file holds, it costs no more than the values that it damages.

#include "platform/RegistryExport.h"

#include "fuzz/Examine.h"
#include "fuzz/Utf8.h"
#include "platform/FoldCase.h"

#include <algorithm>

namespace KAL_AUTO_Node {

namespace {

std::optional<ExportedValues> Read(std::string_view content) {
    return ReadRegistryExport(content, RegistryHive::LocalMachine, "Key\\Sub");
}

// The same text in the other encoding that exports have; ASCII only.
std::string Utf16(std::string_view text) {
    std::string bytes = "\xFF\xFE";
    for (const char c : text) {
        bytes += c;
        bytes += '\0';
    }
    return bytes;
}

} // namespace

void Examine(std::string_view input) {
    const auto values = Read(input);
    for (const auto& [name, value] : values.value_or(ExportedValues())) {
        Require(name == FoldAscii(name), "names are kept without case");
        Require(!IsUtf8(input) || IsUtf8(name), "a name is UTF-8 where the file is");
    }
    if (std::ranges::all_of(input, [](char c) { return static_cast<unsigned char>(c) < 0x80; })) {
        Require(Read(Utf16(input)) == values, "both encodings say the same");
    }
    const bool ownEncoding = !input.starts_with("\xFF\xFE");
    // Not one that begins another encoding, or makes another first line.
    if (ownEncoding && values) {
        const auto read = Read(std::string(input) + "\n[HKLM\\key\\SUB]\n\"Added\"=dword:00000102\n");
        auto expected = *values;
        expected.insert_or_assign("added", ExportedValue{RegistryType::Dword, std::string("\2\1\0\0", 4)});
        Require(read == expected, "what goes before a section changes nothing in it");
        Require(!Read(std::string(input) + "\n[-HKEY_LOCAL_MACHINE\\KEY]\n"), "a deleted key is gone");
        Require(Read(std::string(input) + "\n[HKEY_LOCAL_MACHINE\\Other]\n\"Added\"=\"x\"\n@=-\n") == values,
                "another key's values are no values of this one");
    }
}

} // namespace KAL_AUTO_Node
