// Writing tags into real files, checked with readers that are not the host's own (metaflac,
// vorbiscomment, mutagen-inspect) and then read back through the host.

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <taglib/mp4file.h>

#include <tunehall/exceptions.h>

#include "audio/audio_file.h"
#include "support/audio_files.h"
#include "support/temp_folder.h"
#include "tag_fields.h"

using namespace audio_tests;
using testing_support::audio_format;
using testing_support::extension_of;
using testing_support::independent_tag_lines;
using testing_support::name_of;
using testing_support::run_audio_tool;

namespace {

const audio_format all_formats[] = {audio_format::flac, audio_format::mp3, audio_format::ogg,
                                    audio_format::opus, audio_format::wav, audio_format::m4a};

// What the tagger writes for a track of a various-artists disc, plus a field of the user's own.
const field_list full_record = {
    {"album", {"Ünïcode Album"}},
    {"date", {"1999"}},
    {"genre", {"Rock"}},
    {"album artist", {"Various"}},
    {"artist", {"Band"}},
    {"title", {"Song"}},
    {"tracknumber", {"3"}},
    {"totaltracks", {"12"}},
    {"discnumber", {"1"}},
    {"totaldiscs", {"2"}},
    {"comment", {"ripped", "live"}},
    {"mood", {"calm", "bright"}},
};

// The same as an independent reader prints it for each kind of tag, in the reader's order.
std::vector<std::string> expected_lines(audio_format format) {
    switch (format) {
    case audio_format::flac:
    case audio_format::ogg:
    case audio_format::opus:
        return {"ALBUM=Ünïcode Album", "ALBUMARTIST=Various", "ARTIST=Band", "COMMENT=ripped", "COMMENT=live",
                "DATE=1999", "DISCNUMBER=1", "DISCTOTAL=2", "GENRE=Rock", "MOOD=calm", "MOOD=bright",
                "TITLE=Song", "TRACKNUMBER=3", "TRACKTOTAL=12"};
    case audio_format::mp3:
    case audio_format::wav:
        return {"COMM==eng=ripped", "COMM=comment 2=eng=live", "TALB=Ünïcode Album", "TCON=Rock", "TDRC=1999",
                "TIT2=Song", "TPE1=Band", "TPE2=Various", "TPOS=1/2", "TRCK=3/12", "TXXX=mood=calm / bright"};
    case audio_format::m4a:
        return {"----:org.tessellon:mood=MP4FreeForm(b'calm', <AtomDataType.UTF8: 1>)",
                "----:org.tessellon:mood=MP4FreeForm(b'bright', <AtomDataType.UTF8: 1>)",
                "aART=Various", "disk=(1, 2)", "trkn=(3, 12)", "©ART=Band", "©alb=Ünïcode Album",
                "©cmt=ripped", "©cmt=live", "©day=1999", "©gen=Rock", "©nam=Song"};
    }
    return {};
}

// The host's reading of `full_record`: the table's fields in table order, then the others.
const field_list full_record_read_back = {
    {"title", {"Song"}},          {"artist", {"Band"}},        {"album", {"Ünïcode Album"}},
    {"genre", {"Rock"}},          {"album artist", {"Various"}}, {"date", {"1999"}},
    {"tracknumber", {"3"}},       {"totaltracks", {"12"}},     {"discnumber", {"1"}},
    {"totaldiscs", {"2"}},        {"comment", {"ripped", "live"}}, {"mood", {"calm", "bright"}},
};

std::filesystem::path make_file(const testing_support::temp_folder& folder, const std::string& stem, audio_format format) {
    const auto path = folder / (stem + extension_of(format));
    testing_support::make_audio_file(path, 22050, format);
    return path;
}

bool has_line_starting(const std::vector<std::string>& lines, const std::string& prefix) {
    return std::any_of(lines.begin(), lines.end(), [&](const std::string& l) { return l.rfind(prefix, 0) == 0; });
}

} // namespace

