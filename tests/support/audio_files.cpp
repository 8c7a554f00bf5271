#include "support/audio_files.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include <unistd.h>

#include "support/run_program.h"
#include "support/temp_folder.h"

namespace testing_support {

namespace {

constexpr std::uint32_t sample_rate = 44100;

// The null input at the file's rate, so that "Ns" counts samples of that rate.
std::vector<std::string> sox_silence(const std::filesystem::path& out, std::uint64_t frames, bool sixteen_bit) {
    // Repeatable (-R) and undithered (-D): otherwise sox dithers with a fresh random seed, and an
    // Ogg file's pages, and so the length TagLib reads from them, change from run to run.
    std::vector<std::string> args = {"sox", "-R", "-D", "-r", std::to_string(sample_rate), "-c", "1", "-n"};
    if (sixteen_bit) args.insert(args.end(), {"-b", "16"});
    // An empty comment keeps sox from tagging the file ("Processed by SoX").
    args.insert(args.end(), {"--comment", "", out.string(), "trim", "0", std::to_string(frames) + "s"});
    return args;
}

} // namespace

std::string extension_of(audio_format format) { return "." + name_of(format); }

std::string name_of(audio_format format) {
    switch (format) {
    case audio_format::flac: return "flac";
    case audio_format::mp3: return "mp3";
    case audio_format::ogg: return "ogg";
    case audio_format::opus: return "opus";
    case audio_format::wav: return "wav";
    case audio_format::m4a: return "m4a";
    }
    return "?";
}

std::uint64_t frames_at_44100(double seconds) { return static_cast<std::uint64_t>(std::llround(seconds * sample_rate)); }

std::string run_audio_tool(const std::vector<std::string>& args) {
    std::vector<std::string> argv = args;
    argv[0] = installed_program(args[0]);
    const program_result r = run_program(argv);
    if (r.exit_code != 0) {
        std::string line;
        for (const std::string& a : args) line += (line.empty() ? "" : " ") + a;
        throw std::runtime_error(line + " failed (exit " + std::to_string(r.exit_code) + "): " + r.err);
    }
    return r.out;
}

std::string installed_program(const std::string& name) {
    const char* path = std::getenv("PATH");
    std::istringstream folders(path ? path : "");
    for (std::string folder; std::getline(folders, folder, ':');) {
        const std::filesystem::path candidate = std::filesystem::path(folder.empty() ? "." : folder) / name;
        if (::access(candidate.c_str(), X_OK) == 0) return candidate.string();
    }
    throw std::runtime_error(name + " is not installed (scripts/setup installs it)");
}

void make_audio_file(const std::filesystem::path& path, std::uint64_t frames, audio_format format) {
    switch (format) {
    case audio_format::flac:
    case audio_format::wav: run_audio_tool(sox_silence(path, frames, true)); break;
    case audio_format::mp3:
    case audio_format::ogg: run_audio_tool(sox_silence(path, frames, false)); break;
    case audio_format::opus: {
        std::filesystem::path wav = path;
        wav += ".source.wav";
        run_audio_tool(sox_silence(wav, frames, true));
        // opusenc tags what it makes with its own ENCODER field; it stays, as on real files.
        run_audio_tool({"opusenc", "--quiet", wav.string(), path.string()});
        std::filesystem::remove(wav);
        break;
    }
    case audio_format::m4a: {
        std::filesystem::path wav = path;
        wav += ".source.wav";
        run_audio_tool(sox_silence(wav, frames, true));
        // ALAC without ffmpeg's own encoder tag, so that the file starts untagged, and without an
        // edit list, so that its length is the container's estimate (AAC files carry one).
        run_audio_tool({"ffmpeg", "-loglevel", "error", "-i", wav.string(), "-c:a", "alac", "-map_metadata", "-1",
                        "-fflags", "+bitexact", "-flags:a", "+bitexact", "-use_editlist", "0", path.string()});
        std::filesystem::remove(wav);
        break;
    }
    }
}

std::vector<std::filesystem::path> make_album(const std::filesystem::path& folder,
                                              const std::vector<double>& lengths_seconds, audio_format format) {
    std::filesystem::create_directories(folder);
    std::vector<std::filesystem::path> paths;
    for (std::size_t i = 0; i < lengths_seconds.size(); ++i) {
        const std::string number = (i + 1 < 10 ? "0" : "") + std::to_string(i + 1);
        paths.push_back(folder / ("Track " + number + extension_of(format)));
        make_audio_file(paths.back(), frames_at_44100(lengths_seconds[i]), format);
    }
    return paths;
}

std::vector<double> fixture_disc_lengths(const std::string& disc_id) {
    fixture_toc toc = read_fixture_toc(disc_id);
    std::vector<long> starts = toc.offsets;
    starts.push_back(toc.disc_seconds * 75);
    std::vector<double> lengths;
    for (std::size_t i = 0; i + 1 < starts.size(); ++i) lengths.push_back(static_cast<double>(starts[i + 1] - starts[i]) / 75.0);
    return lengths;
}

void make_cd_frames_flac(const std::filesystem::path& path, std::uint64_t cd_frames) {
    run_audio_tool({"sox", "-R", "-D", "-r", "600", "-c", "1", "-n", "-b", "16", path.string(), "trim", "0",
                    std::to_string(cd_frames * 8) + "s"});
}

std::string cue_time(std::uint64_t cd_frames) {
    char text[32];
    std::snprintf(text, sizeof text, "%02llu:%02llu:%02llu", static_cast<unsigned long long>(cd_frames / 4500),
                  static_cast<unsigned long long>(cd_frames / 75 % 60), static_cast<unsigned long long>(cd_frames % 75));
    return text;
}

std::vector<std::string> independent_tag_lines(const std::filesystem::path& path) {
    const std::string extension = path.extension().string();
    if (extension == ".flac") return lines_of(run_audio_tool({"metaflac", "--export-tags-to=-", path.string()}));
    if (extension == ".ogg") return lines_of(run_audio_tool({"vorbiscomment", "-l", path.string()}));
    std::vector<std::string> lines;
    if (extension == ".mp3") {
        // mid3v2 lists the frames as stored; mutagen-inspect would show ID3v2.3 frames (TYER)
        // already converted. It starts with "IDv2 tag info for <path>", and says so when the
        // file has no tag.
        lines = lines_of(run_audio_tool({"mid3v2", "--list", path.string()}));
        std::erase_if(lines, [](const std::string& l) {
            return l.rfind("IDv2 tag info for ", 0) == 0 || l == "No ID3 header found; skipping.";
        });
        return lines;
    }
    // mutagen-inspect starts with "-- <path>" and "- <stream description>"; the tags follow.
    lines = lines_of(run_audio_tool({"mutagen-inspect", path.string()}));
    lines.erase(lines.begin(), lines.begin() + static_cast<long>(std::min<std::size_t>(2, lines.size())));
    return lines;
}

} // namespace testing_support
