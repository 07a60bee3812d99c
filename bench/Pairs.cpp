#include "bench/Pairs.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <ostream>

namespace KAL_AUTO_Node {

namespace {

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
    Pair& pair = pairs_.emplace_back(Pair{work, size, {}, {}});
    // A scene lives for one repetition, so that no work is measured in a process full of others' windows.
    auto run = [&pair, makeOurs = std::move(ours), makeFloor = std::move(floor)](benchmark::State& state) {
        const Pass mine = makeOurs();
        const Pass least = makeFloor();
        // Passes before the one that is taken bring back the caches that the other side has used.
        const auto take = [](const Pass& pass) {
            for (double seconds = 0; seconds < 0.0002;) {
                seconds += pass();
            }
            return pass();
        };
        for ([[maybe_unused]] auto turn : state) {
            pair.ours.push_back(take(mine));
            pair.floor.push_back(take(least));
            state.SetIterationTime(pair.ours.back() + pair.floor.back());
        }
    };
    benchmark::RegisterBenchmark((work + '/' + size).c_str(), std::move(run))->UseManualTime();
}

void Pairs::PrintTable(std::ostream& out) const {
    out << "| ours / floor | work | size | ours | floor | growth of ours |\n"
           "| ---: | --- | --- | ---: | ---: | ---: |\n";
    std::string work;
    double smaller = 0;
    for (const Pair& pair : pairs_) {
        if (pair.ours.empty()) {
            continue;
        }
        std::vector<double> ratios(pair.ours.size());
        std::ranges::transform(pair.ours, pair.floor, ratios.begin(), std::divides());
        const double ours = Median(pair.ours);
        out << "| " << Times(Median(ratios)) << " | " << pair.work << " | " << pair.size << " | "
            << Time(ours) << " | " << Time(Median(pair.floor)) << " | "
            << (work == pair.work ? Times(ours / smaller) : "") << " |\n";
        work = pair.work;
        smaller = ours;
    }
}

} // namespace KAL_AUTO_Node
