#pragma once

#include "store/CreateStore.h"

#include <string>

namespace KAL_AUTO_Node {

// Whether there was a store already, to which others have links, too.
enum class ServerStore { Made, Found };

// Creates a store's tables in the database that a connection URI names, unless they are there, and a file,
// for its owner alone, that stands for them. Raises StoreFailure, naming the file, where that is there
// already or the server refuses, and where a store is there that demo content would have to be put into.
ServerStore CreateServerStore(const std::filesystem::path& file, const std::string& uri,
                              StoreContent content);

} // namespace KAL_AUTO_Node
