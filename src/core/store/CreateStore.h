#pragma once

#include <filesystem>
#include <functional>

namespace KAL_AUTO_Node {

class DataBase;

enum class StoreContent { Empty, Demo };

// Creates a store with all its tables, and the folders above it. Raises StoreFailure, naming the file, when
// it exists already or cannot be written; what was begun is then taken back, and an existing file is
// untouched.
void CreateStore(const std::filesystem::path& file, StoreContent content);

// Creates a store as fill makes it out of an empty one, in one transaction. Nobody sees it before that; where
// fill throws, nothing was made, and the error goes on.
void CreateStore(const std::filesystem::path& file, const std::function<void(DataBase&)>& fill);

} // namespace KAL_AUTO_Node