// One file of each format rewritten record after record: each time the file holds exactly the
// new record, as other readers and the host see it, and its audio stays as it was.
TEST(write_tags, each_rewrite_leaves_exactly_the_new_record_and_the_audio_as_it_was) {
    testing_support::temp_folder folder;
    for (audio_format format : all_formats) {
        SCOPED_TRACE(name_of(format));
        const auto path = make_file(folder, "file", format);
        const track_info before = read_audio_file(path.string());

        // Vorbis comments come back sorted by key (TagLib keeps them in a map), values of one
        // key in the order written; ID3v2 and MP4 readers sort the frames themselves.
        write_tags(path.string(), record_of(full_record));
        EXPECT_EQ(independent_tag_lines(path), expected_lines(format));
        EXPECT_EQ(fields_of(read_audio_file(path.string()).tags), full_record_read_back);

        // Fields absent from the record leave the file.
        write_tags(path.string(), record_of({{"album", {"Old album"}}, {"title", {"Title"}}}));
        EXPECT_EQ(fields_of(read_audio_file(path.string()).tags), (field_list{{"title", {"Title"}}, {"album", {"Old album"}}}));
        EXPECT_EQ(independent_tag_lines(path).size(), 2u);

        // The tagger writes the album also when the match has none. MP4 atoms hold an empty
        // text; TagLib 1.13 leaves empty values out of Vorbis comments and ID3v2 frames, so
        // there the field goes.
        write_tags(path.string(), record_of({{"album", {""}}, {"title", {"Title"}}}));
        const field_list blank_album = format == audio_format::m4a ? field_list{{"title", {"Title"}}, {"album", {""}}}
                                                                   : field_list{{"title", {"Title"}}};
        EXPECT_EQ(fields_of(read_audio_file(path.string()).tags), blank_album);
        for (const std::string& line : independent_tag_lines(path)) EXPECT_EQ(line.find("Old album"), std::string::npos) << line;

        // Three comments, the last equal to the first: none may replace another.
        write_tags(path.string(), record_of({{"comment", {"disc note", "track note", "disc note"}}}));
        EXPECT_EQ(fields_of(read_audio_file(path.string()).tags), (field_list{{"comment", {"disc note", "track note", "disc note"}}}));
        std::vector<std::string> comments = {"COMMENT=disc note", "COMMENT=track note", "COMMENT=disc note"};
        if (format == audio_format::mp3 || format == audio_format::wav)
            comments = {"COMM==eng=disc note", "COMM=comment 2=eng=track note", "COMM=comment 3=eng=disc note"};
        if (format == audio_format::m4a) comments = {"©cmt=disc note", "©cmt=track note", "©cmt=disc note"};
        EXPECT_EQ(independent_tag_lines(path), comments);

        write_tags(path.string(), tag_record{});
        EXPECT_EQ(read_audio_file(path.string()).tags.field_count(), 0u);
        EXPECT_EQ(independent_tag_lines(path), std::vector<std::string>{});

        // TagLib estimates an Ogg stream's bitrate from the file's size, tag pages included, so
        // a rewrite may move it by one on either side of a rounding; the rest must not move.
        const track_info after = read_audio_file(path.string());
        EXPECT_EQ(after.length, before.length);
        auto without_bitrate = [](std::vector<std::pair<std::string, std::string>> info) {
            std::erase_if(info, [](const auto& field) { return field.first == "bitrate"; });
            return info;
        };
        EXPECT_EQ(without_bitrate(after.info), without_bitrate(before.info));
        auto bitrate = [](const track_info& info) {
            const char* value = info.info_get("bitrate");
            return value ? std::atoi(value) : -1;
        };
        EXPECT_NEAR(bitrate(after), bitrate(before), 1);

        // A read-only file: the error names it and the file stays as it was.
        const std::string bytes = testing_support::read_file(path);
        std::filesystem::permissions(path, std::filesystem::perms::owner_read | std::filesystem::perms::group_read |
                                               std::filesystem::perms::others_read);
        try {
            write_tags(path.string(), record_of({{"title", {"After"}}}));
            ADD_FAILURE() << "a read-only file was written";
        } catch (const tunehall_io::exception_io& e) {
            EXPECT_NE(std::string(e.what()).find(path.string()), std::string::npos) << e.what();
        }
        EXPECT_EQ(testing_support::read_file(path), bytes);
    }
}

