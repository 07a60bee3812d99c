#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

class JetSink;

// Runs the program that reads Jet files on one, under limits of memory and time that grow with the file's
// size, and hands on what it tells: all tables, and the rows of those named. Raises StoreNotRecognized,
// naming the file, where it cannot be read to its end, whatever became of the program; what the sink throws
// goes on.
void RunJetReader(const std::filesystem::path& program, const std::filesystem::path& file,
                  const std::vector<std::string>& tables, JetSink& sink);

} // namespace KAL_AUTO_Node
