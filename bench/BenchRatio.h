// The ratio of our time to a peer's, printed after a benchmark run. A console reporter that
// keeps the time per iteration of every benchmark by name.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace vxbench {

class CRatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run> &runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run &run : runs)
            m_times[run.benchmark_name()] = run.GetAdjustedRealTime();
    }

    // Prints "what  ours/peer = r" and, with a target above 0, whether r is within it. Nothing
    // when either benchmark did not run (a filter left it out).
    void PrintRatio(const char *what, const std::string &ours, const std::string &peer,
                    double target = 0) const {
        const auto a = m_times.find(ours), b = m_times.find(peer);
        if (a == m_times.end() || b == m_times.end() || b->second <= 0) return;
        const double ratio = a->second / b->second;
        std::printf("%-44s ours/peer = %8.2f", what, ratio);
        if (target > 0)
            std::printf("  (target %.1fx: %s)", target, ratio <= target ? "met" : "missed");
        std::printf("\n");
    }

private:
    std::map<std::string, double> m_times;
};

} // namespace vxbench