TEST(write_tags, mp3_with_only_an_id3v1_tag_is_read_and_rewritten_as_id3v2_4) {
    testing_support::temp_folder folder;
    const auto path = make_file(folder, "version", audio_format::mp3);
    // An ID3v1.1 tag: 128 bytes at the end, fixed-width fields, track number in the comment's
    // last byte, genre 17 (Rock).
    auto padded = [](const std::string& text, std::size_t width) { return text + std::string(width - text.size(), '\0'); };
    const std::string v1 = "TAG" + padded("Old title", 30) + padded("Old artist", 30) + padded("Old album", 30) + "1977" +
                           padded("old comment", 28) + '\0' + '\x05' + '\x11';
    ASSERT_EQ(v1.size(), 128u);
    testing_support::write_file(path, testing_support::read_file(path) + v1);

    const tag_record old_tags = read_audio_file(path.string()).tags;
    EXPECT_EQ(fields_of(old_tags), (field_list{{"title", {"Old title"}},
                                               {"artist", {"Old artist"}},
                                               {"album", {"Old album"}},
                                               {"genre", {"Rock"}},
                                               {"date", {"1977"}},
                                               {"tracknumber", {"5"}},
                                               {"comment", {"old comment"}}}));

    tag_record tags = old_tags;
    tags.set_field("title", "New title");
    write_tags(path.string(), tags);

    const std::string bytes = testing_support::read_file(path);
    ASSERT_GE(bytes.size(), 128u);
    EXPECT_EQ(bytes.substr(0, 3), "ID3");
    EXPECT_EQ(bytes[3], '\x04') << "ID3v2 major version";
    EXPECT_NE(bytes.substr(bytes.size() - 128, 3), "TAG") << "the ID3v1 tag with the old title is still there";
    EXPECT_EQ(independent_tag_lines(path),
              (std::vector<std::string>{"COMM==eng=old comment", "TALB=Old album", "TCON=Rock", "TDRC=1977",
                                        "TIT2=New title", "TPE1=Old artist", "TRCK=5"}));
}

TEST(write_tags, track_and_disc_numbers_with_or_without_totals) {
    struct pair_case {
        field_list record;
        std::string trck, tpos;  // "" when the frame must be absent
        field_list read_back;
    };
    const pair_case cases[] = {
        {{{"tracknumber", {"3"}}, {"totaltracks", {"12"}}}, "TRCK=3/12", "",
         {{"tracknumber", {"3"}}, {"totaltracks", {"12"}}}},
        {{{"tracknumber", {"7"}}}, "TRCK=7", "", {{"tracknumber", {"7"}}}},
        {{{"discnumber", {"2"}}, {"totaldiscs", {"3"}}, {"tracknumber", {"10"}}, {"totaltracks", {"10"}}},
         "TRCK=10/10", "TPOS=2/3",
         {{"tracknumber", {"10"}}, {"totaltracks", {"10"}}, {"discnumber", {"2"}}, {"totaldiscs", {"3"}}}},
        {{{"discnumber", {"1"}}}, "", "TPOS=1", {{"discnumber", {"1"}}}},
    };
    testing_support::temp_folder folder;
    for (audio_format format : {audio_format::mp3, audio_format::wav}) {
        for (const pair_case& c : cases) {
            SCOPED_TRACE(name_of(format) + " " + c.trck + " " + c.tpos);
            const auto path = make_file(folder, "pairs", format);
            write_tags(path.string(), record_of(c.record));
            const std::vector<std::string> lines = independent_tag_lines(path);
            std::vector<std::string> expected;
            if (!c.tpos.empty()) expected.push_back(c.tpos);
            if (!c.trck.empty()) expected.push_back(c.trck);
            EXPECT_EQ(lines, expected);
            EXPECT_EQ(fields_of(read_audio_file(path.string()).tags), c.read_back);
        }
    }
}

