#pragma once

#include <filesystem>
#include <string>

namespace KAL_AUTO_Node {

enum class StoreContent { Empty, Demo };

// Creates a store with all its tables, and the folders above it. Raises StoreFailure, naming the file, when
// it exists already or cannot be written; what was begun is then taken back, and an existing file is
// untouched.
void CreateStore(const std::filesystem::path& file, StoreContent content);

// Whether there was a store already, to which others have links, too.
enum class ServerStore { Made, Found };

// Creates a store's tables in the database that a connection URI names, unless they are there, and a file,
// for its owner alone, that stands for them. Raises StoreFailure as above, and where a store is there that
// demo content would have to be put into.
ServerStore CreateServerStore(const std::filesystem::path& file, const std::string& uri,
                              StoreContent content);

} // namespace KAL_AUTO_Node
