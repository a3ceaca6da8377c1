// How every benchmark tells its figures: one line each, always beside the yardstick measured in the same run.
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

// How long work() takes.
template <typename Work>
double Milliseconds(Work work) {
    const auto begun = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begun).count();
}

// The processor time that work() takes. A growth is measured by it: a long run is interrupted by other
// programs more often than a short one.
template <typename Work>
double ProcessorMilliseconds(Work work) {
    const std::clock_t begun = std::clock();
    work();
    return static_cast<double>(std::clock() - begun) * 1000 / CLOCKS_PER_SEC;
}

// Prints "name: measured unit, yardstick unit, ratio, target, met or missed". The target is the largest ratio
// of measured to yardstick that is good enough. True when it is met.
inline bool Report(const char* name, double measured, double yardstick, const char* unit, double target) {
    const double ratio = measured / yardstick;
    const bool met = ratio <= target;
    std::printf("%s: measured %.3f %s, yardstick %.3f %s, ratio %.3f, target %.2f, %s\n", name, measured,
                unit, yardstick, unit, ratio, target, met ? "met" : "missed");
    return met;
}

}  // namespace quorvane
