#pragma once

#include <benchmark/benchmark.h>

#include <cstdio>
#include <ctime>
#include <string>
#include <utility>
#include <vector>

namespace bench {

/// Processor time of this process in seconds; the wall clock tells more of what else the machine does.
inline double CpuSeconds() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

/// Five repetitions, of which the median is told. Benchmarks come in pairs, "XProgram" and "XPlain".
inline void Measure(benchmark::internal::Benchmark* row) {
    row->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly();
}

/// As Measure, for works that tell their own processor time by SetIterationTime.
inline void MeasureOnce(benchmark::internal::Benchmark* row) {
    Measure(row);
    row->UseManualTime()->Iterations(1);
}

/// Tells for each pair how many times as much processor time the program takes as plain SQLite.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    RatioReporter()
        : ConsoleReporter(OO_Tabular) {}

    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs)
            if (run.aggregate_name == "median")
                m_medians.emplace_back(run.run_name.function_name +
                                           (run.run_name.args.empty() ? "" : " " + run.run_name.args),
                                       run.run_name.time_type == "manual_time" ? run.GetAdjustedRealTime()
                                                                               : run.GetAdjustedCPUTime());
    }

    void Finalize() override {
        static const std::string program = "Program";
        for (const auto& [name, time] : m_medians) {
            const std::size_t mark = name.find(program);
            if (mark == std::string::npos)
                continue;
            std::string work = name;
            const double plain = TimeOf(std::string(name).replace(mark, program.size(), "Plain"));
            if (plain > 0)
                std::printf("| %s | %.2f | %.1f : %.1f ms |\n", work.erase(mark, program.size()).c_str(),
                            time / plain, time, plain);
        }
    }

private:
    double TimeOf(const std::string& name) const {
        for (const auto& [other, time] : m_medians)
            if (other == name)
                return time;
        return 0;
    }

    std::vector<std::pair<std::string, double>> m_medians;
};

/// Runs what the command line asks for.
inline int RunPairs(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return 0;
}

} // namespace bench
