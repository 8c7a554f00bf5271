// The host's asynchronous tag update on real files: what the filter changes is written, what it
// leaves alone is not rewritten, and one file that cannot be written does not stop the others.

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <hostkit/tag_update_engine.h>

#include "audio/file_track.h"
#include "file_tag_io.h"
#include "support/audio_files.h"
#include "support/test_host.h"

using namespace testing_support;

namespace {

// Sets the title "Song N" on every track whose file name does not contain "keep".
class title_filter : public tag_update_filter {
public:
    bool apply(const track_ref& track, tag_record& tags) override {
        std::string path = track->path();
        if (path.find("keep") != std::string::npos) return true;  // says changed, changes nothing
        tags.set_field("title", "Song " + path.substr(path.size() - 6, 1));
        return true;
    }
};

class recorded_completion : public completion_notification {
public:
    void on_completion(std::uint32_t task_id, std::uint32_t result) override {
        calls.emplace_back(task_id, result);
    }
    std::vector<std::pair<std::uint32_t, std::uint32_t>> calls;
};

struct tag_update_fixture : ::testing::Test {
    test_host host;
    linux_host::file_tag_io io;
    temp_folder album{"tessellon-tag-update"};
    tag_update_fixture() { host.add_service(tag_update::class_guid, make_service<hostkit::tag_update_engine>(io)); }

    std::vector<std::string> titles(const track_list& tracks) {
        std::vector<std::string> out;
        for (auto& t : tracks) {
            auto lines = independent_tag_lines(t->path());
            std::string title = "-";
            for (auto& l : lines)
                if (l.rfind("TITLE=", 0) == 0) title = l.substr(6);
            out.push_back(title);
        }
        return out;
    }
    std::vector<std::uint32_t> run_update(const track_list& tracks) {
        auto done = make_service<recorded_completion>();
        host_service<tag_update>()->update_async(tracks, make_service<title_filter>(), nullptr, 0, done, 42);
        host.run_until([&] { return !done->calls.empty(); });
        std::vector<std::uint32_t> ids_and_result;
        for (auto& [id, result] : done->calls) ids_and_result.insert(ids_and_result.end(), {id, result});
        return ids_and_result;
    }
};

} // namespace

TEST_F(tag_update_fixture, writes_what_the_filter_changed_and_reports_success) {
    auto paths = make_album(album.path(), {1.0, 1.5, 2.0}, audio_format::flac);
    track_list tracks;
    for (auto& p : paths) tracks.push_back(make_file_track(p.string()));
    EXPECT_EQ(run_update(tracks), (std::vector<std::uint32_t>{42, completion_notification::result_success}));
    EXPECT_EQ(titles(tracks), (std::vector<std::string>{"Song 1", "Song 2", "Song 3"}));
    EXPECT_TRUE(host.popups().empty());
}

TEST_F(tag_update_fixture, a_file_the_filter_left_as_it_was_is_not_rewritten) {
    auto paths = make_album(album.path(), {1.0}, audio_format::flac);
    auto kept = album / "keep-1.flac";
    std::filesystem::rename(paths[0], kept);
    const std::string before = read_file(kept);
    auto mtime = std::filesystem::last_write_time(kept);
    EXPECT_EQ(run_update({make_file_track(kept.string())}), (std::vector<std::uint32_t>{42, 0}));
    EXPECT_EQ(read_file(kept), before);
    EXPECT_EQ(std::filesystem::last_write_time(kept), mtime);
}

// The file lists its fields in its own order; the same fields in another order are no change.
class reorder_filter : public tag_update_filter {
public:
    bool apply(const track_ref&, tag_record& tags) override {
        tag_record reversed;
        for (std::size_t f = tags.field_count(); f-- > 0;)
            for (std::size_t v = 0; v < tags.value_count(f); ++v) reversed.add_tag_value(tags.field_name(f).c_str(), tags.value(f, v));
        tags = reversed;
        return true;
    }
};

TEST_F(tag_update_fixture, the_same_fields_in_another_order_do_not_rewrite_the_file) {
    auto paths = make_album(album.path(), {1.0}, audio_format::flac);
    run_audio_tool({"metaflac", "--set-tag=TITLE=One", "--set-tag=ARTIST=Two", "--set-tag=ALBUM=Three", paths[0].string()});
    const std::string before = read_file(paths[0]);
    auto mtime = std::filesystem::last_write_time(paths[0]);
    auto done = make_service<recorded_completion>();
    host_service<tag_update>()->update_async({make_file_track(paths[0].string())}, make_service<reorder_filter>(), nullptr, 0,
                                             done, 7);
    host.run_until([&] { return !done->calls.empty(); });
    EXPECT_EQ(done->calls[0].second, completion_notification::result_success);
    EXPECT_EQ(read_file(paths[0]), before);
    EXPECT_EQ(std::filesystem::last_write_time(paths[0]), mtime);
}

TEST_F(tag_update_fixture, a_read_only_file_is_named_and_the_others_are_still_written) {
    auto paths = make_album(album.path(), {1.0, 1.5, 2.0}, audio_format::flac);
    chmod(paths[1].c_str(), 0444);
    const std::string locked_before = read_file(paths[1]);
    track_list tracks;
    for (auto& p : paths) tracks.push_back(make_file_track(p.string()));

    EXPECT_EQ(run_update(tracks), (std::vector<std::uint32_t>{42, completion_notification::result_failure}));
    EXPECT_EQ(titles(tracks), (std::vector<std::string>{"Song 1", "-", "Song 3"}));
    EXPECT_EQ(read_file(paths[1]), locked_before);
    auto popups = host.popups();
    ASSERT_EQ(popups.size(), 1u);
    EXPECT_NE(popups[0].message.find(paths[1].string()), std::string::npos) << popups[0].message;
}

TEST_F(tag_update_fixture, a_vanished_file_is_named_too) {
    auto paths = make_album(album.path(), {1.0, 1.5}, audio_format::flac);
    track_list tracks;
    for (auto& p : paths) tracks.push_back(make_file_track(p.string()));
    std::filesystem::remove(paths[0]);
    EXPECT_EQ(run_update(tracks), (std::vector<std::uint32_t>{42, completion_notification::result_failure}));
    ASSERT_EQ(host.popups().size(), 1u);
    EXPECT_NE(host.popups()[0].message.find(paths[0].string()), std::string::npos);
    EXPECT_EQ(titles({tracks[1]}), (std::vector<std::string>{"Song 2"}));
}
