#pragma once

#include "store/DataBase.h"

#include <string>
#include <vector>

namespace KAL_AUTO_Node {

// A command as it was run, with the texts of its parameters.
struct Performed {
    Command command;
    std::vector<std::string> values;
};

// Takes down what the engine runs while it lives, on connections opened meanwhile. There can be one at a
// time.
class Recording {
  public:
    Recording();
    ~Recording();

    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;

    // The statements since the last call, values in their places; those of the settings are among them.
    static std::vector<std::string> Statements();
    // The same, the named commands alone.
    static std::vector<Performed> Commands();
    // Those of the history, which are not among them, since the last call of one of these two.
    static std::vector<Performed> HistoryCommands();
};

} // namespace KAL_AUTO_Node
