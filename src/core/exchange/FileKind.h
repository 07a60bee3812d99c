#pragma once

#include <filesystem>

namespace KAL_AUTO_Node {

// What a file is that may be brought over, told by its first bytes, whatever its name.
enum class FileKind {
    Jet,      // Jet 3 or 4
    LaterJet, // of the formats after Jet 4
    Exchange, // what export wrote (docs/exchange.md)
    Json,     // other JSON
    Other,
};

// Raises StoreNotFound, naming the file, where it cannot be read.
[[nodiscard]] FileKind KindOf(const std::filesystem::path& file);

} // namespace KAL_AUTO_Node
