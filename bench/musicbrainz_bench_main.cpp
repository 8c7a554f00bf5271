// The MusicBrainz benchmarks: the response walk against pugixml and libxml2 and on growing
// answers, the disc id against libdiscid; then the tables and the speed goals. Exits 2 when a
// peer disagrees with ours before timing, 1 when a benchmark reported an error.

#include <cstdio>
#include <exception>

#include <benchmark/benchmark.h>
#include <libxml/parser.h>

#include "benchmarks.h"
#include "peer_table_reporter.h"

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    xmlInitParser();
    try {
        register_musicbrainz_walk_benchmarks();
        register_musicbrainz_disc_id_benchmarks(std::filesystem::path(TESSELLON_FIXTURES) / "musicbrainz" /
                                                "discid-tocs.tsv");
        peer_table_reporter reporter(
            {
                {"mb_walk/", "libxml2", 1.0, "response walk: no slower than libxml2"},
                {"mb_walk/", "pugixml", 0.0, "response walk against pugixml"},
                {"mb_disc_id/", "libdiscid", 1.0, "disc id: at least as fast as libdiscid"},
            },
            {{"mb_walk_size/", 1.5, "response walk, time per byte: flat within 1.5 times from 1 to 100 releases"}},
            median_reporter::console_options());
        benchmark::RunSpecifiedBenchmarks(&reporter);
        benchmark::Shutdown();
        xmlCleanupParser();
        return reporter.errors() == 0 ? 0 : 1;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "musicbrainz_bench: %s\n", e.what());
        return 2;
    }
}
