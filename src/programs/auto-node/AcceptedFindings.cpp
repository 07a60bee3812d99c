#include "auto-node/AcceptedFindings.h"

#include "audit/Findings.h"
#include "platform/NewFile.h"
#include "platform/RuntimeError.h"
#include "platform/VisibleText.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace KAL_AUTO_Node {

namespace {

std::string WithoutTrailingBlanks(const std::string& line) {
    return line.substr(0, line.find_last_not_of(" \r\t") + 1);
}

} // namespace

AcceptedFindings::AcceptedFindings(std::string file) : file_(std::move(file)) {
    std::ifstream lines(file_);
    for (std::string line; std::getline(lines, line);) {
        const std::string key = WithoutTrailingBlanks(line);
        lines_.push_back(std::move(line));
        if (key.empty() || key.starts_with('#')) {
            continue;
        }
        if (!FaultOf(key.substr(0, key.find(' ')))) {
            throw RuntimeError("line " + std::to_string(lines_.size()) + " of '" + file_ +
                               "' does not begin with the code of a finding: " + Visible(key));
        }
        keys_.insert(key);
    }
    if (!lines.eof()) {
        throw RuntimeError("cannot read '" + file_ + "'");
    }
}

bool AcceptedFindings::Accepts(const std::string& key) {
    if (!keys_.contains(key)) {
        return false;
    }
    found_.insert(key);
    return true;
}

std::set<std::string>
AcceptedFindings::Stale(const std::function<bool(const std::string& key)>& meets) const {
    std::set<std::string> stale;
    std::ranges::copy_if(keys_, std::inserter(stale, stale.end()),
                         [&](const std::string& key) { return !found_.contains(key) && meets(key); });
    return stale;
}

void AcceptedFindings::Drop(const std::set<std::string>& keys) {
    Output file(file_);
    for (const std::string& line : lines_) {
        if (!keys.contains(WithoutTrailingBlanks(line))) {
            file.Append(line + '\n');
        }
    }
    file.Finish();
}

} // namespace KAL_AUTO_Node
