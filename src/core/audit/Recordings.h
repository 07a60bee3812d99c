#pragma once

#include "audit/Findings.h"
#include "nodes/References.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

// What a folder has for the file that a message names.
enum class Sound {
    There,
    Missing,
    OtherCase, // a file whose name differs in the case of letters only
    NoFile,    // a folder, a link or something else of that name, which is not followed
    NoName,    // the message names none
    LeadsAway, // the name has a folder in it, and is not looked for
};

[[nodiscard]] const char* NameOf(Sound sound);

struct Recording {
    int message = 0;
    std::string label;
    std::string file;
    std::vector<int> players;        // the AUTO nodes that refer to the message, by number
    std::vector<std::string> shared; // the other messages of the store that name the same file
    std::optional<Sound> sound;      // where there is a folder to look at
    std::string other;               // the file whose name differs in case
};

struct Recordings {
    std::vector<Recording> messages;  // by number, without the template
    std::vector<std::string> unnamed; // files of the folder that no message of the store names
};

// Looks at the messages of a partition. The folder holds the files of all partitions; only its names are
// read. Raises StoreNotFound where it cannot be.
[[nodiscard]] Recordings ReadRecordings(DataBase& dataBase, const TypeNames& names, Partition partition,
                                        const std::optional<std::filesystem::path>& folder);

// What of them is amiss, where a folder was looked at.
[[nodiscard]] std::vector<Finding> FindingsOf(const Recordings& recordings, const TypeNames& names);

} // namespace KAL_AUTO_Node
