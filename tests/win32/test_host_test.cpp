// The Windows test host's own parts that the other tests lean on: the library manifest and its
// tag store, the suggestions it offers, and the progress window of a running task.

#include <gtest/gtest.h>

#include <tunehall/autocomplete.h>
#include <tunehall/core.h>
#include <tunehall/threaded_process.h>

#include "ui_support.h"

using namespace ui_testing;

TEST(test_host_library, reads_tracks_info_fields_and_tags_and_writes_tags_back) {
    ui_host ui({"# a comment", "", "C:\\a\\1.flac\t61.5\tinfo.pregap=00:02:00\tartist=A\tcomment=x\tcomment=y\ttitle=Tab\\there",
                "C:\\a\\2.flac\t30\tartist=B"});
    winhost::track_library& library = ui.host().library();
    track_list tracks = library.tracks();
    ASSERT_EQ(tracks.size(), 2u);
    EXPECT_DOUBLE_EQ(tracks[0]->length(), 61.5);
    track_info info;
    ASSERT_TRUE(tracks[0]->get_info(info));
    EXPECT_STREQ(info.info_get("pregap"), "00:02:00");
    EXPECT_STREQ(info.tags.first_value("title"), "Tab\there");
    std::size_t comment = info.tags.find_field("comment");
    ASSERT_NE(comment, tag_record::npos);
    EXPECT_EQ(info.tags.value_count(comment), 2u);

    tag_record changed = info.tags;
    changed.set_field("title", "Line\nbreak");
    library.write_tags(tracks[0], changed);
    winhost::track_library reread(ui.manifest());
    EXPECT_EQ(reread.tags_of("C:\\a\\1.flac"), changed);
    EXPECT_EQ(reread.tags_of("C:\\a\\2.flac").first_value("artist"), std::string("B"));
    track_info info_again;
    reread.tracks()[0]->get_info(info_again);
    EXPECT_STREQ(info_again.info_get("pregap"), "00:02:00");
}

TEST(test_host_services, suggestions_are_the_librarys_distinct_values_whatever_the_fields_case) {
    ui_host ui({"C:\\1.flac\t10\tartist=Toots\tgenre=Ska", "C:\\2.flac\t10\tartist=Desmond Dekker\tgenre=Ska",
                "C:\\3.flac\t10\tartist=Toots"});
    auto suggestions = host_service<library_suggestions>();
    EXPECT_EQ(suggestions->values_of("artist"), (std::vector<std::string>{"Desmond Dekker", "Toots"}));
    EXPECT_EQ(suggestions->values_of("GENRE"), (std::vector<std::string>{"Ska"}));
    EXPECT_TRUE(suggestions->values_of("album").empty());
}

namespace {
// Waits on the worker until the test lets it finish.
struct gated_task : threaded_process_task {
    explicit gated_task(std::atomic<bool>& go) : go(go) {}
    void run(threaded_process_status& status, abort_source& abort) override {
        status.set_item("C:\\music\\1.flac");
        status.set_progress(2500);
        for (; !go.load(); Sleep(5)) abort.check();
    }
    void on_done(HWND, bool aborted) override { done = true, was_aborted = aborted; }
    std::atomic<bool>& go;
    bool done = false, was_aborted = false;
};
} // namespace

TEST(test_host_services, a_running_task_shows_a_progress_window_whose_cancel_aborts_it) {
    ui_host ui;
    std::atomic<bool> go{false};
    auto task = make_service<gated_task>(go);
    host_service<threaded_process>()->run_modeless(task, threaded_process::flag_show_abort | threaded_process::flag_show_progress,
                                                   ui.host().main_window(), "Querying information from discora",
                                                   threaded_process::title_nul_terminated);
    HWND progress = FindWindowW(winhost::progress_window::class_name, nullptr);
    ASSERT_TRUE(progress);
    EXPECT_EQ(text_of(progress), "Querying information from discora");
    HWND cancel = GetDlgItem(progress, winhost::progress_window::cancel_id);
    ASSERT_TRUE(cancel);
    // The window belongs to its own thread: the click is posted, as the user's would be.
    PostMessageW(cancel, BM_CLICK, 0, 0);
    ASSERT_TRUE(ui.host().pump_until([&] { return task->done; }));
    EXPECT_TRUE(task->was_aborted);
    EXPECT_FALSE(IsWindow(progress));

    // The next task is not aborted by the last one's Cancel.
    go = true;
    auto next = make_service<gated_task>(go);
    host_service<threaded_process>()->run_modeless(next, 0, nullptr, "Writing tags", threaded_process::title_nul_terminated);
    ASSERT_TRUE(ui.host().pump_until([&] { return next->done; }));
    EXPECT_FALSE(next->was_aborted);
}
