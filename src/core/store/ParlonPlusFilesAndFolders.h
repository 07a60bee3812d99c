#pragma once

#include "platform/Registry.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

// Where the suite keeps its files on this machine. Every call looks again, so that the answer follows the
// machine's current folders. Paths are UTF-8, their parts separated by backslashes; those of the suite's own
// folders end in one. Nothing here creates a folder or a file, or asks whether the store's file exists.
namespace KAL_AUTO_Node {

// By the type that the value was stored with: texts, bytes, number; std::monostate is empty.
using RegistryValue = std::variant<std::monostate, std::string, std::vector<std::byte>, std::int32_t>;

// The path of a special folder, without a trailing separator; empty where the identifier names none.
[[nodiscard]] std::string GetSpecialFolderPath(std::int32_t identifier);

// The value, or the default where the key cannot be opened. The parts of a multi-part text stay separated by
// NULs. Throws RuntimeError UnsupportedValueType for a value that is absent or of a type that is no text,
// bytes or 32-bit little-endian number.
[[nodiscard]] RegistryValue ReadRegistryValue(RegistryHive hive, std::string_view keyPath,
                                              std::string_view valueName, RegistryValue defaultValue = {});

// The machine-wide application-data folder as the registry has it, as text: a number in decimal, bytes as
// characters. Empty where the key cannot be opened; throws as ReadRegistryValue does.
[[nodiscard]] std::string GetCommonAppDataFromRegistry();

// The suite's folder under the special folder where that exists, else under the folder from the registry,
// whether that exists or not. These three throw as GetCommonAppDataFromRegistry does.
[[nodiscard]] std::string GetSuiteFolder();
[[nodiscard]] std::string GetDatabaseFolder();
[[nodiscard]] std::string GetConnectionString();

// The string that names a store by its file.
[[nodiscard]] std::string ConnectionStringOf(const std::string& file);

// Where to make a store so that the connection string names it from then on: where it points to already, or
// under the machine-wide application-data folder as long as nothing says where the suite lies.
[[nodiscard]] std::string GetNewDatabaseFile();

} // namespace KAL_AUTO_Node
