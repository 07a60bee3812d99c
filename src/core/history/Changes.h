#pragma once

#include "history/Version.h"
#include "nodes/AutoNode.h"
#include "nodes/Identity.h"

#include <optional>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

class DataBase;
class History;

// What turns one state of a node into another, in words; nothing stands for no node.
[[nodiscard]] std::vector<std::string> ChangesInWords(const std::optional<AutoNode>& before,
                                                      const std::optional<AutoNode>& after);

// A change with what it changed: what was there before it against what was there before the next.
struct Change {
    Version version;
    std::vector<std::string> words;
};

// Those of a node that are kept, newest first. Where the content of one cannot be read, the others tell their
// changes all the same.
[[nodiscard]] std::vector<Change> ReadChanges(DataBase& dataBase, History& history, const NodePlace& place);

// What became of a change, as people read it: "save, failed: note".
[[nodiscard]] std::string OutcomeOf(const Version& version);

} // namespace KAL_AUTO_Node
