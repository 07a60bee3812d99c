#pragma once

#include "platform/ProcessIdentity.h"

#include <cstdint>
#include <optional>
#include <string>

namespace KAL_AUTO_Node {

// One change of a node: who made it and what became of it. The history keeps with it the node as it was
// before.
struct Version {
    std::int64_t number = 0; // from 1, ascending with time
    std::string work;        // what changed the node: "save", "restore", "put back", "import",
                             // "repoint", "copy", "move", "remove", "create"
    std::string state;       // one of those below
    std::string begunAt;     // UTC, YYYY-MM-DDTHH:MM:SS.mmmZ
    ProcessIdentity author;
    std::string note; // why, where somebody told it
};

// The states of a version, as they are stored.
namespace VersionState {
inline constexpr const char* Begun = "begun";       // being made, or never finished
inline constexpr const char* Failed = "failed";     // ended by an error half-way
inline constexpr const char* Finished = "finished"; // whole
inline constexpr const char* Left = "left";         // not whole, and gone over by a later one
inline constexpr const char* PutBack = "put back";  // not whole, and undone
} // namespace VersionState

// Whether the change never got to its end, and nothing has been done about that.
[[nodiscard]] bool IsUnfinished(const Version& version);

// Whether the change is still being made, as far as can be told: it began less than OwnerLimitMinutes ago, or
// ahead by a clock that goes wrong, and its process is not known to have ended.
[[nodiscard]] bool IsBeingMade(const Version& version);

// Whether the change is over for certain: told so by its own process, or that is known to have ended.
[[nodiscard]] bool IsSurelyOver(const Version& version);

// For longer than this nobody is kept from saving: a process may be hung, or unable to mark the end of its
// save.
inline constexpr int OwnerLimitMinutes = 10;

// Now, in the form in which times are stored; and some days ago.
[[nodiscard]] std::string TimeStamp(int daysAgo = 0);

// The form in which times are stored, of a day or a time as people of this place write it, YYYY-MM-DD or
// YYYY-MM-DD HH:MM; of a day its beginning or, so many days later, that of another. Nothing for another text.
[[nodiscard]] std::optional<std::string> StampOf(const std::string& localTime, int daysLater = 0);

// A stored time as people of this place read it, to the minute; another text as it stands.
[[nodiscard]] std::string LocalTime(const std::string& timeStamp);

// "anna on host-1 with auto-node", as far as it is known.
[[nodiscard]] std::string AuthorText(const Version& version);

} // namespace KAL_AUTO_Node
