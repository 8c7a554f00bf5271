// Real discs with their ids as published (published_disc_ids.tsv records where): a cue sheet
// and one silent FLAC file laid out as the disc, and the same table of contents given with --toc,
// give the published CDDB and MusicBrainz ids, hidden first tracks and data tracks included.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "support/audio_files.h"
#include "support/tessellon_cli.h"

using namespace testing_support;

namespace {

struct published_disc {
    std::string source, toc, cddb, musicbrainz;
    std::vector<std::uint32_t> offsets;
    std::uint32_t leadout = 0;
    std::size_t data_track = 0;  // 1-based, 0 for none
};

std::vector<published_disc> published_discs() {
    std::ifstream in(std::string(TESSELLON_SOURCE_DIR) + "/tests/integration/cue/published_disc_ids.tsv");
    std::vector<published_disc> discs;
    std::string line;
    std::getline(in, line);  // the header
    while (std::getline(in, line)) {
        if (line.empty() || line.front() == '#' || line.rfind("source\t", 0) == 0) continue;
        std::vector<std::string> cells;
        std::istringstream row(line);
        for (std::string cell; std::getline(row, cell, '\t');) cells.push_back(cell);
        cells.resize(5);
        published_disc d;
        d.source = cells[0], d.toc = cells[1], d.cddb = cells[3], d.musicbrainz = cells[4];
        d.data_track = cells[2].empty() ? 0 : std::stoul(cells[2]);
        std::istringstream toc(d.toc);
        std::uint32_t first = 0, last = 0, n = 0;
        toc >> first >> last >> d.leadout;
        while (toc >> n) d.offsets.push_back(n);
        discs.push_back(d);
    }
    return discs;
}

// A data track's image: sectors of 2352 bytes, sparse, as nothing reads them.
void data_image(const std::filesystem::path& path, std::uint32_t sectors) {
    write_file(path, "");
    std::filesystem::resize_file(path, std::uintmax_t{sectors} * 2352);
}

// The disc as a ripper keeps it: the audio in disc.flac, a data track in data.bin (an enhanced
// disc's after the 11400-frame gap between its sessions).
std::filesystem::path write_album(const std::filesystem::path& folder, const published_disc& d) {
    const std::size_t n = d.offsets.size();
    const bool enhanced = d.data_track == n, mixed = d.data_track == 1;
    const std::size_t first_audio = mixed ? 1 : 0, end_audio = enhanced ? n - 1 : n;
    const std::uint32_t audio_base = d.offsets[first_audio] - (mixed ? 0 : d.offsets[0] - 150);
    std::string cue = "REM DISC " + d.source + "\n";
    auto track = [&](std::size_t i, const char* mode) {
        char number[8];
        std::snprintf(number, sizeof number, "%02zu", i + 1);
        cue += std::string("  TRACK ") + number + " " + mode + "\n";
    };
    if (mixed) {
        data_image(folder / "data.bin", d.offsets[1] - 150);
        cue += "FILE \"data.bin\" BINARY\n";
        track(0, "MODE1/2352");
        cue += "    INDEX 01 00:00:00\n";
    }
    cue += "FILE \"disc.flac\" WAVE\n";
    for (std::size_t i = first_audio; i < end_audio; ++i) {
        track(i, "AUDIO");
        if (i == 0 && d.offsets[0] > 150) cue += "    INDEX 00 00:00:00\n";
        cue += "    INDEX 01 " + cue_time(d.offsets[i] - audio_base) + "\n";
    }
    make_cd_frames_flac(folder / "disc.flac", (enhanced ? d.offsets[n - 1] - 11400 : d.leadout) - audio_base);
    if (enhanced) {
        data_image(folder / "data.bin", d.leadout - d.offsets[n - 1]);
        cue += "FILE \"data.bin\" BINARY\n";
        track(n - 1, "MODE1/2352");
        cue += "    PREGAP 02:32:00\n    INDEX 01 00:00:00\n";
    }
    write_file(folder / "disc.cue", cue);
    return folder / "disc.cue";
}

std::string upper(std::string s) {
    for (char& c : s) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return s;
}

// The CDDB and MusicBrainz ids of `tessellon discid ... --json`, in that order.
std::pair<std::string, std::string> ids_of(const program_result& r) {
    std::pair<std::string, std::string> ids;
    const std::string key = "\"disc_id\":\"";
    std::size_t at = r.out.find(key);
    for (std::string* id : {&ids.first, &ids.second}) {
        if (at == std::string::npos) break;
        at += key.size();
        *id = r.out.substr(at, r.out.find('"', at) - at);
        at = r.out.find(key, at);
    }
    return ids;
}

struct published_ids : ::testing::TestWithParam<published_disc>, tessellon_cli {};

} // namespace

TEST_P(published_ids, a_cue_sheet_and_the_toc_give_the_published_ids) {
    const published_disc& d = GetParam();
    temp_folder folder{"tessellon-disc"};
    const std::filesystem::path cue = write_album(folder.path(), d);
    std::vector<std::string> toc_args = {"--toc", d.toc};
    if (d.data_track) toc_args.insert(toc_args.end(), {"--data-track", std::to_string(d.data_track)});

    for (const std::vector<std::string>& album : {std::vector<std::string>{cue.string()}, toc_args}) {
        std::vector<std::string> args = {"discid"};
        args.insert(args.end(), album.begin(), album.end());
        args.push_back("--json");
        program_result r = run(args);
        ASSERT_EQ(r.exit_code, 0) << album[0] << ": " << r.err;
        auto [cddb, musicbrainz] = ids_of(r);
        if (!d.cddb.empty()) {
            EXPECT_EQ(cddb, upper(d.cddb)) << album[0] << " (" << d.source << ")";
        }
        if (!d.musicbrainz.empty()) {
            EXPECT_EQ(musicbrainz, d.musicbrainz) << album[0] << " (" << d.source << ")";
        }
    }
}

INSTANTIATE_TEST_SUITE_P(discs, published_ids, ::testing::ValuesIn(published_discs()),
                         [](const auto& info) { return "disc_" + std::to_string(info.index + 1); });
