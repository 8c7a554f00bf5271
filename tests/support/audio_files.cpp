#include "support/audio_files.h"

#include <algorithm>
#include <cmath>
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

std::vector<std::string> lines_of(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        if (!line.empty()) lines.push_back(line);
    return lines;
}

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

// ---- M4A: no encoder for it is installed, so ALAC is written here. ALAC frames may store
// their samples uncompressed ("escape" frames), which keeps the writer small while the file
// stays a complete ALAC stream in a standard MP4 container.

constexpr std::uint32_t alac_frame_length = 4096;

class bit_writer {
public:
    void put(std::uint32_t value, int bits) {
        for (int i = bits - 1; i >= 0; --i) {
            if (used_ % 8 == 0) bytes_.push_back('\0');
            if ((value >> i) & 1u) bytes_.back() = static_cast<char>(bytes_.back() | (0x80 >> (used_ % 8)));
            ++used_;
        }
    }
    std::string take() { return std::move(bytes_); }

private:
    std::string bytes_;
    std::size_t used_ = 0;
};

// One mono 16-bit escape frame of `samples` zero samples.
std::string alac_frame(std::uint32_t samples) {
    bit_writer w;
    w.put(0, 3);   // single channel element
    w.put(0, 4);   // element instance
    w.put(0, 12);  // unused
    const bool partial = samples != alac_frame_length;
    w.put(partial ? 1 : 0, 1);  // the sample count follows
    w.put(0, 2);                // no shifted bytes
    w.put(1, 1);                // escape: samples stored as they are
    if (partial) w.put(samples, 32);
    for (std::uint32_t i = 0; i < samples; ++i) w.put(0, 16);
    w.put(7, 3);  // end element
    return w.take();
}

std::string be(std::uint64_t value, int bytes) {
    std::string out;
    for (int i = bytes - 1; i >= 0; --i) out.push_back(static_cast<char>((value >> (8 * i)) & 0xff));
    return out;
}

std::string box(const std::string& type, const std::string& body) { return be(8 + body.size(), 4) + type + body; }
std::string full_box(const std::string& type, std::uint32_t flags, const std::string& body) {
    return box(type, be(flags, 4) + body);
}

const std::string unity_matrix =
    be(0x10000, 4) + be(0, 4) + be(0, 4) + be(0, 4) + be(0x10000, 4) + be(0, 4) + be(0, 4) + be(0, 4) + be(0x40000000, 4);

std::string alac_sample_entry(std::uint32_t max_frame_bytes, std::uint32_t average_bit_rate) {
    const std::string config = be(alac_frame_length, 4) + be(0, 1) + be(16, 1) + be(40, 1) + be(10, 1) + be(14, 1) +
                               be(1, 1) + be(255, 2) + be(max_frame_bytes, 4) + be(average_bit_rate, 4) +
                               be(sample_rate, 4);
    const std::string body = std::string(6, '\0') + be(1, 2)        // data reference index
                             + std::string(8, '\0') + be(1, 2)      // one channel
                             + be(16, 2) + be(0, 2) + be(0, 2)      // 16 bits
                             + be(std::uint64_t{sample_rate} << 16, 4) + full_box("alac", 0, config);
    return box("alac", body);
}

void write_alac_m4a(const std::filesystem::path& path, std::uint64_t frames) {
    std::vector<std::string> packets;
    for (std::uint64_t done = 0; done < frames;) {
        const auto n = static_cast<std::uint32_t>(std::min<std::uint64_t>(alac_frame_length, frames - done));
        packets.push_back(alac_frame(n));
        done += n;
    }
    std::string media, sizes;
    std::uint32_t max_bytes = 0;
    for (const std::string& p : packets) {
        media += p;
        sizes += be(p.size(), 4);
        max_bytes = std::max<std::uint32_t>(max_bytes, static_cast<std::uint32_t>(p.size()));
    }
    const std::uint64_t full = frames / alac_frame_length, rest = frames % alac_frame_length;
    const std::string stts = be(rest ? 2 : 1, 4) + be(full, 4) + be(alac_frame_length, 4) + (rest ? be(1, 4) + be(rest, 4) : "");
    const auto bit_rate = static_cast<std::uint32_t>(frames ? media.size() * 8 * sample_rate / frames : 0);

    const std::string ftyp = box("ftyp", std::string("M4A ") + be(0, 4) + "M4A mp42isom");
    // The moov box comes first, as streaming writers place it; its size does not depend on
    // where the media lands, so the chunk offset is computed from a first rendering.
    auto render_moov = [&](std::uint64_t media_offset) {
        const std::string stbl = box("stbl", full_box("stsd", 0, be(1, 4) + alac_sample_entry(max_bytes, bit_rate)) +
                                                 full_box("stts", 0, stts) +
                                                 full_box("stsc", 0, be(1, 4) + be(1, 4) + be(packets.size(), 4) + be(1, 4)) +
                                                 full_box("stsz", 0, be(0, 4) + be(packets.size(), 4) + sizes) +
                                                 full_box("stco", 0, be(1, 4) + be(media_offset, 4)));
        const std::string minf = box("minf", full_box("smhd", 0, be(0, 4)) +
                                                 box("dinf", full_box("dref", 0, be(1, 4) + full_box("url ", 1, ""))) + stbl);
        const std::string mdia = box("mdia", full_box("mdhd", 0, be(0, 4) + be(0, 4) + be(sample_rate, 4) + be(frames, 4) + be(0x55c4, 2) + be(0, 2)) +
                                                 full_box("hdlr", 0, be(0, 4) + "soun" + std::string(12, '\0') + std::string("SoundHandler") + '\0') +
                                                 minf);
        const std::string tkhd = full_box("tkhd", 7, be(0, 4) + be(0, 4) + be(1, 4) + be(0, 4) + be(frames, 4) + std::string(8, '\0') +
                                                         be(0, 2) + be(0, 2) + be(0x0100, 2) + be(0, 2) + unity_matrix + be(0, 4) + be(0, 4));
        const std::string mvhd = full_box("mvhd", 0, be(0, 4) + be(0, 4) + be(sample_rate, 4) + be(frames, 4) + be(0x10000, 4) +
                                                         be(0x0100, 2) + std::string(10, '\0') + unity_matrix + std::string(24, '\0') + be(2, 4));
        return box("moov", mvhd + box("trak", tkhd + mdia));
    };
    const std::size_t moov_size = render_moov(0).size();
    const std::string moov = render_moov(ftyp.size() + moov_size + 8);
    write_file(path, ftyp + moov + box("mdat", media));
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
    case audio_format::m4a: write_alac_m4a(path, frames); break;
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