TEST(write_tags, number_pairs_written_by_other_programs_are_split) {
    testing_support::temp_folder folder;
    const auto path = make_file(folder, "other", audio_format::mp3);
    run_audio_tool({"mid3v2", "--track", "4/9", "--TPOS", "2/2", path.string()});
    EXPECT_EQ(fields_of(read_audio_file(path.string()).tags),
              (field_list{{"tracknumber", {"4"}}, {"totaltracks", {"9"}}, {"discnumber", {"2"}}, {"totaldiscs", {"2"}}}));
}

TEST(write_tags, year_is_read_but_never_written) {
    testing_support::temp_folder folder;
    struct year_case {
        audio_format format;
        std::vector<std::string> tool;  // adds YEAR 1980 and DATE 1981; the path is appended
        std::string year_line;
    };
    const year_case cases[] = {
        {audio_format::flac, {"metaflac", "--set-tag=YEAR=1980", "--set-tag=DATE=1981"}, "YEAR="},
        {audio_format::ogg, {"vorbiscomment", "-w", "-t", "YEAR=1980", "-t", "DATE=1981"}, "YEAR="},
        {audio_format::mp3, {"mid3v2", "--TYER", "1980", "--TDRC", "1981"}, "TYER="},
    };
    for (const year_case& c : cases) {
        SCOPED_TRACE(name_of(c.format));
        const auto path = make_file(folder, "year", c.format);
        std::vector<std::string> tool = c.tool;
        tool.push_back(path.string());
        run_audio_tool(tool);
        ASSERT_TRUE(has_line_starting(independent_tag_lines(path), c.year_line));

        tag_record tags = read_audio_file(path.string()).tags;
        EXPECT_EQ(fields_of(tags), (field_list{{"date", {"1981"}}, {"year", {"1980"}}}));

        // Written back as read: the year goes, the date stays.
        write_tags(path.string(), tags);
        const std::vector<std::string> lines = independent_tag_lines(path);
        EXPECT_FALSE(has_line_starting(lines, c.year_line)) << ::testing::PrintToString(lines);
        EXPECT_EQ(fields_of(read_audio_file(path.string()).tags), (field_list{{"date", {"1981"}}}));
    }
}

TEST(write_tags, common_alternative_names_are_read_as_the_host_fields) {
    testing_support::temp_folder folder;
    const auto path = make_file(folder, "alternatives", audio_format::flac);
    run_audio_tool({"metaflac", "--set-tag=TRACKNUMBER=5", "--set-tag=TOTALTRACKS=11", "--set-tag=DISCNUMBER=1",
              "--set-tag=TOTALDISCS=2", "--set-tag=ALBUM ARTIST=Someone", "--set-tag=DESCRIPTION=from another tagger",
              "--set-tag=Custom_Field=kept", path.string()});
    const tag_record tags = read_audio_file(path.string()).tags;
    EXPECT_EQ(fields_of(tags), (field_list{{"album artist", {"Someone"}},
                                           {"tracknumber", {"5"}},
                                           {"totaltracks", {"11"}},
                                           {"discnumber", {"1"}},
                                           {"totaldiscs", {"2"}},
                                           {"comment", {"from another tagger"}},
                                           {"custom_field", {"kept"}}}));

    // Rewritten, they take the names of the table; the unknown field keeps its own.
    write_tags(path.string(), tags);
    EXPECT_EQ(independent_tag_lines(path),
              (std::vector<std::string>{"ALBUMARTIST=Someone", "COMMENT=from another tagger", "CUSTOM_FIELD=kept",
                                        "DISCNUMBER=1", "DISCTOTAL=2", "TRACKNUMBER=5", "TRACKTOTAL=11"}));
}

