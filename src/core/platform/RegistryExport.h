#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace KAL_AUTO_Node {

enum class RegistryHive { ClassesRoot, CurrentUser, LocalMachine, Users, CurrentConfig };

// The type that a value was stored with. Others than these occur; they are handed on as they stand.
enum class RegistryType : std::uint32_t {
    None = 0,
    Sz = 1,
    ExpandSz = 2,
    Binary = 3,
    Dword = 4,
    DwordBigEndian = 5,
    Link = 6,
    MultiSz = 7,
    ResourceList = 8,
    FullResourceDescriptor = 9,
    ResourceRequirementsList = 10,
    Qword = 11,
};

// What a value holds: texts in the system code page (UTF-8) with the NULs that they were stored with, a Dword
// in little endian, anything else as stored.
struct ExportedValue {
    RegistryType type = RegistryType::None;
    std::string data;

    friend bool operator==(const ExportedValue&, const ExportedValue&) = default;
};

// By name, its ASCII letters in lower case.
using ExportedValues = std::map<std::string, ExportedValue, std::less<>>;

// The values of one key, from the content of an export file of the registry; nothing where that is no export
// or leaves no such key.
[[nodiscard]] std::optional<ExportedValues> ReadRegistryExport(std::string_view content, RegistryHive hive,
                                                               std::string_view keyPath);

} // namespace KAL_AUTO_Node
