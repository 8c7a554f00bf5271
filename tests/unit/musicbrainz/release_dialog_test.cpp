// The "MusicBrainz Lookup" dialog as the user meets it on the headless view, and the lookup's
// two entries as the host starts them: the dialog, the tags written at once, the failure popup.

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <tunehall/core.h>
#include <tunehall/tagging_source.h>

#include "musicbrainz/release_dialog.h"
#include "musicbrainz/tag_mapping.h"
#include "resources/resource.h"
#include "ui/open_dialogs.h"
#include "unit/musicbrainz/mb_test_data.h"
#include "unit/tagger/tagger_test_support.h"

namespace {

using strings = std::vector<std::string>;
using tagger_testing::fields_of;
using tagger_testing::make_tracks;

constexpr int album_list = IDC_MB_ALBUM, track_rows = IDC_MB_TRACKS, save = 1 /* IDOK */, cancel = 2 /* IDCANCEL */;
constexpr unsigned key_f2 = 0x71;
constexpr int enter = 3, escape = 0;

class done_recorder : public tagging_done {
public:
    void on_done(bool success) override { results.push_back(success); }
    std::vector<bool> results;
};

musicbrainz_release sample_release() {
    musicbrainz_release r;
    r.title = "Hunky Dory";
    r.album_artist = {"David Bowie"};
    r.date = "1971-12-17";
    r.disc_number = 1;
    r.total_discs = 2;
    r.tracks = {{{"David Bowie"}, "Changes"}, {{"David Bowie", "Mick Ronson"}, "Oh! You Pretty Things"}, {{}, "Eight Line Poem"}};
    return r;
}

strings column(const headless_view& view, int list, int c) {
    strings out;
    for (std::size_t r = 0; r < view.list_row_count(list); ++r) out.push_back(view.list_get_cell(list, r, c));
    return out;
}

struct release_dialog_test : tagger_testing::tagger_test {
    track_list tracks = make_tracks(3);
    service_ref<done_recorder> done = make_service<done_recorder>();

