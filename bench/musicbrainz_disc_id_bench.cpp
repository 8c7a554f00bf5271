// MusicBrainz disc id from a table of contents: ours (musicbrainz_disc_id) against libdiscid's
// discid_put and discid_get_id over the same TOC, on the fixtures' disc with the most tracks and
// on an invented disc of 99 tracks. Before timing, both must give the same id, and for the
// fixture disc the id the table names.

#include <cstdint>
#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>

#include <benchmark/benchmark.h>
#include <discid/discid.h>

#include "benchmarks.h"
#include "musicbrainz/disc_id.h"

namespace {

struct toc_case {
    std::string name;
    musicbrainz_toc toc;
    std::string known_id;  // the id the fixtures name; empty for the invented disc
};

// The disc with the most tracks in discid-tocs.tsv (columns: id, first track, last track,
// lead-out, offsets separated by blanks, source file), the first of them on a tie.
toc_case longest_fixture_disc(const std::filesystem::path& tocs) {
    std::ifstream in(tocs);
    if (!in) throw std::runtime_error("cannot read " + tocs.string());
    toc_case best;
    std::string line;
    std::getline(in, line);  // the header
    while (std::getline(in, line)) {
        std::istringstream row(line);
        std::string id, first, last, leadout, offsets;
        if (!std::getline(row, id, '\t') || !std::getline(row, first, '\t') || !std::getline(row, last, '\t') ||
            !std::getline(row, leadout, '\t') || !std::getline(row, offsets, '\t'))
            continue;
        toc_case disc{id, {}, id};
        disc.toc.leadout = std::stoull(leadout);
        std::istringstream numbers(offsets);
        for (std::uint64_t offset; numbers >> offset;) disc.toc.offsets.push_back(offset);
        if (disc.toc.offsets.size() > best.toc.offsets.size()) best = disc;
    }
    if (best.toc.offsets.empty()) throw std::runtime_error("no disc in " + tocs.string());
    best.name = std::to_string(best.toc.offsets.size()) + "_tracks";
    return best;
}

// 99 tracks of about 40 seconds each, of unequal lengths.
toc_case invented_disc() {
    toc_case disc{"99_tracks", {}, {}};
    std::uint64_t frame = 150;
    for (unsigned i = 0; i < 99; ++i) {
        disc.toc.offsets.push_back(frame);
        frame += 3000 + (i * 97u) % 1500;
    }
    disc.toc.leadout = frame;
    return disc;
}

struct libdiscid_toc {
    int first = 1, last = 0;
    int offsets[100] = {};  // [0] the lead-out, then each track's offset
};

libdiscid_toc libdiscid_toc_of(const musicbrainz_toc& toc) {
    libdiscid_toc t;
    t.last = static_cast<int>(toc.offsets.size());
    t.offsets[0] = static_cast<int>(toc.leadout);
    for (std::size_t i = 0; i < toc.offsets.size(); ++i) t.offsets[i + 1] = static_cast<int>(toc.offsets[i]);
    return t;
}

struct disc_deleter {
    void operator()(DiscId* d) const { discid_free(d); }
};
using libdiscid_handle = std::unique_ptr<DiscId, disc_deleter>;

std::string libdiscid_id(DiscId* d, libdiscid_toc& t) {
    if (!discid_put(d, t.first, t.last, t.offsets)) throw std::runtime_error(discid_get_error_msg(d));
    return discid_get_id(d);
}

void ours(benchmark::State& state, const musicbrainz_toc& toc) {
    for (auto _ : state) {
        std::string id = musicbrainz_disc_id(toc);
        benchmark::DoNotOptimize(id);
    }
}

void libdiscid(benchmark::State& state, const musicbrainz_toc& toc) {
    libdiscid_handle disc(discid_new());
    libdiscid_toc t = libdiscid_toc_of(toc);
    for (auto _ : state) {
        discid_put(disc.get(), t.first, t.last, t.offsets);
        benchmark::DoNotOptimize(discid_get_id(disc.get()));
    }
}

} // namespace

void register_musicbrainz_disc_id_benchmarks(const std::filesystem::path& tocs) {
    for (const toc_case& disc : {longest_fixture_disc(tocs), invented_disc()}) {
        // Timing two computations is only a comparison if they agree.
        libdiscid_handle handle(discid_new());
        libdiscid_toc t = libdiscid_toc_of(disc.toc);
        const std::string theirs = libdiscid_id(handle.get(), t);
        const std::string mine = musicbrainz_disc_id(disc.toc);
        if (mine != theirs || (!disc.known_id.empty() && mine != disc.known_id))
            throw std::runtime_error("disc id of " + disc.name + ": ours " + mine + ", libdiscid " + theirs +
                                     (disc.known_id.empty() ? "" : ", fixtures " + disc.known_id));
        const std::string group = "mb_disc_id/" + disc.name + "/";
        benchmark::RegisterBenchmark((group + "ours").c_str(), ours, disc.toc);
        benchmark::RegisterBenchmark((group + "libdiscid").c_str(), libdiscid, disc.toc);
    }
}
