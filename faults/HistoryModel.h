#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace KAL_AUTO_Node {

// What a process did with the nodes of a store, and when. A content is a text without blanks: "-" for no
// node, else "RECORD/REGISTER|ROW,ROW,": the label in either and of each row its digits and target, "17>21".
struct Operation {
    int actor = 0; // whose operations follow one another
    std::string verb;
    int node = 0;  // by position
    int other = 0; // node or target
    std::string seen{};
    std::string next{}; // of an import, contents with semicolons behind each
    std::int64_t begin = 0;
    std::int64_t end = 0;                // from when on it has no effect any more
    std::optional<std::string> answer{}; // nothing where it is not known
};

inline constexpr int NodesInHistory = 3;
// The number of the first of two messages that rows refer to.
inline constexpr int FirstTarget = 21;

struct RecordedHistory {
    std::vector<std::string> begin; // what the nodes were
    std::vector<Operation> operations{};
    bool inFile = true; // where a save passes through contents that are neither the old nor the new one
};

// Whether some order, in which what ended before another began stands before it, explains all answers.
[[nodiscard]] bool IsExplained(const RecordedHistory& history);

// Of one that is not explained: what there was up to the answer that nothing explains, without what has no
// effect and is not needed for that.
[[nodiscard]] RecordedHistory Smallest(const RecordedHistory& history);

// Returns how often it stood there.
int ReplaceAll(std::string& text, const std::string& from, const std::string& to);

// What a process has recorded in a file.
[[nodiscard]] std::vector<Operation> OperationsIn(const std::string& file, int actor);

// As a process: recorder FILE SEED FIRST_TEXT COUNT KIND. Does so many operations; makes wrong what the kind
// tells: "lost" saves over others' changes unseen, "half" leaves half a node without a mark, "stale" sees
// what is no more. "begin" makes what it needs; "end" puts back what is half, looks at all, and drops the
// versions.
int Record(const char* const* arguments);

} // namespace KAL_AUTO_Node
