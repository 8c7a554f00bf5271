#include "peer_table_reporter.h"

#include <algorithm>
#include <cstdio>
#include <ostream>
#include <utility>

namespace {

constexpr const char* ours = "ours";

std::string line(const char* format, auto... values) {
    char text[256];
    std::snprintf(text, sizeof text, format, values...);
    return text;
}

} // namespace

peer_table_reporter::peer_table_reporter(std::vector<peer_goal> peer_goals, std::vector<flatness_goal> flatness_goals,
                                         OutputOptions options)
    : median_reporter(options), peer_goals_(std::move(peer_goals)), flatness_goals_(std::move(flatness_goals)) {}

void peer_table_reporter::measured(const Run& run) {
    const std::string& name = run.run_name.function_name;
    const std::size_t slash = name.rfind('/');
    if (slash == std::string::npos) return;
    const std::string key = name.substr(0, slash);
    if (!cases_.count(key)) order_.push_back(key);
    measurement& m = cases_[key][name.substr(slash + 1)];
    m.cpu_ns = run.GetAdjustedCPUTime() / benchmark::GetTimeUnitMultiplier(run.time_unit) * 1e9;
    if (auto bytes = run.counters.find("bytes"); bytes != run.counters.end()) m.bytes = bytes->second.value;
}

void peer_table_reporter::report(const peer_goal& goal) {
    std::ostream& out = GetOutputStream();
    int cases = 0, met = 0;
    std::string rows, missed;
    for (const std::string& key : order_) {
        if (key.rfind(goal.group, 0) != 0) continue;
        const auto& sides = cases_[key];
        auto mine = sides.find(ours), theirs = sides.find(goal.peer);
        if (mine == sides.end() || theirs == sides.end()) continue;
        const double ratio = theirs->second.cpu_ns / mine->second.cpu_ns;
        ++cases;
        if (ratio >= goal.min_ratio)
            ++met;
        else
            missed += line(" %s (%.2f)", key.c_str(), ratio);
        rows += line("  %-30s %12.1f %12.1f %8.2f\n", key.c_str(), mine->second.cpu_ns, theirs->second.cpu_ns, ratio);
    }
    if (cases == 0) return;
    out << "\n" << goal.what << "\n";
    out << line("  %-30s %12s %12s %8s\n", "case", "ours ns", (goal.peer + " ns").c_str(), "ratio") << rows;
    if (goal.min_ratio <= 0) {
        out << line("  ratio = %s / ours; no goal\n", goal.peer.c_str());
        return;
    }
    out << line("  ratio = %s / ours, goal >= %.2f: %s, met by %d of %d cases\n", goal.peer.c_str(), goal.min_ratio,
                met == cases ? "MET" : "MISSED", met, cases);
    if (!missed.empty()) out << "  missed by:" << missed << "\n";
}

void peer_table_reporter::report(const flatness_goal& goal) {
    std::ostream& out = GetOutputStream();
    std::vector<std::pair<double, double>> sizes;  // bytes, ns per byte
    std::string rows;
    for (const std::string& key : order_) {
        if (key.rfind(goal.group, 0) != 0) continue;
        auto mine = cases_[key].find(ours);
        if (mine == cases_[key].end() || mine->second.bytes <= 0) continue;
        const double per_byte = mine->second.cpu_ns / mine->second.bytes;
        sizes.emplace_back(mine->second.bytes, per_byte);
        rows += line("  %-30s %12.0f %14.1f %10.3f\n", key.c_str(), mine->second.bytes, mine->second.cpu_ns, per_byte);
    }
    if (sizes.size() < 2) return;
    std::sort(sizes.begin(), sizes.end());
    const double ratio = sizes.back().second / sizes.front().second;
    auto [low, high] = std::minmax_element(sizes.begin(), sizes.end(),
                                           [](const auto& a, const auto& b) { return a.second < b.second; });
    out << "\n" << goal.what << "\n";
    out << line("  %-30s %12s %14s %10s\n", "case", "bytes", "ours ns", "ns/byte") << rows;
    out << line("  largest / smallest answer, ns per byte: %.2f, goal <= %.2f: %s (highest / lowest of all sizes "
                "%.2f)\n",
                ratio, goal.max_ratio, ratio <= goal.max_ratio ? "MET" : "MISSED", high->second / low->second);
}

void peer_table_reporter::Finalize() {
    std::ostream& out = GetOutputStream();
    out << "\nCPU time per call (median of the repetitions when there are several)\n";
    for (const peer_goal& goal : peer_goals_) report(goal);
    for (const flatness_goal& goal : flatness_goals_) report(goal);
    if (errors()) out << "\n" << errors() << " benchmark(s) reported an error; see above\n";
    ConsoleReporter::Finalize();
}
