// How every benchmark tells its figures: one line each, always beside the yardstick measured in the same run.
// It ends with status 0 when all targets are met and 1 when one is not; any other status says that it could
// not measure.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <vector>

namespace quorvane {

// Of an odd number of rounds the middle one; of an even number the upper of the two.
inline double Median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

// Runs from its making on.
class Stopwatch {
public:
    double Milliseconds() const {
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - m_begun).count();
    }
    // The processor time of this process. A growth is measured by it: a long run is interrupted by other
    // programs more often than a short one.
    double ProcessorMilliseconds() const {
        return static_cast<double>(std::clock() - m_processorBegun) * 1000 / CLOCKS_PER_SEC;
    }

private:
    std::chrono::steady_clock::time_point m_begun = std::chrono::steady_clock::now();
    std::clock_t m_processorBegun = std::clock();
};

// How long work() takes.
template <typename Work>
double Milliseconds(Work work) {
    const Stopwatch watch;
    work();
    return watch.Milliseconds();
}

// The processor time that work() takes.
template <typename Work>
double ProcessorMilliseconds(Work work) {
    const Stopwatch watch;
    work();
    return watch.ProcessorMilliseconds();
}

// Prints "name: measured unit, yardstick unit, ratio, target, met or not met". The target is the largest
// ratio of measured to yardstick that is good enough. True when it is met.
inline bool Report(const char* name, double measured, double yardstick, const char* unit, double target) {
    const double ratio = measured / yardstick;
    const bool met = ratio <= target;
    std::printf("%s: measured %.3f %s, yardstick %.3f %s, ratio %.3f, target %.2f, %s\n", name, measured,
                unit, yardstick, unit, ratio, target, met ? "met" : "not met");
    return met;
}

}  // namespace quorvane
