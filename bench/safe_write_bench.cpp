// The crash-safe tag write of a 30 MB FLAC file against TagLib's own in-place save of the same
// file. Two cases: the new tags fit the file's padding (ours writes the changed page in place;
// the goal is at most 1.5 times TagLib's time), and they do not (ours writes a new file beside
// the old one, syncs it and renames it over; TagLib moves the audio within the file).

#include <cstdio>
#include <filesystem>
#include <string>

#include <benchmark/benchmark.h>
#include <taglib/flacfile.h>
#include <taglib/xiphcomment.h>

#include "audio/audio_file.h"
#include "support/audio_files.h"
#include "support/temp_folder.h"

namespace {

using namespace testing_support;

// 5.5 minutes of stereo noise: about 30 MB of FLAC.
const std::string& big_flac() {
    static temp_folder folder{"tessellon-safe-write-bench"};
    static const std::string path = [] {
        const std::string wav = (folder / "noise.wav").string(), flac = (folder / "big.flac").string();
        run_audio_tool({"sox", "-R", "-n", "-r", "44100", "-c", "2", "-b", "16", wav, "synth", "330", "whitenoise"});
        run_audio_tool({"flac", "-s", "-f", "--padding=8192", "-o", flac, wav});
        std::remove(wav.c_str());
        std::printf("FLAC file: %.1f MB\n", static_cast<double>(std::filesystem::file_size(flac)) / 1e6);
        return flac;
    }();
    return path;
}

// The comment of each write: of one size (it fits the padding), or 5000 bytes longer than the
// last one, more than the 4 KiB of padding TagLib leaves after growing the tags, so every write
// must move the audio.
std::string next_comment(bool fits) {
    static std::size_t writes = 0;
    ++writes;
    return std::string(fits ? 100 : 20000 + writes * 5000, static_cast<char>('a' + writes % 26));
}

void ours(benchmark::State& state) {
    const std::string& path = big_flac();
    for (auto _ : state) {
        tag_record tags;
        tags.set_field("title", "Benchmark");
        tags.set_field("comment", next_comment(state.range(0) == 1));
        write_tags(path, tags);
    }
}

void taglib_in_place(benchmark::State& state) {
    const std::string& path = big_flac();
    for (auto _ : state) {
        TagLib::FLAC::File file(path.c_str(), true);
        TagLib::Ogg::XiphComment* c = file.xiphComment(true);
        c->removeAllFields();
        c->addField("TITLE", "Benchmark");
        c->addField("COMMENT", next_comment(state.range(0) == 1).c_str());
        if (!file.save()) state.SkipWithError("TagLib could not save");
    }
}

BENCHMARK(ours)->ArgName("fits_padding")->Arg(1)->Arg(0)->Iterations(10)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(taglib_in_place)->ArgName("fits_padding")->Arg(1)->Arg(0)->Iterations(10)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
