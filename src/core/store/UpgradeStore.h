#pragma once

#include <filesystem>
#include <optional>

namespace KAL_AUTO_Node {

class DataBase;

// How a store was brought up.
struct Upgraded {
    int from = 0;
    int to = 0;                                // the same where there was nothing to do
    std::optional<std::filesystem::path> copy; // of the file as it was; none of a server's
};

// Whether the store, which is open, is of an older version than this program makes.
[[nodiscard]] bool IsOlder(const DataBase& dataBase);

// Brings the store's tables to the version that this program makes, step by step in one transaction; of a
// file a copy is made first, while nobody can write. A store that tells no version is another program's and
// stays as it is. Where that fails, nothing has changed, but for a copy.
Upgraded UpgradeStore(DataBase& dataBase);

} // namespace KAL_AUTO_Node
