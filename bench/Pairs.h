#pragma once

#include <benchmark/benchmark.h>

#include <chrono>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace KAL_AUTO_Node {

// One pass of a work; returns the seconds that the measured part of it took. What it does before and after
// that is its preparation.
using Pass = std::function<double()>;
// Sets the scene; the passes follow.
using MakePass = std::function<Pass()>;

template <class Work>
[[nodiscard]] double Seconds(Work&& work) {
    const auto start = std::chrono::steady_clock::now();
    std::forward<Work>(work)();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// The works measured, each beside its floor.
class Pairs {
  public:
    // Sizes of one work are added from the smallest on. Floor is what the work is compared with.
    void Add(const std::string& work, const std::string& size, MakePass ours, MakePass floor);

    // Seconds per pass, one of each repetition, by benchmark name.
    using Measured = std::map<std::string, std::vector<double>>;

    // The pairs of which both sides were measured, as one Markdown table.
    void PrintTable(std::ostream& out, const Measured& measured) const;

  private:
    struct Pair {
        std::string work;
        std::string size;

        [[nodiscard]] std::string Name(const char* side) const { return work + '/' + size + '/' + side; }
    };

    std::vector<Pair> pairs_;
};

// Collects what is measured; the table is printed at the end by whoever knows the pairs.
class Collector : public benchmark::BenchmarkReporter {
  public:
    bool ReportContext(const Context& context) override;
    void ReportRuns(const std::vector<Run>& runs) override;

    [[nodiscard]] const Pairs::Measured& Measured() const { return measured_; }

  private:
    Pairs::Measured measured_;
};

} // namespace KAL_AUTO_Node
