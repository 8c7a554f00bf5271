#pragma once
// The console report, followed by a table that sets each "<group>/<case>/ours" beside its
// "<group>/<case>/libcddb" and checks each group's speed goal.

#include <map>
#include <string>
#include <vector>

#include "median_reporter.h"

struct speed_goal {
    std::string group;   // benchmark name prefix, such as "disc_id/"
    double min_ratio;    // libcddb's time over ours that the group must reach
    std::string what;    // the goal in words
};

class peer_ratio_reporter final : public median_reporter {
public:
    peer_ratio_reporter(std::vector<speed_goal> goals, OutputOptions options);

    void Finalize() override;


private:
    void measured(const Run& run) override;
    struct pair_times {
        double ours_ns = 0;
        double peer_ns = 0;
    };

    std::vector<speed_goal> goals_;
    std::vector<std::string> order_;  // cases in the order they ran
    std::map<std::string, pair_times> cases_;
};
