// Tracks of real files: the handle of one file, and the album order of a folder's files as the
// command line hands them to the component.

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <tunehall/exceptions.h>

#include "audio/audio_file.h"
#include "audio/file_track.h"
#include "audio/track_arguments.h"
#include "support/audio_files.h"
#include "support/temp_folder.h"
#include "tag_fields.h"

using namespace audio_tests;
using testing_support::audio_format;

namespace {

std::vector<std::string> file_names(const track_list& tracks) {
    std::vector<std::string> names;
    for (const track_ref& t : tracks) names.push_back(std::filesystem::path(t->path()).filename().string());
    return names;
}

// A short untagged file `name` in `folder`, tagged with `tags` when given.
void add_file(const testing_support::temp_folder& folder, const std::string& name, const field_list& tags = {}) {
    const auto path = folder / name;
    const auto extension = path.extension().string();
    audio_format format = audio_format::flac;
    for (audio_format f : {audio_format::flac, audio_format::mp3, audio_format::ogg, audio_format::opus, audio_format::wav, audio_format::m4a})
        if (testing_support::extension_of(f) == extension) format = f;
    testing_support::make_audio_file(path, 4410, format);
    if (!tags.empty()) write_tags(path.string(), record_of(tags));
}

template <typename Exception>
void expect_error_naming(const std::vector<std::string>& args, const std::string& named) {
    try {
        tracks_from_arguments(args);
        ADD_FAILURE() << "no error for " << named;
    } catch (const Exception& e) {
        EXPECT_NE(std::string(e.what()).find(named), std::string::npos) << e.what();
    }
}

} // namespace

TEST(file_track, handle_gives_path_length_and_current_tags) {
    testing_support::temp_folder folder;
    const auto path = folder / "song.flac";
    testing_support::make_audio_file(path, 1234567, audio_format::flac);
    write_tags(path.string(), record_of({{"title", {"First"}}}));

    const track_ref track = make_file_track(path.string());
    EXPECT_EQ(std::string(track->path()), path.string());
    EXPECT_EQ(track->subsong(), 0u);
    EXPECT_EQ(track->length(), 1234567 / 44100.0);
    track_info info;
    ASSERT_TRUE(track->get_info(info));
    EXPECT_EQ(info.length, track->length());
    EXPECT_STREQ(info.info_get("codec"), "FLAC");
    EXPECT_EQ(fields_of(info.tags), (field_list{{"title", {"First"}}}));

    // After the host writes the file, the same handle shows what is on it now.
    write_tags(path.string(), record_of({{"title", {"Second"}}, {"tracknumber", {"1"}}}));
    ASSERT_TRUE(track->get_info(info));
    EXPECT_EQ(fields_of(info.tags), (field_list{{"title", {"Second"}}, {"tracknumber", {"1"}}}));
}

TEST(file_track, handle_of_a_file_that_went_away_raises_naming_it) {
    testing_support::temp_folder folder;
    const auto path = folder / "brief.flac";
    testing_support::make_audio_file(path, 4410, audio_format::flac);
    const track_ref track = make_file_track(path.string());
    track_info info;
    ASSERT_TRUE(track->get_info(info));

    std::filesystem::remove(path);
    try {
        track->get_info(info);
        FAIL() << "the info of a deleted file was still given";
    } catch (const tunehall_io::exception_io_not_found& e) {
        EXPECT_NE(std::string(e.what()).find(path.string()), std::string::npos) << e.what();
    }
}

TEST(tracks_from_arguments, folder_without_track_numbers_is_in_natural_name_order) {
    testing_support::temp_folder folder;
    for (const char* name : {"10 x.flac", "2 x.flac", "1 x.flac", "a.FLAC", "B.mp3", "01 y.wav", "9 x.ogg"}) add_file(folder, name);
    // Not audio, or hidden: not part of the album.
    testing_support::write_file(folder / "cover.jpg", "jpeg");
    testing_support::write_file(folder / "notes.txt", "notes");
    testing_support::write_file(folder / "._1 x.flac", "another system's sidecar file");
    std::filesystem::create_directory(folder / "5 extras.flac");

    EXPECT_EQ(file_names(tracks_from_arguments({folder.path().string()})),
              (std::vector<std::string>{"1 x.flac", "01 y.wav", "2 x.flac", "9 x.ogg", "10 x.flac", "a.FLAC", "B.mp3"}));
}

