#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

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

// A key of the machine's registry, open for reading as long as it lives. It shows the values as they were
// when it was opened.
//
// The registry is an export file, Brevank/Parlon+/registry.reg in the first configuration folder that has
// one. Key paths (UTF-8, parts separated by backslashes) and value names are found whatever the case of their
// ASCII letters.
class RegistryKey {
  public:
    enum class Status { Success, MoreData, NotFound };

    struct QueryResult {
        Status status = Status::NotFound;
        RegistryType type = RegistryType::None;
        // Of the value's data, in bytes.
        std::size_t size = 0;
    };

    // What a value holds: texts in the system code page (UTF-8) with the NULs that they were stored with, a
    // Dword in little endian, anything else as stored.
    struct Value {
        RegistryType type = RegistryType::None;
        std::string data;
    };

    // By name in lower case.
    using Values = std::map<std::string, Value, std::less<>>;

    // Nothing where the key cannot be opened: there is no such key, or no file that can be read as an export.
    [[nodiscard]] static std::optional<RegistryKey> Open(RegistryHive hive, std::string_view keyPath);

    // Copies the data of a value to the beginning of the buffer; the name "" is the key's default value.
    // MoreData tells the type and the size needed, and copies nothing.
    [[nodiscard]] QueryResult Query(std::string_view valueName, std::span<std::byte> buffer) const;

  private:
    explicit RegistryKey(Values values) : values_(std::move(values)) {}

    Values values_;
};

} // namespace KAL_AUTO_Node
