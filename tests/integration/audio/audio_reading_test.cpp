// Reading real audio files made by the system's encoders: how long they play, their technical
// fields, and the errors that name a file the host cannot read.

#include <cmath>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include <tunehall/exceptions.h>

#include "audio/audio_file.h"
#include "support/audio_files.h"
#include "support/temp_folder.h"
#include "tag_fields.h"

using audio_tests::field_list;
using audio_tests::fields_of;
using testing_support::audio_format;

namespace {

// For each format: the bounds of (length read - true length), from what the files state; the
// kind of length the file's info record names; and the stream's technical fields.
struct format_case {
    audio_format format;
    double below;  // how far the length may fall short
    double above;  // how far it may run over
    const char* kind;
    const char* codec;
    const char* samplerate;
    const char* bits;  // null where the format has no sample size
};

// FLAC, WAV and Ogg Vorbis state their number of samples: exact. Opus states it at 48 kHz (it
// always decodes at that rate), and opusenc keeps the source's length through its resampling:
// within one 48 kHz sample. The ALAC files made here carry no edit list: TagLib's length to the
// millisecond. MP3 as sox writes it carries no LAME tag, so the frames hold the encoder's delay
// (576 samples), the last frame's padding and one flushing frame besides the audio: up to
// 576 + 2 x 1152 samples more, never less. Measured: +31 to +48 ms for 1 s to 180 s.
const format_case format_cases[] = {
    {audio_format::flac, 0.0, 0.0, "exact", "FLAC", "44100", "16"},
    {audio_format::wav, 0.0, 0.0, "exact", "PCM", "44100", "16"},
    {audio_format::ogg, 0.0, 0.0, "exact", "Vorbis", "44100", nullptr},
    {audio_format::opus, 1 / 48000.0, 1 / 48000.0, "exact", "Opus", "48000", nullptr},
    {audio_format::m4a, 0.0005, 0.0005, "estimated", "ALAC", "44100", "16"},
    {audio_format::mp3, 0.0, (576 + 2 * 1152) / 44100.0, "estimated", "MP3", "44100", nullptr},
};

} // namespace

TEST(audio_file, length_and_stream_fields_are_what_the_file_plays_and_an_untagged_file_has_no_fields) {
    testing_support::temp_folder folder;
    // Three minutes, and a length that is no whole number of milliseconds.
    for (std::uint64_t frames : {std::uint64_t{180 * 44100}, std::uint64_t{1234567}}) {
        const double seconds = static_cast<double>(frames) / 44100.0;
        for (const format_case& c : format_cases) {
            SCOPED_TRACE(testing_support::name_of(c.format) + ", " + std::to_string(frames) + " samples");
            const auto path = folder / ("track" + std::to_string(frames) + testing_support::extension_of(c.format));
            testing_support::make_audio_file(path, frames, c.format);

            const track_info info = read_audio_file(path.string());
            const double length = info.length;
            ASSERT_NE(info.info_get(length_kind_field), nullptr);
            EXPECT_STREQ(info.info_get(length_kind_field), c.kind);
            if (c.below == 0.0 && c.above == 0.0) {
                EXPECT_EQ(length, seconds);
            } else {
                EXPECT_GE(length, seconds - c.below - 1e-9);
                EXPECT_LE(length, seconds + c.above + 1e-9);
            }
            const std::pair<const char*, const char*> fields[] = {
                {"codec", c.codec}, {"samplerate", c.samplerate}, {"channels", "1"}, {"bitspersample", c.bits}};
            for (const auto& [name, value] : fields) {
                if (!value) {
                    EXPECT_EQ(info.info_get(name), nullptr) << name;
                } else {
                    ASSERT_NE(info.info_get(name), nullptr) << name;
                    EXPECT_STREQ(info.info_get(name), value) << name;
                }
            }
            ASSERT_NE(info.info_get("bitrate"), nullptr);
            EXPECT_GT(std::stoi(info.info_get("bitrate")), 0);
            // opusenc names itself in an ENCODER field: a field outside the table, kept lower-cased.
            if (c.format == audio_format::opus) {
                ASSERT_EQ(info.tags.field_count(), 1u);
                EXPECT_EQ(info.tags.field_name(0), "encoder");
                EXPECT_NE(std::string(info.tags.value(0, 0)).find("opusenc"), std::string::npos);
            } else {
                EXPECT_EQ(info.tags.field_count(), 0u);
            }
        }
    }
}

TEST(audio_file, ogg_extension_holding_opus_is_read_as_opus) {
    testing_support::temp_folder folder;
    testing_support::make_audio_file(folder / "made.opus", 48000, audio_format::opus);
    std::filesystem::rename(folder / "made.opus", folder / "renamed.ogg");
    const track_info info = read_audio_file((folder / "renamed.ogg").string());
    EXPECT_STREQ(info.info_get("codec"), "Opus");
    EXPECT_NEAR(info.length, 48000 / 44100.0, 0.0005);
}

