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
            m_times[run.benchmark_name()] = {run.GetAdjustedRealTime(), run.GetAdjustedCPUTime()};
    }

    // Prints "what  ours/peer = r" (wall-clock time) and, with a target above 0, whether r is
    // within it, then the ratio of CPU times (steadier on a busy machine). Nothing when either
    // benchmark did not run (a filter left it out).
    void PrintRatio(const char *what, const std::string &ours, const std::string &peer,
                    double target = 0) const {
        const auto a = m_times.find(ours), b = m_times.find(peer);
        if (a == m_times.end() || b == m_times.end() || b->second.real <= 0 || b->second.cpu <= 0)
            return;
        const double ratio = a->second.real / b->second.real;
        std::printf("%-44s ours/peer = %8.2f", what, ratio);
        if (target > 0)
            std::printf("  (target %.1fx: %s)", target, ratio <= target ? "met" : "missed");
        std::printf("  cpu %.2f\n", a->second.cpu / b->second.cpu);
    }

private:
    struct CTimes {
        double real;
        double cpu;
    };
    std::map<std::string, CTimes> m_times;
};

} // namespace vxbench
