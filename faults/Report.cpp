#include "Report.h"

#include <iomanip>
#include <ostream>

namespace KAL_AUTO_Node {

namespace {

constexpr int NameWidth = 62;

} // namespace

void Row::Note(int& count, const std::string& what) {
    ++count;
    if (first.empty()) {
        first = "try " + std::to_string(tries) + ": " + what;
    }
}

void PrintHead(std::ostream& out) {
    out << std::left << std::setw(NameWidth) << "case" << std::right;
    for (const char* column :
         {"tries", "as before", "put back", "whole", "told", "lost", "unseen", "wrong"}) {
        out << std::setw(10) << column;
    }
    out << "  remarks\n";
}

void Print(std::ostream& out, const Row& row) {
    out << std::left << std::setw(NameWidth) << row.name << std::right;
    if (row.skipped) {
        out << "  not possible here: " << row.remarks << std::endl;
        return;
    }
    for (const int count :
         {row.tries, row.asBefore, row.putBack, row.whole, row.told, row.lost, row.unseen, row.wrong}) {
        out << std::setw(10) << count;
    }
    out << "  " << row.remarks
        << (row.Good()            ? ""
            : row.remarks.empty() ? "FAILED "
                                  : "; FAILED ")
        << row.first << std::endl;
}

} // namespace KAL_AUTO_Node
