#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

// What two have changed to different ends.
struct MergeConflict {
    std::size_t line = 0; // of the merged text, where its marks begin
    std::string what;     // "AUTO 12, label"
    std::string before;   // in words, as the three hold it
    std::string ours;
    std::string theirs;
};

struct MergeReport {
    // Nodes, and rows that are no node's, which only one has changed, and those that both have.
    std::size_t ours = 0;
    std::size_t theirs = 0;
    std::size_t both = 0;
    std::vector<MergeConflict> conflicts; // in the order of their lines
};

// Brings the changes of two exports of one partition, or store, together: those that stand in ours and in
// theirs, each beside the base. Changes of different nodes, and of different parts of one, go together; a
// part is a column of a row, the columns of one reference, or a row of a list, as nodes/Merging.h has it.
// What cannot be brought together stands in the text between marks, which import refuses. An empty file is a
// base without rows. Raises what ReadExchangeFile does, and InvalidProcedureCall where the three are not of
// one kind.
[[nodiscard]] MergeReport MergeExports(const std::filesystem::path& base, const std::filesystem::path& ours,
                                       const std::filesystem::path& theirs, std::string& merged);

} // namespace KAL_AUTO_Node
