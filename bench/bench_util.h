#pragma once
// Timing helpers shared by the benchmark programs: medians of repeated runs,
// and the two output lines the bench runner collects:
//   BENCH <name> <value> <unit>
//   RATIO <name> <value>
#include <QElapsedTimer>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

namespace Bench {

// Nanoseconds one call of fn takes.
inline double timeNs(const std::function<void()> &fn)
{
    QElapsedTimer timer;
    timer.start();
    fn();
    return double(timer.nsecsElapsed());
}

inline double median(std::vector<double> values)
{
    if (values.empty())
        return 0.0;
    std::sort(values.begin(), values.end());
    const size_t n = values.size();
    return n % 2 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2.0;
}

// Median of `runs` timings of fn, after one untimed warm-up run.
inline double medianNs(int runs, const std::function<void()> &fn)
{
    fn();
    std::vector<double> t;
    t.reserve(size_t(runs));
    for (int i = 0; i < runs; ++i)
        t.push_back(timeNs(fn));
    return median(t);
}

// Times a and b alternately, so that drifts of the machine hit both alike;
// returns the medians in nanoseconds.
inline std::pair<double, double> alternatingMediansNs(int runs, const std::function<void()> &a,
                                                      const std::function<void()> &b)
{
    a();
    b();
    std::vector<double> ta;
    std::vector<double> tb;
    for (int i = 0; i < runs; ++i) {
        ta.push_back(timeNs(a));
        tb.push_back(timeNs(b));
    }
    return {median(ta), median(tb)};
}

inline void report(const char *name, double value, const char *unit)
{
    std::printf("BENCH %s %.3f %s\n", name, value, unit);
    std::fflush(stdout);
}

inline void ratio(const char *name, double value)
{
    std::printf("RATIO %s %.3f\n", name, value);
    std::fflush(stdout);
}

} // namespace Bench
