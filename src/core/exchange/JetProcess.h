#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

class JetSink;

// The program that reads Jet files, and how long it may work on the smallest; it is waited for longer.
struct JetReader {
    std::filesystem::path program;
    std::uint64_t leastSeconds = 3;
};

// Runs the program that reads Jet files on one, under limits of memory and time that grow with the file's
// size, and hands on what it tells: all tables, and the rows of those named. Raises StoreNotRecognized,
// naming the file, where it cannot be read to its end, whatever became of the program; what the sink throws
// goes on.
void RunJetReader(const JetReader& reader, const std::filesystem::path& file,
                  const std::vector<std::string>& tables, JetSink& sink);

} // namespace KAL_AUTO_Node
