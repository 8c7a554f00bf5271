// The MusicBrainz response walk: ours against pugixml and libxml2 on an answer of 5 releases
// (about 47 KB), then ours alone on answers of 1, 10 and 100 releases, to see whether its time
// per byte stays flat as answers grow. Before anything is timed, every answer is walked by all
// three and the results must agree.

#include <stdexcept>
#include <string>

#include <benchmark/benchmark.h>

#include "answer_walk.h"
#include "benchmarks.h"
#include "musicbrainz_answer.h"

namespace {

using walk_function = answer_walk_result (*)(std::string_view, std::string_view, std::size_t);

void walk(benchmark::State& state, walk_function walk_answer, const std::string& answer) {
    for (auto _ : state) {
        answer_walk_result result = walk_answer(answer, answer_disc_id, answer_track_count);
        benchmark::DoNotOptimize(result);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(answer.size()));
    state.counters["bytes"] = static_cast<double>(answer.size());
}

// Timing three walks is only a comparison if they read the answer alike: ours must find one
// candidate per release with every track and the references decoded, and each peer exactly what
// ours finds.
void check_agreement(const std::string& answer, unsigned releases) {
    const std::string where = "the answer of " + std::to_string(releases) + " releases";
    const answer_walk_result ours = walk_answer_ours(answer, answer_disc_id, answer_track_count);
    if (ours.candidates.size() != releases || ours.disc_ids.size() != 2 * releases)
        throw std::runtime_error("ours found " + std::to_string(ours.candidates.size()) + " candidates and " +
                                 std::to_string(ours.disc_ids.size()) + " disc ids in " + where);
    for (const musicbrainz_release& candidate : ours.candidates)
        if (candidate.tracks.size() != answer_track_count || candidate.tracks.back().artist.empty())
            throw std::runtime_error("ours found a candidate without all its tracks in " + where);
    if (ours.candidates.front().title != "Suite N\u00B01 & Other Pieces")
        throw std::runtime_error("ours read the first title as \"" + ours.candidates.front().title + "\" in " + where);

    const struct {
        const char* name;
        walk_function walk_answer;
    } peers[] = {{"pugixml", walk_answer_pugixml}, {"libxml2", walk_answer_libxml2}};
    for (const auto& peer : peers) {
        const answer_walk_result theirs = peer.walk_answer(answer, answer_disc_id, answer_track_count);
        if (std::string difference = first_difference(ours, theirs); !difference.empty())
            throw std::runtime_error(std::string(peer.name) + " and ours disagree on " + where + ": " + difference);
    }
}

} // namespace

void register_musicbrainz_walk_benchmarks() {
    const std::string answer = make_musicbrainz_answer(5);
    check_agreement(answer, 5);
    benchmark::RegisterBenchmark("mb_walk/5_releases/ours", walk, &walk_answer_ours, answer);
    benchmark::RegisterBenchmark("mb_walk/5_releases/pugixml", walk, &walk_answer_pugixml, answer);
    benchmark::RegisterBenchmark("mb_walk/5_releases/libxml2", walk, &walk_answer_libxml2, answer);

    for (unsigned releases : {1u, 10u, 100u}) {
        const std::string sized = make_musicbrainz_answer(releases);
        check_agreement(sized, releases);
        benchmark::RegisterBenchmark(("mb_walk_size/" + std::to_string(releases) + "_releases/ours").c_str(), walk,
                                     &walk_answer_ours, sized);
    }
}
