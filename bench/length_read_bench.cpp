// Reading the length of a 5-minute MP3 made by lame. Ours: the host's read of the file
// (read_audio_file: TagLib's open, the tags, and the LAME tag's delay and padding for the exact
// length). Peer: TagLib's own length read (FileRef with accurate audio properties). Before
// timing, ours must give the encoded number of samples, and TagLib a length that counts the
// delay and padding, so that each side is known to do its work.

#include <cmath>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <stdexcept>
#include <string>

#include <benchmark/benchmark.h>
#include <taglib/fileref.h>

#include "audio/audio_file.h"
#include "support/audio_files.h"
#include "support/temp_folder.h"
#include "tag_update_reporter.h"

namespace {

using namespace testing_support;

constexpr std::uint64_t samples = 300 * 44100 + 123;  // no whole number of frames
const std::string group = "length_read/5min_mp3/";

class length_read_suite {
public:
    length_read_suite() {
        const std::string wav = (scratch_.path() / "source.wav").string();
        make_audio_file(wav, samples, audio_format::wav);
        run_audio_tool({"lame", "--quiet", wav, mp3_});
        const track_info info = read_audio_file(mp3_);
        if (info.length != static_cast<double>(samples) / 44100 || std::string(info.info_get(length_kind_field)) != "exact")
            throw std::runtime_error("ours does not read the exact length of " + mp3_);
        if (std::abs(taglib_seconds() - static_cast<double>(samples) / 44100) < 0.02)
            throw std::runtime_error("TagLib's length of " + mp3_ + " leaves out the encoder's delay and padding");
    }

    void register_benchmarks() {
        benchmark::RegisterBenchmark((group + "ours").c_str(), [this](benchmark::State& state) {
            for (auto _ : state) benchmark::DoNotOptimize(read_audio_file(mp3_).length);
        })->Unit(benchmark::kMicrosecond);
        benchmark::RegisterBenchmark((group + "taglib").c_str(), [this](benchmark::State& state) {
            for (auto _ : state) benchmark::DoNotOptimize(taglib_seconds());
        })->Unit(benchmark::kMicrosecond);
    }

private:
    double taglib_seconds() const {
        TagLib::FileRef file(mp3_.c_str(), true, TagLib::AudioProperties::Accurate);
        if (file.isNull() || !file.audioProperties()) throw std::runtime_error("TagLib cannot read " + mp3_);
        return file.audioProperties()->lengthInMilliseconds() / 1000.0;
    }

    temp_folder scratch_{"tessellon-length-bench"};
    const std::string mp3_ = (scratch_.path() / "five minutes.mp3").string();
};

} // namespace

int main(int argc, char** argv) {
    if (!initialize_interleaved(argc, argv)) return 2;
    try {
        length_read_suite suite;
        suite.register_benchmarks();
        tag_update_reporter reporter(group + "ours", group + "taglib", {}, 1.5, median_reporter::console_options());
        benchmark::RunSpecifiedBenchmarks(&reporter);
        benchmark::Shutdown();
        return reporter.errors() == 0 ? 0 : 1;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "length_read_bench: %s\n", e.what());
        return 2;
    }
}
