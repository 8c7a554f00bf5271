#include "median_reporter.h"

#include <unistd.h>

void median_reporter::ReportRuns(const std::vector<Run>& runs) {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
        if (run.error_occurred) {
            ++errors_;
            continue;
        }
        // With repetitions the median stands for the benchmark; a single run stands for itself.
        bool median = run.run_type == Run::RT_Aggregate && run.aggregate_name == "median";
        bool single = run.run_type == Run::RT_Iteration && run.repetitions <= 1;
        if (median || single) measured(run);
    }
}

benchmark::ConsoleReporter::OutputOptions median_reporter::console_options() {
    return isatty(STDOUT_FILENO) ? OO_ColorTabular : OO_Tabular;
}
