#pragma once

#include <iosfwd>
#include <string>
#include <utility>

namespace KAL_AUTO_Node {

// What became of the tries of one case.
struct Row {
    explicit Row(std::string what) : name(std::move(what)) {}

    std::string name;
    int tries = 0;
    int asBefore = 0;  // the node was left as it was
    int whole = 0;     // the node was saved wholly
    int putBack = 0;   // the node was half saved, marked so, and put back
    int told = 0;      // the saver was told that it was not saved, or not surely
    int lost = 0;      // something that was stored, or said to be, is not there
    int unseen = 0;    // something went wrong and nobody was told
    int wrong = 0;     // anything else
    std::string first; // of the last three
    std::string remarks;
    bool skipped = false; // not possible here, as the remarks say

    void Lost(const std::string& what) { Note(lost, what); }

    void Unseen(const std::string& what) { Note(unseen, what); }

    void Wrong(const std::string& what) { Note(wrong, what); }

    [[nodiscard]] bool Good() const { return skipped || (tries > 0 && lost + unseen + wrong == 0); }

  private:
    void Note(int& count, const std::string& what);
};

void PrintHead(std::ostream& out);
void Print(std::ostream& out, const Row& row);

} // namespace KAL_AUTO_Node