TEST(audio_file, file_that_cannot_be_read_raises_an_error_naming_it) {
    testing_support::temp_folder folder;
    testing_support::write_file(folder / "text.flac", "not audio at all, just some words in a file\n");
    testing_support::write_file(folder / "text.mp3", std::string(5000, 'x'));
    testing_support::write_file(folder / "text.wav", "RIFF....WAVEjunk");
    testing_support::write_file(folder / "text.m4a", std::string(100, '\0'));
    testing_support::write_file(folder / "empty.ogg", "");
    testing_support::write_file(folder / "notes.txt", "a file of a type the host does not read");
    std::filesystem::create_directory(folder / "folder.flac");
    // A real FLAC file cut short inside its header.
    testing_support::make_audio_file(folder / "whole.flac", 44100, audio_format::flac);
    testing_support::write_file(folder / "cut.flac", testing_support::read_file(folder / "whole.flac").substr(0, 20));

    for (const char* name : {"text.flac", "text.mp3", "text.wav", "text.m4a", "empty.ogg", "notes.txt", "folder.flac", "cut.flac"}) {
        const std::string path = (folder / name).string();
        try {
            read_audio_file(path);
            ADD_FAILURE() << name << " was read";
        } catch (const tunehall_io::exception_io_data& e) {
            EXPECT_NE(std::string(e.what()).find(path), std::string::npos) << e.what();
        }
    }
}

TEST(audio_file, missing_file_raises_not_found_naming_it) {
    testing_support::temp_folder folder;
    const std::string path = (folder / "gone.flac").string();
    try {
        read_audio_file(path);
        FAIL() << "a missing file was read";
    } catch (const tunehall_io::exception_io_not_found& e) {
        EXPECT_NE(std::string(e.what()).find(path), std::string::npos) << e.what();
    }
}

TEST(audio_file, type_is_judged_by_the_extension_of_the_files_own_name) {
    const struct {
        const char* path;
        bool audio;
    } cases[] = {
        {"song.flac", true},          {"SONG.FLAC", true},        {"dir/Song.Mp3", true},
        {"/music/a.b/c.ogg", true},   {"x.opus", true},           {"x.wav", true},
        {"x.m4a", true},              {"a..flac", true},          {"x.mp4", false},
        {".flac", false},             {"dir/.flac", false},       {"song.flac.part", false},
        {"album.flac/cover", false},  {"album.flac/", false},     {"song", false},
        {"song.", false},             {"..", false},              {"", false},
    };
    for (const auto& c : cases) EXPECT_EQ(is_audio_file_name(c.path), c.audio) << '"' << c.path << '"';
}

TEST(audio_file, vorbis_comments_come_in_table_order_with_text_beyond_ascii_intact) {
    testing_support::temp_folder folder;
    const auto path = folder / "other.flac";
    testing_support::make_audio_file(path, 4410, audio_format::flac);
    // Written by another program, in an order of its own; the file keeps keys sorted, so each
    // alias here comes before or after its table name.
    testing_support::run_audio_tool({"metaflac", "--set-tag=ZEBRA=last", "--set-tag=TITLE=\xe6\x97\xa5\xe6\x9c\xac \xf0\x9f\x8e\xb5",
                                     "--set-tag=ARRANGER=Zo\xc3\xab", "--set-tag=ARTIST=Sigur R\xc3\xb3s",
                                     "--set-tag=TRACKTOTAL=9", "--set-tag=TOTALTRACKS=9", "--set-tag=DISCTOTAL=3",
                                     "--set-tag=TOTALDISCS=2", "--set-tag=MOOD=calm", "--set-tag=COMMENT=one",
                                     "--set-tag=COMMENT=one", "--set-tag=DESCRIPTION=two", path.string()});
    // An alias repeating a value adds nothing; one with another value adds it after those of the
    // key that sorts first. A key repeating its own value keeps both.
    EXPECT_EQ(fields_of(read_audio_file(path.string()).tags),
              (field_list{{"title", {"\xe6\x97\xa5\xe6\x9c\xac \xf0\x9f\x8e\xb5"}},
                          {"artist", {"Sigur R\xc3\xb3s"}},
                          {"totaltracks", {"9"}},
                          {"totaldiscs", {"3", "2"}},
                          {"comment", {"one", "one", "two"}},
                          {"arranger", {"Zo\xc3\xab"}},
                          {"mood", {"calm"}},
                          {"zebra", {"last"}}}));
}
