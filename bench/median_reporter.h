#pragma once
// The console report of a benchmark program that compares: each benchmark's representative run
// (the median of its repetitions, or its single run) goes to `measured`, and benchmarks that
// reported an error are counted.

#include <vector>

#include <benchmark/benchmark.h>

class median_reporter : public benchmark::ConsoleReporter {
public:
    using benchmark::ConsoleReporter::ConsoleReporter;
    void ReportRuns(const std::vector<Run>& runs) final;
    // Benchmarks that reported an error (a peer that disagreed, a file that would not parse).
    int errors() const { return errors_; }

    // Colours on a terminal, plain tables otherwise.
    static OutputOptions console_options();

protected:
    virtual void measured(const Run& run) = 0;

private:
    int errors_ = 0;
};
