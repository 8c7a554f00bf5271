// CDDB disc id: ours through the plain-lengths entry point (the whole pass from track lengths to
// the id) against libcddb's cddb_disc_calc_discid on a disc whose frame offsets are ours.

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <cddb/cddb.h>

#include "benchmarks.h"
#include "cddb/toc.h"

namespace {

// An invented disc: tracks of 2 to 7 minutes for an album, of about half a minute when there
// are 99 of them so that they still fit on one CD. The lengths are not whole frames, so the
// rounding to frames is part of the work.
std::vector<double> disc_lengths(unsigned tracks) {
    bool album = tracks <= 20;
    std::vector<double> lengths;
    for (unsigned i = 0; i < tracks; ++i)
        lengths.push_back((album ? 120.0 : 25.0) + static_cast<double>((i * 97u) % (album ? 300u : 20u)) + 0.37);
    return lengths;
}

struct disc_deleter {
    void operator()(cddb_disc_t* disc) const { cddb_disc_destroy(disc); }
};
using libcddb_disc = std::unique_ptr<cddb_disc_t, disc_deleter>;

// libcddb's view of the same disc: one track per offset, the length in whole seconds.
libcddb_disc libcddb_disc_of(const disc_toc& toc) {
    libcddb_disc disc(cddb_disc_new());
    for (std::uint32_t offset : toc.offsets) {
        cddb_track_t* track = cddb_track_new();
        cddb_track_set_frame_offset(track, static_cast<int>(offset));
        cddb_disc_add_track(disc.get(), track);
    }
    cddb_disc_set_length(disc.get(), toc.disc_seconds);
    return disc;
}

void ours(benchmark::State& state, const std::vector<double>& lengths) {
    for (auto _ : state) {
        disc_toc toc = compute_disc_toc(lengths);
        benchmark::DoNotOptimize(toc.disc_id);
    }
}

void libcddb(benchmark::State& state, const std::vector<double>& lengths) {
    disc_toc toc = compute_disc_toc(lengths);
    libcddb_disc disc = libcddb_disc_of(toc);
    // Timing two computations is only a comparison if they agree.
    if (!cddb_disc_calc_discid(disc.get()) || cddb_disc_get_discid(disc.get()) != toc.disc_id) {
        state.SkipWithError(("libcddb's disc id differs from ours, " + format_disc_id(toc.disc_id)).c_str());
        return;
    }
    for (auto _ : state) {
        cddb_disc_calc_discid(disc.get());
        benchmark::DoNotOptimize(cddb_disc_get_discid(disc.get()));
    }
}

} // namespace

void register_disc_id_benchmarks() {
    for (unsigned tracks : {12u, 99u}) {
        std::string group = "disc_id/" + std::to_string(tracks) + "_tracks/";
        std::vector<double> lengths = disc_lengths(tracks);
        benchmark::RegisterBenchmark((group + "ours").c_str(), ours, lengths);
        benchmark::RegisterBenchmark((group + "libcddb").c_str(), libcddb, lengths);
    }
}
