#pragma once

#include "calls/Trace.h"
#include "nodes/Identity.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace KAL_AUTO_Node {

// How a call has to go: "1 2 AUTO 1: 2 7 -> MSG 31", or "-> not MSG 4".
struct Expectation {
    Partition partition;
    int number = 0; // of the AUTO node
    std::vector<Step> steps;
    bool isNot = false;
    int typeID = 0; // where the call has to get to, or must not
    std::optional<int> target;
};

// Nothing for a line that is for people: blank, or with # in front. Raises InvalidProcedureCall for one that
// cannot be read.
[[nodiscard]] std::optional<Expectation> ExpectationOf(const std::string& line, const TypeNames& names);

enum class Verdict { Certain, Possible, Contradicted };

struct Judgement {
    Verdict verdict = Verdict::Contradicted;
    std::vector<Target> reached; // where the call may get to
    std::vector<Target> ended;   // where it ends with steps left, or goes on in a way that is not known
};

// Raises InvalidProcedureCall where the steps cannot be taken.
[[nodiscard]] Judgement Judge(const CallMap& map, const Expectation& expectation);

// The expectations of a partition as it is: one for each action and each exception that is certain, in the
// order of the nodes and of their rows.
void WriteExpectations(const CallMap& map, const TypeNames& names,
                       const std::function<void(const std::string& line)>& take);

} // namespace KAL_AUTO_Node