TEST(write_tags, what_is_not_a_text_field_survives_a_rewrite) {
    testing_support::temp_folder folder;
    testing_support::write_file(folder / "cover.png", "\x89PNG\r\n\x1a\n not really a picture");

    // MP3: a picture, a comment another program described for its own use, another program's
    // text frames.
    const auto mp3 = make_file(folder, "keep", audio_format::mp3);
    run_audio_tool({"mid3v2", "--picture", (folder / "cover.png").string() + ":cover:3:image/png", "--comment",
              "volume data:0000 1111:eng", "--TCOM", "Composer", "--TXXX", "Catalog:ABC-1", mp3.string()});
    tag_record tags = read_audio_file(mp3.string()).tags;
    EXPECT_EQ(fields_of(tags), (field_list{{"Catalog", {"ABC-1"}}, {"TCOM", {"Composer"}}}));
    tags.set_field("title", "New");
    write_tags(mp3.string(), tags);
    EXPECT_EQ(independent_tag_lines(mp3),
              (std::vector<std::string>{"APIC=cover front, cover (image/png, 29 bytes)", "COMM=volume data=eng=0000 1111",
                                        "TCOM=Composer", "TIT2=New", "TXXX=Catalog=ABC-1"}));

    // FLAC: a picture block.
    const auto flac = make_file(folder, "keep", audio_format::flac);
    run_audio_tool({"metaflac", "--import-picture-from=3|image/png|cover|1x1x24|" + (folder / "cover.png").string(), flac.string()});
    write_tags(flac.string(), record_of({{"title", {"New"}}}));
    const std::string blocks = run_audio_tool({"metaflac", "--list", "--block-type=PICTURE", flac.string()});
    EXPECT_NE(blocks.find("type: 6 (PICTURE)"), std::string::npos) << blocks;
    EXPECT_EQ(independent_tag_lines(flac), std::vector<std::string>{"TITLE=New"});
}

TEST(write_tags, m4a_free_form_fields_keep_the_namespace_they_came_with) {
    testing_support::temp_folder folder;
    const auto path = make_file(folder, "freeform", audio_format::m4a);
    {
        // Another program's field and cover art, put there with TagLib itself.
        TagLib::MP4::File file(path.c_str());
        ASSERT_TRUE(file.isValid());
        file.tag()->setItem("----:com.example.ripper:Source Id", TagLib::MP4::Item(TagLib::StringList("abc-123")));
        TagLib::MP4::CoverArtList covers;
        covers.append(TagLib::MP4::CoverArt(TagLib::MP4::CoverArt::PNG, TagLib::ByteVector("\x89PNG\r\n\x1a\n", 8)));
        file.tag()->setItem("covr", TagLib::MP4::Item(covers));
        ASSERT_TRUE(file.save());
    }
    tag_record tags = read_audio_file(path.string()).tags;
    EXPECT_EQ(fields_of(tags), (field_list{{"Source Id", {"abc-123"}}}));

    tags.set_field("title", "New");
    tags.set_field("mood", "calm");
    write_tags(path.string(), tags);
    const std::vector<std::string> lines = independent_tag_lines(path);
    EXPECT_EQ(lines, (std::vector<std::string>{"----:com.example.ripper:Source Id=MP4FreeForm(b'abc-123', <AtomDataType.UTF8: 1>)",
                                               "----:org.tessellon:mood=MP4FreeForm(b'calm', <AtomDataType.UTF8: 1>)",
                                               "covr=[8 bytes of data]", "©nam=New"}));
}

TEST(write_tags, vanished_file_raises_not_found_naming_it) {
    testing_support::temp_folder folder;
    const auto path = make_file(folder, "vanishing", audio_format::flac);
    std::filesystem::remove(path);
    try {
        write_tags(path.string(), record_of({{"title", {"x"}}}));
        FAIL() << "a missing file was written";
    } catch (const tunehall_io::exception_io_not_found& e) {
        EXPECT_NE(std::string(e.what()).find(path.string()), std::string::npos) << e.what();
    }
    EXPECT_FALSE(std::filesystem::exists(path));
}

