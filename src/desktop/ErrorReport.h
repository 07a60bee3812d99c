#pragma once

#include <exception>

namespace KAL_AUTO_Node {

// Shows the common error report for an error that ended the procedure of that name.
void ShowErrorReport(const std::exception& error, const char* procedure);

// Runs a procedure's body. An error in it is reported and goes no further, so that the caller carries on with
// its own next step; what the body holds (pointers, frames, result sets) is released before the report
// appears. Returns whether the body ran to its end.
template <class Body>
bool Reporting(const char* procedure, Body&& body) {
    try {
        body();
        return true;
    } catch (const std::exception& error) {
        ShowErrorReport(error, procedure);
        return false;
    }
}

} // namespace KAL_AUTO_Node
