// An album encoded from the same sound by lame (MP3) and ffmpeg (AAC in M4A) is the same disc as
// its FLAC twin: the same ids, and `show` gives each track the FLAC track's exact length.

#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/audio_files.h"
#include "support/tessellon_cli.h"

using testing_support::audio_format;

namespace {

// The tracks' lengths and their kinds as `show --json` prints them.
std::vector<std::string> shown_lengths(const testing_support::tessellon_cli& cli, const std::filesystem::path& album) {
    const testing_support::program_result r = cli.run({"show", album.string(), "--json"});
    EXPECT_EQ(r.exit_code, 0) << r.err;
    static const std::regex length(R"("length":[0-9.]+,"length_kind":"[a-z]+")");
    std::vector<std::string> out;
    for (std::sregex_iterator m(r.out.begin(), r.out.end(), length), end; m != end; ++m) out.push_back(m->str());
    return out;
}

} // namespace

TEST(lossy_album, lame_and_ffmpeg_encodings_give_the_ids_and_lengths_of_the_flac_twin) {
    testing_support::temp_folder folder;
    const testing_support::tessellon_cli cli;
    auto discid = [&](const std::filesystem::path& album) { return cli.run({"discid", album.string(), "--json"}); };
    // No length is a whole number of MP3 or AAC frames; the MP3 files' delay and padding alone
    // (about 1500 samples) would move every later track's offset by two CD frames.
    const std::vector<double> lengths = {4.2, 7.31, 5.55};
    const auto wavs = testing_support::make_album(folder / "wav", lengths, audio_format::wav);
    for (const char* encoded : {"flac", "mp3", "m4a"}) std::filesystem::create_directories(folder / encoded);
    for (const auto& wav : wavs) {
        const std::string name = wav.stem().string();
        testing_support::run_audio_tool({"flac", "--silent", wav.string(), "-o", (folder / "flac" / (name + ".flac")).string()});
        testing_support::run_audio_tool({"lame", "--quiet", wav.string(), (folder / "mp3" / (name + ".mp3")).string()});
        testing_support::run_audio_tool({"ffmpeg", "-loglevel", "error", "-i", wav.string(), "-c:a", "aac",
                                         (folder / "m4a" / (name + ".m4a")).string()});
    }

    const testing_support::program_result flac_ids = discid(folder / "flac");
    ASSERT_EQ(flac_ids.exit_code, 0) << flac_ids.err;
    const std::vector<std::string> flac_lengths = shown_lengths(cli, folder / "flac");
    ASSERT_EQ(flac_lengths.size(), lengths.size());
    for (const char* encoded : {"mp3", "m4a"}) {
        SCOPED_TRACE(encoded);
        const testing_support::program_result ids = discid(folder / encoded);
        EXPECT_EQ(ids.out, flac_ids.out) << ids.err;
        EXPECT_EQ(shown_lengths(cli, folder / encoded), flac_lengths);
    }
    EXPECT_NE(flac_lengths[0].find("\"exact\""), std::string::npos) << flac_lengths[0];
}
