#pragma once
// The console report of benchmarks named "<group>/<case>/<side>", where the side is "ours" or a
// peer library's name, followed by a table per speed goal: ours against one peer case by case
// (ratio = peer / ours, above 1 means ours is faster), or ours alone across cases of growing
// size (time per byte, from the "bytes" counter).

#include <map>
#include <string>
#include <vector>

#include "median_reporter.h"

struct peer_goal {
    std::string group;  // benchmark name prefix, such as "mb_walk/"
    std::string peer;   // the side ours is set against
    double min_ratio;   // the peer's time over ours that every case must reach; 0: shown only
    std::string what;   // the goal in words
};

struct flatness_goal {
    std::string group;
    double max_ratio;   // ours' time per byte on the largest case over that on the smallest
    std::string what;
};

class peer_table_reporter final : public median_reporter {
public:
    peer_table_reporter(std::vector<peer_goal> peer_goals, std::vector<flatness_goal> flatness_goals,
                        OutputOptions options);

    void Finalize() override;

private:
    void measured(const Run& run) override;
    void report(const peer_goal& goal);
    void report(const flatness_goal& goal);

    struct measurement {
        double cpu_ns = 0;  // per iteration
        double bytes = 0;   // the "bytes" counter, 0 when not set
    };

    std::vector<peer_goal> peer_goals_;
    std::vector<flatness_goal> flatness_goals_;
    std::vector<std::string> order_;  // cases in the order they ran
    std::map<std::string, std::map<std::string, measurement>> cases_;  // case -> side -> measurement
};
