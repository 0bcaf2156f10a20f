#pragma once

#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <limits>
#include <string>

// Times a piece of work and its yardstick in turns, so that both see the same disturbances, and
// keeps the best round of each. Processor time includes child processes.
namespace side_by_side {

struct Cost {
    double wallSeconds = std::numeric_limits<double>::infinity();
    double processorSeconds = std::numeric_limits<double>::infinity();
};

inline double processorSeconds() {
    double sum = 0.0;
    for (const int who : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
        rusage usage{};
        getrusage(who, &usage);
        for (const timeval& time : {usage.ru_utime, usage.ru_stime})
            sum += double(time.tv_sec) + double(time.tv_usec) * 1e-6;
    }
    return sum;
}

inline void run(const std::function<void()>& work, Cost& best) {
    using Clock = std::chrono::steady_clock;
    const double processorBefore = processorSeconds();
    const Clock::time_point before = Clock::now();
    work();
    const std::chrono::duration<double> wall = Clock::now() - before;
    best.wallSeconds = std::min(best.wallSeconds, wall.count());
    best.processorSeconds = std::min(best.processorSeconds, processorSeconds() - processorBefore);
}

inline void printHeader() {
    std::printf("%-34s %10s %10s %6s %10s %10s %6s %7s\n", "", "wall ms", "yardstick", "ratio",
                "cpu ms", "yardstick", "ratio", "target");
}

inline void compare(const std::string& name, int rounds, double target,
                    const std::function<void()>& work, const std::function<void()>& yardstick) {
    Cost ours;
    Cost theirs;
    for (int i = 0; i < rounds; ++i) {
        run(yardstick, theirs);
        run(work, ours);
    }
    std::printf("%-34s %10.3f %10.3f %6.2f %10.3f %10.3f %6.2f %7.2f\n", name.c_str(),
                ours.wallSeconds * 1e3, theirs.wallSeconds * 1e3,
                ours.wallSeconds / theirs.wallSeconds, ours.processorSeconds * 1e3,
                theirs.processorSeconds * 1e3, ours.processorSeconds / theirs.processorSeconds,
                target);
    std::fflush(stdout);
}

} // namespace side_by_side
