#include "bench/Pairs.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <iostream>

namespace KAL_AUTO_Node {

namespace {

void Register(const std::string& name, MakePass make) {
    // The scene is set when its turn comes; a run of only some benchmarks sets only theirs.
    auto run = [make = std::move(make), pass = Pass()](benchmark::State& state) mutable {
        if (!pass) {
            pass = make();
            pass();
        }
        for ([[maybe_unused]] auto iteration : state) {
            state.SetIterationTime(pass());
        }
    };
    benchmark::RegisterBenchmark(name.c_str(), std::move(run))->UseManualTime();
}

double Median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::ranges::nth_element(values, middle);
    return *middle;
}

std::string Format(const char* format, double value) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), format, value);
    return text.data();
}

std::string Time(double seconds) {
    const double microseconds = seconds * 1e6;
    return microseconds < 1000 ? Format("%.1f µs", microseconds) : Format("%.2f ms", microseconds / 1000);
}

std::string Times(double factor) { return Format(factor < 10 ? "%.2fx" : "%.0fx", factor); }

} // namespace

void Pairs::Add(const std::string& work, const std::string& size, MakePass ours, MakePass floor) {
    const Pair& pair = pairs_.emplace_back(Pair{work, size});
    Register(pair.Name("ours"), std::move(ours));
    Register(pair.Name("floor"), std::move(floor));
}

void Pairs::PrintTable(std::ostream& out, const Measured& measured) const {
    out << "| ours / floor | work | size | ours | floor | growth of ours |\n"
           "| ---: | --- | --- | ---: | ---: | ---: |\n";
    std::string work;
    double smaller = 0;
    for (const Pair& pair : pairs_) {
        const auto ours = measured.find(pair.Name("ours"));
        const auto floor = measured.find(pair.Name("floor"));
        if (ours == measured.end() || floor == measured.end()) {
            continue;
        }
        const double mine = Median(ours->second);
        const double least = Median(floor->second);
        const bool grows = work == pair.work;
        out << "| " << Times(mine / least) << " | " << pair.work << " | " << pair.size << " | " << Time(mine)
            << " | " << Time(least) << " | " << (grows ? Times(mine / smaller) : "") << " |\n";
        work = pair.work;
        smaller = mine;
    }
}

bool Collector::ReportContext(const Context& /*context*/) { return true; }

void Collector::ReportRuns(const std::vector<Run>& runs) {
    for (const Run& run : runs) {
        if (run.error_occurred) {
            std::cerr << run.run_name.function_name << ": " << run.error_message << '\n';
        } else if (run.run_type == Run::RT_Iteration) {
            measured_[run.run_name.function_name].push_back(run.real_accumulated_time /
                                                            static_cast<double>(run.iterations));
        }
    }
    if (!runs.empty()) {
        std::cerr << runs.front().run_name.function_name << '\n';
    }
}

} // namespace KAL_AUTO_Node
