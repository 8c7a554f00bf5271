#pragma once
// Real audio files for tests, made with the system's audio tools (sox, opusenc, ffmpeg for
// ALAC in M4A); and their tags as independent readers (metaflac, vorbiscomment, mid3v2,
// mutagen-inspect) print them, to check what the host wrote without the host's own reader.

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace testing_support {

enum class audio_format { flac, mp3, ogg, opus, wav, m4a };

// The file name extension of a format (".flac").
std::string extension_of(audio_format format);
// A short name for test output ("flac").
std::string name_of(audio_format format);

// Sample frames at 44100 Hz nearest to `seconds`.
std::uint64_t frames_at_44100(double seconds);

// Makes `path`: `frames` sample frames of mono 16-bit silence at 44100 Hz, encoded as
// `format`, without tags. Raises std::runtime_error naming the tool that failed.
void make_audio_file(const std::filesystem::path& path, std::uint64_t frames, audio_format format);

// An album in `folder` (created when missing): one untagged file per length, named
// "Track 01<ext>", "Track 02<ext>", ... Returns the paths in track order.
std::vector<std::filesystem::path> make_album(const std::filesystem::path& folder,
                                              const std::vector<double>& lengths_seconds, audio_format format);

// The track lengths in seconds of disc `disc_id` of the shared fixtures' table of contents
// (xmcd/cddb-discid-tocs.tsv): each track plays from its frame offset to the next one's, the
// last to the disc's length (its seconds × 75 frames). An album made with these lengths has the
// disc's offsets when its first track starts 150 frames (2 s) in. Raises std::runtime_error for
// a disc not in the table.
std::vector<double> fixture_disc_lengths(const std::string& disc_id);

// Makes `path`: a FLAC file of silence `cd_frames` CD frames (1/75 s) long. The host reckons in
// seconds, so 600 samples a second (8 per frame) is as exact as 44100 and keeps a whole disc in
// one file small and quick to make.
void make_cd_frames_flac(const std::filesystem::path& path, std::uint64_t cd_frames);

// "MM:SS:FF", a cue sheet's time of `cd_frames`.
std::string cue_time(std::uint64_t cd_frames);

// The tags of `path` as an independent reader prints them, one line per value, in the reader's
// order: metaflac (FLAC) and vorbiscomment (Ogg Vorbis) print "KEY=value"; mid3v2 (MP3) and
// mutagen-inspect (WAV's ID3v2 frames, Opus, M4A) print "TIT2=value",
// "COMM=description=eng=text", "TXXX=description=value", "KEY=value", "©nam=value",
// "trkn=(3, 12)". Raises std::runtime_error when the reader fails.
std::vector<std::string> independent_tag_lines(const std::filesystem::path& path);

// The full path of program `name` on PATH; std::runtime_error when it is not installed.
std::string installed_program(const std::string& name);

// Runs a tool by name (found on PATH) with its arguments, for example to tag a file the way
// another program does; what it printed. std::runtime_error with its error output when it fails.
std::string run_audio_tool(const std::vector<std::string>& args);

} // namespace testing_support
