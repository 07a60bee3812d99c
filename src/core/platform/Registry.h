#pragma once

#include "platform/RegistryExport.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>
#include <utility>

namespace KAL_AUTO_Node {

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

    // Nothing where the key cannot be opened: there is no such key, or no file that can be read as an export.
    // Raises UnsupportedValueType for a file that is too large to be one of a few keys.
    [[nodiscard]] static std::optional<RegistryKey> Open(RegistryHive hive, std::string_view keyPath);

    // Copies the data of a value to the beginning of the buffer; the name "" is the key's default value.
    // MoreData tells the type and the size needed, and copies nothing.
    [[nodiscard]] QueryResult Query(std::string_view valueName, std::span<std::byte> buffer) const;

  private:
    explicit RegistryKey(ExportedValues values) : values_(std::move(values)) {}

    ExportedValues values_;
};

} // namespace KAL_AUTO_Node
