#pragma once

#include <chrono>
#include <deque>
#include <functional>
#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

namespace KAL_AUTO_Node {

// One pass of a work; returns the seconds that the measured part of it took. What it does before and after
// that is its preparation.
using Pass = std::function<double()>;
// Sets the scene; the passes follow, and the scene goes with the last of them.
using MakePass = std::function<Pass()>;

template <class Work>
[[nodiscard]] double Seconds(Work&& work) {
    const auto start = std::chrono::steady_clock::now();
    std::forward<Work>(work)();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// The works measured, each beside its floor: the two take turns, so that what else the machine does falls on
// both. The benchmarks refer to the pairs that registered them.
class Pairs {
  public:
    Pairs() = default;
    Pairs(const Pairs&) = delete;
    Pairs& operator=(const Pairs&) = delete;

    // Registers a benchmark. Sizes of one work are added from the smallest on. Floor is what the work is
    // compared with.
    void Add(const std::string& work, const std::string& size, MakePass ours, MakePass floor);

    // The pairs that were measured, as one Markdown table.
    void PrintTable(std::ostream& out) const;

  private:
    struct Pair {
        std::string work;
        std::string size;
        // Seconds, by turn.
        std::vector<double> ours;
        std::vector<double> floor;
    };

    std::deque<Pair> pairs_;
};

} // namespace KAL_AUTO_Node
