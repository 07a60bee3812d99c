#pragma once

namespace KAL_AUTO_Node {

// Shows the common error report for the error being handled, which ended the procedure of that name, unless
// it is one that was shown before. It may be of any type: a host's own components run inside the procedures.
void ShowErrorReport(const char* procedure);

// Runs a procedure's body. An error in it is reported and goes no further, so that the caller carries on with
// its own next step; what the body holds (pointers, frames, result sets) is released before the report
// appears. Returns whether the body ran to its end.
template <class Body>
bool Reporting(const char* procedure, Body&& body) {
    try {
        body();
        return true;
    } catch (...) {
        ShowErrorReport(procedure);
        return false;
    }
}

} // namespace KAL_AUTO_Node
