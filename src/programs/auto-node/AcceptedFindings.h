#pragma once

#include <functional>
#include <set>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

// A file of findings that a site accepts: keys, one a line. Empty lines and those that begin with # are for
// people.
class AcceptedFindings {
  public:
    // Throws where it cannot be read, or a line is none of the three.
    explicit AcceptedFindings(std::string file);

    // Whether a finding of that key is accepted.
    [[nodiscard]] bool Accepts(const std::string& key);

    // The keys that were not asked for, of those that meet a condition.
    [[nodiscard]] std::set<std::string> Stale(const std::function<bool(const std::string& key)>& meets) const;
    // Writes the file without them.
    void Drop(const std::set<std::string>& keys);

  private:
    std::string file_;
    std::vector<std::string> lines_;
    std::set<std::string> keys_;
    std::set<std::string> found_;
};

} // namespace KAL_AUTO_Node
