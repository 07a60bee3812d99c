#pragma once

#include "audit/Findings.h"
#include "nodes/Identity.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

// What a check found, for programs that read it.
struct Found {
    struct One {
        Partition partition;
        Finding finding;
        std::optional<std::uint64_t> line; // of the text that was checked
    };

    std::vector<One> findings;
    std::vector<Partition> partitions; // all that were checked
    std::string file;                  // the text; empty where it was a store
};

struct CheckFormat {
    const char* name;
    std::string (*text)(const Found& found);
};

[[nodiscard]] std::string FindingsAsLines(const Found& found);
[[nodiscard]] std::string FindingsAsKeys(const Found& found);
[[nodiscard]] std::string FindingsAsJson(const Found& found);
// The workflow commands of GitHub's runners, which show them beside the changed lines.
[[nodiscard]] std::string FindingsForGitHub(const Found& found);
// SARIF 2.1.0.
[[nodiscard]] std::string FindingsAsSarif(const Found& found);
// JUnit's XML: errors and warnings are failed cases.
[[nodiscard]] std::string FindingsAsJUnit(const Found& found);

inline constexpr std::array<CheckFormat, 6> CheckFormats = {{
    {"lines", FindingsAsLines},
    {"keys", FindingsAsKeys},
    {"json", FindingsAsJson},
    {"github", FindingsForGitHub},
    {"sarif", FindingsAsSarif},
    {"junit", FindingsAsJUnit},
}};

} // namespace KAL_AUTO_Node
