// The CDDB benchmarks: every suite, then the table of ratios to libcddb and the speed goals.
// Exits non-zero when a benchmark could not be measured honestly (an error was reported).

#include <cstdio>
#include <exception>


#include <benchmark/benchmark.h>

#include "benchmarks.h"
#include "peer_ratio_reporter.h"

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    try {
        register_disc_id_benchmarks();
        xmcd_parse_suite parse(std::filesystem::path(TESSELLON_FIXTURES) / "xmcd" / "entries");
        parse.register_benchmarks();
        peer_ratio_reporter reporter(
            {
                {"disc_id/", 1.0, "disc id: no slower than libcddb"},
                {"xmcd_parse/", 5.0, "xmcd parse: at least 5 times faster than libcddb per entry"},
            },
            median_reporter::console_options());
        benchmark::RunSpecifiedBenchmarks(&reporter);
        benchmark::Shutdown();
        return reporter.errors() == 0 ? 0 : 1;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "cddb_bench: %s\n", e.what());
        return 2;
    }
}
