#pragma once

#include <filesystem>

namespace KAL_AUTO_Node {

enum class StoreContent { Empty, Demo };

// Creates a store with all its tables, and the folders above it. Raises StoreFailure, naming the file, when
// it exists already or cannot be written; what was begun is then taken back, and an existing file is
// untouched.
void CreateStore(const std::filesystem::path& file, StoreContent content);

} // namespace KAL_AUTO_Node
