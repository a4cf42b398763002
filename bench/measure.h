#pragma once

#include "support/scripted_host.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <vector>

// What the benchmarks measure with.

namespace quoravel {

using Clock = std::chrono::steady_clock;

/// A desktop with nothing on it but a real clock.
class RealClockHost : public ScriptedHost {
  public:
    std::chrono::nanoseconds Now() override { return Clock::now().time_since_epoch(); }
};

/// Ends a benchmark whose work does not come out right.
inline void Check(bool right, const char* what) {
    if (right)
        return;
    std::fprintf(stderr, "broken: %s\n", what);
    std::exit(1);
}

template<class Work>
double Seconds(Work work) {
    const auto start = Clock::now();
    work();
    return std::chrono::duration<double>(Clock::now() - start).count();
}

/// Processor time of this program, so that it does not matter what else the machine is doing.
template<class Work>
double CpuSeconds(Work work) {
    const std::clock_t start = std::clock();
    work();
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

inline double Median(std::vector<double> times) {
    const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::ranges::nth_element(times, middle);
    return *middle;
}

struct Medians {
    double ours;
    double yardstick;
    double ratio; ///< of the two
};

/// Takes both, each of which gives a time, so many times by turns.
template<class Ours, class Yardstick>
Medians ByTurns(int turns, Ours ours, Yardstick yardstick) {
    std::vector<double> our_times;
    std::vector<double> yardstick_times;
    for (int i = 0; i < turns; ++i) {
        yardstick_times.push_back(yardstick());
        our_times.push_back(ours());
    }
    const double our = Median(our_times);
    const double bare = Median(yardstick_times);
    return {our, bare, our / bare};
}

} // namespace quoravel
