// The host's asynchronous tag update on real files: what the filter changes is written, what it
// leaves alone is not rewritten, and an album is written wholly or not at all.

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <fcntl.h>

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
    std::vector<std::uint32_t> run_update(const track_list& tracks,
                                          service_ref<tag_update_filter> filter = make_service<title_filter>()) {
        auto done = make_service<recorded_completion>();
        host_service<tag_update>()->update_async(tracks, filter, nullptr, 0, done, 42);
        host.run_until([&] { return !done->calls.empty(); });
        std::vector<std::uint32_t> ids_and_result;
        for (auto& [id, result] : done->calls) ids_and_result.insert(ids_and_result.end(), {id, result});
        return ids_and_result;
    }
};

} // namespace

// What the filter changed is written; a file it left as it was ("keep") is not rewritten.
TEST_F(tag_update_fixture, writes_what_the_filter_changed_and_reports_success) {
    auto paths = make_album(album.path(), {1.0, 1.5, 2.0}, audio_format::flac);
    const auto kept = album / "keep-4.flac";
    make_audio_file(kept, 44100, audio_format::flac);
    const std::string kept_bytes = read_file(kept);
    const auto kept_time = std::filesystem::last_write_time(kept);
    track_list tracks;
    for (auto& p : paths) tracks.push_back(make_file_track(p.string()));
    tracks.push_back(make_file_track(kept.string()));
    EXPECT_EQ(run_update(tracks), (std::vector<std::uint32_t>{42, completion_notification::result_success}));
    EXPECT_EQ(titles(tracks), (std::vector<std::string>{"Song 1", "Song 2", "Song 3", "-"}));
    EXPECT_EQ(read_file(kept), kept_bytes);
    EXPECT_EQ(std::filesystem::last_write_time(kept), kept_time);
    EXPECT_TRUE(host.popups().empty());
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
    EXPECT_EQ(run_update({make_file_track(paths[0].string())}, make_service<reorder_filter>()),
              (std::vector<std::uint32_t>{42, completion_notification::result_success}));
    EXPECT_EQ(read_file(paths[0]), before);
    EXPECT_EQ(std::filesystem::last_write_time(paths[0]), mtime);
}

// Each way a file can be unfit for writing, found before any file changes: the update fails,
// names the file, and every file of the album keeps its bytes.
TEST_F(tag_update_fixture, a_file_unfit_for_writing_stops_the_update_before_any_file_changes) {
    const std::pair<const char*, std::function<void(const std::filesystem::path&)>> cases[] = {
        {"read-only", [](const std::filesystem::path& p) { chmod(p.c_str(), 0444); }},
        {"vanished", [](const std::filesystem::path& p) { std::filesystem::remove(p); }},
        {"replaced by another file", [](const std::filesystem::path& p) {
             std::filesystem::copy_file(p, p.string() + ".new");
             std::filesystem::rename(p.string() + ".new", p);
         }},
        {"changed by another program", [](const std::filesystem::path& p) {
             run_audio_tool({"metaflac", "--set-tag=COMMENT=other program", p.string()});
         }},
    };
    for (const auto& [name, spoil] : cases) {
        SCOPED_TRACE(name);
        temp_folder folder{"tessellon-unfit"};
        auto paths = make_album(folder.path(), {1.0, 1.5, 2.0}, audio_format::flac);
        track_list tracks;
        // The tracks are read (as the lookup reads them) before the file is spoilt.
        for (auto& p : paths) tracks.push_back(make_file_track(p.string()));
        for (auto& t : tracks) t->length();
        spoil(paths[2]);
        std::vector<std::string> before;
        for (auto& p : paths) before.push_back(std::filesystem::exists(p) ? read_file(p) : "");
        const std::size_t popups_before = host.popups().size();

        EXPECT_EQ(run_update(tracks), (std::vector<std::uint32_t>{42, completion_notification::result_failure}));
        for (std::size_t i = 0; i < paths.size(); ++i)
            EXPECT_EQ(std::filesystem::exists(paths[i]) ? read_file(paths[i]) : "", before[i]) << paths[i];
        ASSERT_EQ(host.popups().size(), popups_before + 1);
        EXPECT_NE(host.popups().back().message.find(paths[2].string()), std::string::npos) << host.popups().back().message;
        chmod(paths[2].c_str(), 0644);
    }
}

// A failure that no check can foresee (here a file damaged with its size and time kept) makes
// the files already written go back, byte for byte, from the journal.
TEST_F(tag_update_fixture, a_write_failing_midway_puts_the_written_files_back) {
    temp_folder profile{"tessellon-journal"};
    io.set_journal(std::make_unique<linux_host::undo_journal>(profile.path() / "journal"));
    auto paths = make_album(album.path(), {1.0, 1.5, 2.0}, audio_format::flac);
    track_list tracks;
    for (auto& p : paths) tracks.push_back(make_file_track(p.string()));
    std::vector<std::string> before;
    for (auto& p : paths) before.push_back(read_file(p));
    auto engine = host_service<tag_update>();
    static_cast<hostkit::tag_update_engine&>(*engine).set_gate([&](const hostkit::update_plan&) {
        struct stat st {};
        stat(paths[2].c_str(), &st);
        std::string damaged = before[2];
        damaged.replace(0, 4, "JUNK");
        write_file(paths[2], damaged);
        const timespec times[2] = {st.st_atim, st.st_mtim};
        utimensat(AT_FDCWD, paths[2].c_str(), times, 0);
        return true;
    });

    EXPECT_EQ(run_update(tracks), (std::vector<std::uint32_t>{42, completion_notification::result_failure}));
    EXPECT_EQ(read_file(paths[0]), before[0]);
    EXPECT_EQ(read_file(paths[1]), before[1]);
    const auto& result = static_cast<hostkit::tag_update_engine&>(*engine).last_result();
    ASSERT_TRUE(result);
    EXPECT_TRUE(result->rolled_back);
    EXPECT_TRUE(result->written.empty());
    EXPECT_NE(host.popups().back().message.find("put back"), std::string::npos) << host.popups().back().message;
}

// Abort (Ctrl-C) is seen between files: here it comes before the first one, so none is written,
// and the journal shows an interrupted run.
TEST_F(tag_update_fixture, an_abort_stops_between_files_and_the_journal_shows_the_run_interrupted) {
    temp_folder profile{"tessellon-journal"};
    io.set_journal(std::make_unique<linux_host::undo_journal>(profile.path() / "journal"));
    auto paths = make_album(album.path(), {1.0, 1.5}, audio_format::flac);
    track_list tracks;
    for (auto& p : paths) tracks.push_back(make_file_track(p.string()));
    auto& engine = static_cast<hostkit::tag_update_engine&>(*host_service<tag_update>());
    engine.set_gate([&](const hostkit::update_plan&) {
        host.host().tasks().abort_all();
        return true;
    });
    EXPECT_EQ(run_update(tracks), (std::vector<std::uint32_t>{42, completion_notification::result_aborted}));
    EXPECT_EQ(engine.last_result()->result, hostkit::update_result::outcome::interrupted);
    EXPECT_EQ(titles(tracks), (std::vector<std::string>{"-", "-"}));
    const auto runs = linux_host::undo_journal(profile.path() / "journal").runs();
    ASSERT_EQ(runs.size(), 1u);
    EXPECT_FALSE(runs[0].complete);
    EXPECT_EQ(runs[0].files.size(), 2u);
}
