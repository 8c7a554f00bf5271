#include "peer_ratio_reporter.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ostream>
#include <string_view>
#include <utility>

namespace {

constexpr std::string_view ours_suffix = "/ours";
constexpr std::string_view peer_suffix = "/libcddb";

bool ends_with(const std::string& text, std::string_view suffix) {
    return text.size() >= suffix.size() && text.compare(text.size() - suffix.size(), suffix.size(), suffix) == 0;
}

std::string line(const char* format, auto... values) {
    char text[256];
    std::snprintf(text, sizeof text, format, values...);
    return text;
}

} // namespace

peer_ratio_reporter::peer_ratio_reporter(std::vector<speed_goal> goals, OutputOptions options)
    : median_reporter(options), goals_(std::move(goals)) {}

void peer_ratio_reporter::measured(const Run& run) {
    const std::string& name = run.run_name.function_name;
    bool is_ours = ends_with(name, ours_suffix);
    if (!is_ours && !ends_with(name, peer_suffix)) return;
    std::string key = name.substr(0, name.size() - (is_ours ? ours_suffix : peer_suffix).size());
    if (!cases_.count(key)) order_.push_back(key);
    double ns = run.GetAdjustedCPUTime() / benchmark::GetTimeUnitMultiplier(run.time_unit) * 1e9;
    (is_ours ? cases_[key].ours_ns : cases_[key].peer_ns) = ns;
}

void peer_ratio_reporter::Finalize() {
    std::ostream& out = GetOutputStream();
    out << "\nours against libcddb: CPU time per call in ns (median of the repetitions when there are several);\n"
        << "ratio = libcddb / ours, so above 1 means ours is faster\n";
    out << line("%-34s %12s %12s %8s\n", "case", "ours", "libcddb", "ratio");
    for (const std::string& key : order_) {
        const pair_times& t = cases_[key];
        if (t.ours_ns > 0 && t.peer_ns > 0)
            out << line("%-34s %12.1f %12.1f %8.2f\n", key.c_str(), t.ours_ns, t.peer_ns, t.peer_ns / t.ours_ns);
        else
            out << line("%-34s %12s\n", key.c_str(), "incomplete (an error or a filter left one side out)");
    }
    for (const speed_goal& goal : goals_) {
        int cases = 0, met = 0;
        double log_sum = 0, lowest = 0, ours_total = 0, peer_total = 0;
        std::string missed;
        for (const std::string& key : order_) {
            const pair_times& t = cases_[key];
            if (key.rfind(goal.group, 0) != 0 || t.ours_ns <= 0 || t.peer_ns <= 0) continue;
            double ratio = t.peer_ns / t.ours_ns;
            lowest = cases == 0 ? ratio : std::min(lowest, ratio);
            ++cases;
            log_sum += std::log(ratio);
            ours_total += t.ours_ns;
            peer_total += t.peer_ns;
            if (ratio >= goal.min_ratio)
                ++met;
            else
                missed += line(" %s (%.2f)", key.c_str(), ratio);
        }
        if (cases == 0) continue;
        out << "\n" << goal.what << line(" (ratio >= %.1f): %s, met by %d of %d cases\n", goal.min_ratio,
                                         met == cases ? "MET" : "MISSED", met, cases);
        out << line("  lowest ratio %.2f, geometric mean %.2f; all cases together: ours %.1f ns, libcddb %.1f ns, "
                    "ratio %.2f\n",
                    lowest, std::exp(log_sum / cases), ours_total, peer_total, peer_total / ours_total);
        if (!missed.empty()) out << "  missed by:" << missed << "\n";
    }
    if (errors()) out << "\n" << errors() << " benchmark(s) reported an error; see above\n";
    ConsoleReporter::Finalize();
}
