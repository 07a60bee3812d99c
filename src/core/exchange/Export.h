#pragma once

#include "nodes/Identity.h"

#include <cstdint>
#include <filesystem>
#include <optional>

namespace KAL_AUTO_Node {

class DataBase;

// Writes a partition, or the whole store, in the text form of docs/exchange.md; one state of it, as nobody
// writes meanwhile where that can be had. The file is there when it is whole; one that was exported before is
// replaced. Raises PermissionDenied, naming the file, for one that is something else, and StoreFailure where
// it cannot be written. Returns how many rows were written.
std::uint64_t Export(DataBase& dataBase, std::optional<Partition> scope, const std::filesystem::path& file);

} // namespace KAL_AUTO_Node
