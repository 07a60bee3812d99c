#pragma once

#include "nodes/Identity.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>

namespace KAL_AUTO_Node {

class DataBase;

// Told of while it runs: how many rows are written.
using ExportProgress = std::function<void(std::uint64_t rows)>;

// Writes a partition, or the whole store, in the text form of docs/exchange.md; one state of it, which
// keeps nobody from writing. The file is there when it is whole; one that was exported before is
// replaced. A pipe or a terminal gets it as it comes. Raises PermissionDenied, naming the file, for one that
// is something else, InvalidProcedureCall for a partition without rows, and StoreFailure where it cannot be
// written, or the store holds what import would refuse. Returns how many rows were written.
std::uint64_t Export(
    DataBase& dataBase, std::optional<Partition> scope, const std::filesystem::path& file,
    const ExportProgress& progress = [](std::uint64_t) {});

} // namespace KAL_AUTO_Node
