#pragma once
// The console report of the tag update and length read benchmarks, followed by ours beside the plain TagLib loop
// (and the parts of ours measured alone) and the check of the speed goal.

#include <map>
#include <string>
#include <vector>

#include "median_reporter.h"

// Starts Google Benchmark with ours' and the peer's repetitions taking turns in a random order,
// so that other work coming and going on a shared machine weighs on both alike (an explicit
// --benchmark_enable_random_interleaving later on the line wins). False: bad arguments.
bool initialize_interleaved(int argc, char** argv);

class tag_update_reporter final : public median_reporter {
public:
    // `ours` and `peer` name the two compared benchmarks; `parts` name benchmarks that time a
    // share of ours on its own, shown for the reader only. The goal: ours / peer <= max_ratio.
    tag_update_reporter(std::string ours, std::string peer, std::vector<std::string> parts, double max_ratio,
                        OutputOptions options);

    void Finalize() override;


private:
    void measured(const Run& run) override;
    struct times {
        double cpu_ms = 0;   // process CPU time: every thread, user and system
        double real_ms = 0;
    };

    std::string ours_;
    std::string peer_;
    std::vector<std::string> parts_;
    double max_ratio_;
    std::map<std::string, times> measured_;
};