    headless_view& open(const musicbrainz_release& release = sample_release()) {
        open_release_dialog(nullptr, tracks, std::make_shared<const musicbrainz_release>(release), done);
        EXPECT_FALSE(windows->open().empty());
        headless_view* view = headless_view::from_handle(windows->open().back().handle);
        EXPECT_NE(view, nullptr);
        return *view;
    }
    // Double-clicks the cell and types `text` with Enter, as a user edits it.
    void edit(headless_view& view, int list, std::size_t row, int column, const std::string& text) {
        view.click_cell(list, row, column, /*double_click=*/true);
        ASSERT_TRUE(view.editing()) << "no editor on " << list << " row " << row << " column " << column;
        view.finish_edit(text, enter);
    }
};

TEST_F(release_dialog_test, shows_the_release_in_the_album_and_track_lists) {
    headless_view& view = open();
    EXPECT_TRUE(view.shown());
    EXPECT_EQ(open_dialogs::count(), 1u);
    EXPECT_EQ(column(view, album_list, 0), (strings{"Title", "Artist", "Date", "Disc"}));
    EXPECT_EQ(column(view, album_list, 1), (strings{"Hunky Dory", "David Bowie", "1971-12-17", "1/2"}));
    EXPECT_EQ(column(view, track_rows, 0), (strings{"1", "2", "3"}));
    EXPECT_EQ(column(view, track_rows, 1), (strings{"Changes", "Oh! You Pretty Things", "Eight Line Poem"}));
    EXPECT_EQ(column(view, track_rows, 2), (strings{"David Bowie", "David Bowie; Mick Ronson", ""}));
    view.click(cancel);
}

TEST_F(release_dialog_test, only_the_value_title_and_artist_cells_open_an_editor) {
    headless_view& view = open();
    struct row {
        int list;
        int column;
        bool editable;
    };
    const row cells[] = {{album_list, 0, false}, {album_list, 1, true}, {track_rows, 0, false},
                         {track_rows, 1, true},  {track_rows, 2, true}};
    for (const row& c : cells) {
        view.click_cell(c.list, 1, c.column, /*double_click=*/true);
        EXPECT_EQ(view.editing().has_value(), c.editable) << c.list << " column " << c.column;
        if (view.editing()) view.finish_edit("ignored", escape);
    }
    // A single click does not edit; F2 edits the focused row's first editable column.
    view.click_cell(track_rows, 0, 1);
    EXPECT_FALSE(view.editing());
    view.select_row(track_rows, 2);
    view.press_key(track_rows, key_f2);
    ASSERT_TRUE(view.editing());
    EXPECT_EQ(view.editing()->row, 2u);
    EXPECT_EQ(view.editing()->column, 1);
    view.finish_edit("x", escape);
    EXPECT_EQ(view.list_get_cell(track_rows, 2, 1), "Eight Line Poem");  // Escape keeps the cell
    view.click(cancel);
}

TEST_F(release_dialog_test, save_writes_the_lists_as_edited) {
    headless_view& view = open();
    const HWND window = view.handle();
    edit(view, album_list, 0, 1, "Hunky Dory (Remaster)");
    edit(view, album_list, 1, 1, "A;  B");
    edit(view, album_list, 3, 1, "2/2");
    edit(view, track_rows, 2, 2, "Solo Artist");
    edit(view, track_rows, 1, 2, "");  // cleared: the album's artists
    view.click(save);

    EXPECT_TRUE(closed(window));
    EXPECT_EQ(open_dialogs::count(), 0u);
    ASSERT_EQ(updates->calls().size(), 1u);
    EXPECT_EQ(updates->calls()[0].task_id, musicbrainz_update_task_id);
    using fields = std::vector<std::pair<std::string, strings>>;
    EXPECT_EQ(fields_of(updates->tags_of(tracks[0])), (fields{{"album artist", {"A", "B"}},
                                                              {"album", {"Hunky Dory (Remaster)"}},
                                                              {"date", {"1971-12-17"}},
                                                              {"title", {"Changes"}},
                                                              {"artist", {"David Bowie"}},
                                                              {"totaldiscs", {"2"}},
                                                              {"discnumber", {"2"}}}));
    EXPECT_EQ(fields_of(updates->tags_of(tracks[2]))[4], (std::pair<std::string, strings>{"artist", {"Solo Artist"}}));
    EXPECT_EQ(fields_of(updates->tags_of(tracks[1]))[4], (std::pair<std::string, strings>{"artist", {"A", "B"}}));

    // The caller hears how the writing went, once it went.
    EXPECT_TRUE(done->results.empty());
    updates->complete(completion_notification::result_success);
    run_main_thread();
    EXPECT_EQ(done->results, (std::vector<bool>{true}));
}

TEST_F(release_dialog_test, cancel_and_closing_write_nothing) {
    for (bool by_close_button : {false, true}) {
        headless_view& view = open();
        const HWND window = view.handle();
        edit(view, album_list, 0, 1, "Changed");
        if (by_close_button)
            view.close();
        else
            view.click(cancel);
        EXPECT_TRUE(closed(window));
    }
    EXPECT_TRUE(updates->calls().empty());
    EXPECT_EQ(done->results, (std::vector<bool>{false, false}));
    EXPECT_EQ(open_dialogs::count(), 0u);
}

TEST_F(release_dialog_test, a_disc_text_that_is_not_a_number_abandons_the_save) {
    headless_view& view = open();
    edit(view, album_list, 3, 1, "1/99999999999");
    view.click(save);
    EXPECT_FALSE(closed(view.handle()));
    ASSERT_EQ(view.messages().size(), 1u);
    EXPECT_EQ(view.messages()[0].text, "overflow");
    EXPECT_EQ(view.messages()[0].caption, "MusicBrainz Lookup");
    EXPECT_TRUE(updates->calls().empty());
    // Corrected, it saves.
    edit(view, album_list, 3, 1, "1/1");
    view.click(save);
    EXPECT_EQ(updates->calls().size(), 1u);
    EXPECT_EQ(updates->tags_of(tracks[0]).first_value("discnumber"), nullptr);  // one disc
}

TEST_F(release_dialog_test, the_host_shutting_down_closes_open_dialogs_without_writing) {
    const HWND first = open().handle();
    const HWND second = open().handle();
    EXPECT_EQ(open_dialogs::count(), 2u);
    open_dialogs::close_all();
    EXPECT_TRUE(closed(first));
    EXPECT_TRUE(closed(second));
    EXPECT_EQ(open_dialogs::count(), 0u);
    EXPECT_TRUE(updates->calls().empty());
}

// The lookup started the way the host starts a tagging source, answered from the cache in the
// test host's profile (so no web service is asked).
struct musicbrainz_source_test : release_dialog_test {
    const std::string disc_id = "c.J3z3pava1oPzXD0K2e9q48lJc-";

