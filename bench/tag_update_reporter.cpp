#include "tag_update_reporter.h"

#include <cstdio>
#include <ostream>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

namespace {

std::string line(const char* format, auto... values) {
    char text[256];
    std::snprintf(text, sizeof text, format, values...);
    return text;
}

double in_ms(double time, benchmark::TimeUnit unit) { return time / benchmark::GetTimeUnitMultiplier(unit) * 1e3; }

} // namespace

tag_update_reporter::tag_update_reporter(std::string ours, std::string peer, std::vector<std::string> parts,
                                         double max_ratio, OutputOptions options)
    : median_reporter(options), ours_(std::move(ours)), peer_(std::move(peer)), parts_(std::move(parts)),
      max_ratio_(max_ratio) {}

void tag_update_reporter::measured(const Run& run) {
    // The name without the "/process_time" and "/real_time" decorations.
    measured_[run.run_name.function_name] = {in_ms(run.GetAdjustedCPUTime(), run.time_unit),
                                             in_ms(run.GetAdjustedRealTime(), run.time_unit)};
}

void tag_update_reporter::Finalize() {
    std::ostream& out = GetOutputStream();
    out << "\nper pass (over the album or the file), in ms (median of the repetitions when there are several);\n"
        << "CPU is the process's CPU time: every thread, user and system\n";
    out << line("%-40s %10s %10s\n", "benchmark", "CPU ms", "real ms");
    std::vector<std::string> shown{ours_, peer_};
    shown.insert(shown.end(), parts_.begin(), parts_.end());
    for (const std::string& name : shown) {
        auto it = measured_.find(name);
        if (it == measured_.end())
            out << line("%-40s %10s\n", name.c_str(), "not measured (an error or a filter left it out)");
        else
            out << line("%-40s %10.3f %10.3f\n", name.c_str(), it->second.cpu_ms, it->second.real_ms);
    }
    auto ours = measured_.find(ours_), peer = measured_.find(peer_);
    if (ours != measured_.end() && peer != measured_.end() && peer->second.cpu_ms > 0 && peer->second.real_ms > 0) {
        double cpu_ratio = ours->second.cpu_ms / peer->second.cpu_ms;
        double real_ratio = ours->second.real_ms / peer->second.real_ms;
        bool met = cpu_ratio <= max_ratio_;
        out << line("\nours / plain loop: %.2f (CPU), %.2f (real)\n", cpu_ratio, real_ratio);
        out << line("goal, ours at most %.1f times the plain loop in CPU time: %s\n", max_ratio_,
                    met ? "MET" : "MISSED");
    } else {
        out << "\ngoal not checked: ours or the plain loop was not measured\n";
    }
    if (errors()) out << "\n" << errors() << " benchmark(s) reported an error; see above\n";
    ConsoleReporter::Finalize();
}

bool initialize_interleaved(int argc, char** argv) {
    std::vector<char*> args(argv, argv + argc);
    static char interleave[] = "--benchmark_enable_random_interleaving=true";
    args.insert(args.begin() + 1, interleave);
    int count = static_cast<int>(args.size());
    benchmark::Initialize(&count, args.data());
    return !benchmark::ReportUnrecognizedArguments(count, args.data());
}