// Track numbers on every file order the folder by them (discs first, equal numbers in name
// order); one file without a number, or with one that is no number, leaves the name order.
TEST(tracks_from_arguments, folder_is_in_track_order_only_when_every_file_has_a_track_number) {
    struct order_case {
        std::vector<std::pair<std::string, field_list>> files;
        std::vector<std::string> order;
    };
    const order_case cases[] = {
        {{{"a.flac", {{"tracknumber", {"3"}}}},
          {"b.mp3", {{"tracknumber", {"1"}}, {"totaltracks", {"4"}}}},
          {"c.ogg", {{"tracknumber", {"10"}}}},
          {"d.opus", {{"tracknumber", {"2"}}}},
          {"e2.m4a", {{"tracknumber", {"02"}}}}},
         {"b.mp3", "d.opus", "e2.m4a", "a.flac", "c.ogg"}},
        {{{"1 first.flac", {{"tracknumber", {"3"}}}},
          {"2 second.flac", {{"tracknumber", {"2"}}}},
          {"3 third.flac", {{"tracknumber", {"B1"}}}},
          {"4 fourth.flac", {{"title", {"no number"}}}}},
         {"1 first.flac", "2 second.flac", "3 third.flac", "4 fourth.flac"}},
        {{{"a.flac", {{"discnumber", {"2"}}, {"tracknumber", {"1"}}}},
          {"b.flac", {{"discnumber", {"1"}}, {"tracknumber", {"2"}}}},
          {"c.flac", {{"discnumber", {"1"}}, {"tracknumber", {"1"}}}}},
         {"c.flac", "b.flac", "a.flac"}},
    };
    for (const order_case& c : cases) {
        SCOPED_TRACE(c.order.front());
        testing_support::temp_folder folder;
        for (const auto& [name, tags] : c.files) add_file(folder, name, tags);
        EXPECT_EQ(file_names(tracks_from_arguments({folder.path().string()})), c.order);
    }
}

TEST(tracks_from_arguments, files_and_folders_in_the_order_given) {
    testing_support::temp_folder folder;
    std::filesystem::create_directory(folder / "album");
    add_file(folder, "album/2.flac");
    add_file(folder, "album/1.flac");
    add_file(folder, "single.mp3");
    // A file named directly is taken whatever its name.
    add_file(folder, ".hidden.wav");

    const track_list tracks = tracks_from_arguments(
        {(folder / "single.mp3").string(), (folder / "album").string(), (folder / ".hidden.wav").string()});
    ASSERT_EQ(tracks.size(), 4u);
    EXPECT_EQ(std::string(tracks[0]->path()), (folder / "single.mp3").string());
    EXPECT_EQ(std::string(tracks[1]->path()), (folder / "album" / "1.flac").string());
    EXPECT_EQ(std::string(tracks[2]->path()), (folder / "album" / "2.flac").string());
    EXPECT_EQ(std::string(tracks[3]->path()), (folder / ".hidden.wav").string());
    for (const track_ref& t : tracks) EXPECT_GT(t->length(), 0.09) << t->path();
}

TEST(tracks_from_arguments, folder_without_audio_files_gives_no_tracks) {
    testing_support::temp_folder folder;
    testing_support::write_file(folder / "readme.txt", "nothing to play");
    EXPECT_TRUE(tracks_from_arguments({folder.path().string()}).empty());
}

TEST(tracks_from_arguments, unreadable_or_missing_file_is_named_before_anything_else) {
    testing_support::temp_folder folder;
    add_file(folder, "1 good.flac");
    testing_support::write_file(folder / "2 broken.flac", "this is no FLAC stream");
    add_file(folder, "3 good.flac");

    expect_error_naming<tunehall_io::exception_io_data>({folder.path().string()}, (folder / "2 broken.flac").string());
    expect_error_naming<tunehall_io::exception_io_data>({(folder / "1 good.flac").string(), (folder / "2 broken.flac").string()},
                                                        (folder / "2 broken.flac").string());
    // A file of no audio type named directly is an unreadable file too.
    testing_support::write_file(folder / "readme.txt", "text");
    expect_error_naming<tunehall_io::exception_io_data>({(folder / "1 good.flac").string(), (folder / "readme.txt").string()},
                                                        (folder / "readme.txt").string());
    expect_error_naming<tunehall_io::exception_io_not_found>({(folder / "1 good.flac").string(), (folder / "nowhere").string()},
                                                             (folder / "nowhere").string());
}