    void cache_answer(const std::string& id, const std::string& content) {
        const std::filesystem::path folder = host.profile() / "mb-cache";
        std::filesystem::create_directories(folder);
        std::ofstream(folder / ("disc-" + id), std::ios::binary) << "digest";
        std::ofstream(folder / "result-digest", std::ios::binary) << content;
    }
    service_ref<tagging_source> source() {
        for (auto& s : all_services<tagging_source>())
            if (std::string(s->name()) == "MusicBrainz") return s;
        ADD_FAILURE() << "no MusicBrainz tagging source";
        return {};
    }
    void run(bool write, const track_list& selection) {
        auto s = source();
        if (write)
            s->lookup_write(selection, nullptr, done);
        else
            s->lookup(selection, nullptr, done);
        host.run_until([&] { return host.host().tasks().running() == 0; });
    }
};

TEST_F(musicbrainz_source_test, the_write_entry_writes_at_once) {
    cache_answer(disc_id, mb_testing::metadata_of(mb_testing::server_answer(disc_id)).content);
    track_list selection = mb_testing::tracks_of(mb_testing::disc_with_id(disc_id));
    run(true, selection);
    EXPECT_TRUE(windows->open().empty());
    ASSERT_EQ(updates->calls().size(), 1u);
    EXPECT_EQ(updates->calls()[0].tracks.size(), 15u);
    EXPECT_STREQ(updates->tags_of(selection[0]).first_value("album"), "Dark Was the Night");
    EXPECT_STREQ(updates->tags_of(selection[0]).first_value("date"), "2009-02-16");  // the earliest edition
    updates->complete(completion_notification::result_failure);
    run_main_thread();
    EXPECT_EQ(done->results, (std::vector<bool>{false}));
    EXPECT_TRUE(host.popups().empty());  // the host reports its own write failures
}

TEST_F(musicbrainz_source_test, a_failed_lookup_shows_its_message_and_writes_nothing) {
    // An answer without any release: nothing can match.
    cache_answer(disc_id, "<disc id=\"" + disc_id + "\"/>");
    for (bool write : {false, true}) {
        run(write, mb_testing::tracks_of(mb_testing::disc_with_id(disc_id)));
        EXPECT_TRUE(windows->open().empty());
    }
    run(false, make_tracks(100));
    EXPECT_TRUE(updates->calls().empty());
    EXPECT_EQ(done->results, (std::vector<bool>{false, false, false}));
    auto popups = host.popups();
    ASSERT_EQ(popups.size(), 3u);
    for (auto& p : popups) EXPECT_EQ(p.title, "Information");
    EXPECT_EQ(popups[0].message, "MusicBrainz lookup failed: No matching entry");
    EXPECT_EQ(popups[1].message, "MusicBrainz lookup failed: No matching entry");
    EXPECT_EQ(popups[2].message, "MusicBrainz lookup failed: invalid argument");  // too many tracks
}

} // namespace
