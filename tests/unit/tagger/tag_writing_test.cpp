// What "Update files" writes: the fields of each track and their order, how existing tags are
// kept or wiped, the checks that stop a write, and what the dialog does when the host is done.

#include <gtest/gtest.h>

#include "cddb/cddb_test_support.h"
#include "cddb/read_handler.h"
#include "tagger/tag_sets.h"
#include "tagger/tag_writer.h"
#include "tagger_test_support.h"

namespace tagger_testing {
namespace {

using fields = std::vector<std::pair<std::string, std::vector<std::string>>>;

match disc_of(const char* dtitle, std::vector<std::string> titles, bool various = false) {
    match m;
    m.dtitle = dtitle;
    m.titles = std::move(titles);
    m.various = various;
    return m;
}

match with(match m, const char* year, const char* genre, const char* disc_comment, std::vector<std::string> comments = {}) {
    m.year = year;
    m.genre = genre;
    m.disc_comment = disc_comment;
    m.comments = std::move(comments);
    return m;
}

TEST(track_tag_sets, have_exactly_these_fields_in_this_order) {
    const struct {
        match disc;
        std::size_t track;
        fields expected;
    } cases[] = {
        {with(disc_of("Band / Album", {"One", "Two"}), "1999", "Rock", ""), 1,
         {{"album", {"Album"}}, {"date", {"1999"}}, {"genre", {"Rock"}}, {"artist", {"Band"}}, {"title", {"Two"}},
          {"tracknumber", {"2"}}, {"totaltracks", {"2"}}}},
        // An empty album is still written; a title without " / " is artist and album.
        {disc_of("Band / ", {"One"}), 0,
         {{"album", {""}}, {"artist", {"Band"}}, {"title", {"One"}}, {"tracknumber", {"1"}}, {"totaltracks", {"1"}}}},
        {disc_of("Greatest Hits", {"One"}), 0,
         {{"album", {"Greatest Hits"}}, {"artist", {"Greatest Hits"}}, {"title", {"One"}}, {"tracknumber", {"1"}},
          {"totaltracks", {"1"}}}},
        // Various artists: a track's own artist, else the album's; split at the first separator.
        {disc_of("Various / Hits", {"Band / Song", "Intro"}, true), 0,
         {{"album", {"Hits"}}, {"album artist", {"Various"}}, {"artist", {"Band"}}, {"title", {"Song"}},
          {"tracknumber", {"1"}}, {"totaltracks", {"2"}}}},
        {disc_of("Various / Hits", {"Band / Song", "Intro"}, true), 1,
         {{"album", {"Hits"}}, {"album artist", {"Various"}}, {"artist", {"Various"}}, {"title", {"Intro"}},
          {"tracknumber", {"2"}}, {"totaltracks", {"2"}}}},
        {disc_of("Various / Live", {"Artist X / Song / Live"}, true), 0,
         {{"album", {"Live"}}, {"album artist", {"Various"}}, {"artist", {"Artist X"}}, {"title", {"Song / Live"}},
          {"tracknumber", {"1"}}, {"totaltracks", {"1"}}}},
        {disc_of("Band / Album", {"Band / Song"}), 0,
         {{"album", {"Album"}}, {"artist", {"Band"}}, {"title", {"Band / Song"}}, {"tracknumber", {"1"}},
          {"totaltracks", {"1"}}}},
        // Comments: the disc's, then the track's.
        {with(disc_of("Band / Album", {"One"}), "", "", "ripped", {"live"}), 0,
         {{"album", {"Album"}}, {"artist", {"Band"}}, {"title", {"One"}}, {"tracknumber", {"1"}},
          {"totaltracks", {"1"}}, {"comment", {"ripped", "live"}}}},
        {with(disc_of("Band / Album", {"One", "Two"}), "", "", "", {"", "live"}), 1,
         {{"album", {"Album"}}, {"artist", {"Band"}}, {"title", {"Two"}}, {"tracknumber", {"2"}},
          {"totaltracks", {"2"}}, {"comment", {"live"}}}},
        {with(disc_of("Band / Album", {"One", "Two"}), "", "", "ripped", {"", "live"}), 0,
         {{"album", {"Album"}}, {"artist", {"Band"}}, {"title", {"One"}}, {"tracknumber", {"1"}},
          {"totaltracks", {"2"}}, {"comment", {"ripped"}}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.disc.dtitle + " track " + std::to_string(c.track));
        disc_record record = make_record(c.disc);
        std::vector<tag_record> sets = build_track_tag_sets(record, record.get_track_count());
        ASSERT_EQ(sets.size(), record.get_track_count());
        EXPECT_EQ(fields_of(sets[c.track]), c.expected);
    }
}

// A file as it was before tagging: tags of an earlier tagger, and a few it never touches.
tag_record old_file_tags() {
    tag_record t;
    t.add_tag_value("year", "1980");
    t.add_tag_value("date", "1980");
    t.add_tag_value("discnumber", "1");
    t.add_tag_value("artist", "Old Artist");
    t.add_tag_value("album artist", "Old Various");
    t.add_tag_value("title", "Old Title");
    t.add_tag_value("comment", "old one");
    t.add_tag_value("comment", "old two");
    t.add_tag_value("totaltracks", "12");
    t.add_tag_value("replaygain_track_gain", "-6.2 dB");
    return t;
}

TEST(prepared_tags, keeping_replaces_the_taggers_fields_and_leaves_the_rest) {
    disc_record record = make_record(with(disc_of("Band / Album", {"One", "Two"}), "", "Rock", "ripped", {"", "live"}));
    tag_record tags = old_file_tags();
    apply_prepared_tags(tags, build_track_tag_sets(record, 2)[1], false);
    EXPECT_EQ(fields_of(tags), (fields{{"date", {"1980"}},
                                       {"discnumber", {"1"}},
                                       {"totaltracks", {"2"}},
                                       {"replaygain_track_gain", {"-6.2 dB"}},
                                       {"album", {"Album"}},
                                       {"genre", {"Rock"}},
                                       {"artist", {"Band"}},
                                       {"title", {"Two"}},
                                       {"tracknumber", {"2"}},
                                       {"comment", {"ripped", "live"}}}));
}

TEST(prepared_tags, wiping_leaves_only_the_prepared_fields) {
    disc_record record = make_record(disc_of("Band / Album", {"One"}));
    tag_record prepared = build_track_tag_sets(record, 1)[0];
    tag_record tags = old_file_tags();
    apply_prepared_tags(tags, prepared, true);
    EXPECT_EQ(fields_of(tags), fields_of(prepared));
    EXPECT_EQ(tags.find_field("discnumber"), tag_record::npos);
}

// --- Through the dialog ---------------------------------------------------------------------

TEST_F(tagger_test, update_files_writes_what_the_controls_show) {
    auto state = make_lookup(3, {{"Server", {numbered_match("Band / Album", 3)}}});
    headless_view& view = open(state);
    view.type_text(artist, "The Band");
    view.type_text(year, "2004");
    view.click_cell(tracks, 2, title_column);
    view.finish_edit("Finale", enter);
    view.press_key(tracks, key_f2, true);
    view.finish_edit("hidden track", enter);

    view.click(update_files);

    ASSERT_EQ(updates->calls().size(), 1u);
    const auto& call = updates->calls()[0];
    EXPECT_EQ(call.tracks, state->tracks);
    EXPECT_EQ(call.parent, view.handle());
    EXPECT_EQ(call.flags, 0u);
    EXPECT_FALSE(view.window_enabled());
    EXPECT_EQ(fields_of(updates->tags_of(state->tracks[2])),
              (fields{{"album", {"Album"}},
                      {"date", {"2004"}},
                      {"artist", {"The Band"}},
                      {"title", {"Finale"}},
                      {"tracknumber", {"3"}},
                      {"totaltracks", {"3"}},
                      {"comment", {"hidden track"}}}));
    EXPECT_STREQ(updates->tags_of(state->tracks[0]).first_value("title"), "Title 1");
}

TEST_F(tagger_test, the_wipe_box_decides_whether_old_tags_survive) {
    for (bool wipe : {false, true}) {
        SCOPED_TRACE(wipe ? "wipe" : "keep");
        auto state = make_lookup(1, {{"Server", {numbered_match("Band / Album", 1)}}});
        updates->tags_of(state->tracks[0]) = old_file_tags();
        headless_view& view = open(state);
        if (wipe) view.click(wipe_tags);
        view.click(update_files);

        const tag_record& tags = updates->tags_of(state->tracks[0]);
        EXPECT_EQ(tags.first_value("year"), nullptr);
        EXPECT_STREQ(tags.first_value("artist"), "Band");
        if (wipe) {
            EXPECT_EQ(tags.first_value("date"), nullptr);
            EXPECT_EQ(tags.first_value("discnumber"), nullptr);
        } else {
            EXPECT_STREQ(tags.first_value("date"), "1980");
            EXPECT_STREQ(tags.first_value("discnumber"), "1");
        }
        updates->complete(completion_notification::result_success);
        run_main_thread();
    }
}

TEST_F(tagger_test, the_various_artists_box_decides_at_update_how_titles_are_read) {
    // A real entry whose single artist has titles with " / ": the entry is read as various artists.
    disc_record entry;
    read_handler handler("misc", [&](disc_record&& r) { entry = std::move(r); });
    cddb_testing::feed_answer(handler, "210 entry follows\n" + cddb_testing::fixture_bytes("xmcd/entries/9e0e740c.xmcd"));
    ASSERT_EQ(entry.get_track_count(), 12u);

    for (bool untick : {false, true}) {
        SCOPED_TRACE(untick ? "unticked" : "as read");
        auto state = make_service<lookup_state>(make_tracks(12));
        state->results.push_back({"Server", {entry}});
        headless_view& view = open(state);
        EXPECT_EQ(view.get_check(various_artists), 1);
        if (untick) view.click(various_artists);
        view.click(update_files);

        const tag_record& first = updates->tags_of(state->tracks[0]);
        if (untick) {
            EXPECT_EQ(first.find_field("album artist"), tag_record::npos);
            EXPECT_STREQ(first.first_value("artist"), "Madonna");
            EXPECT_STREQ(first.first_value("title"), "Drowned world / substitue for love");
        } else {
            EXPECT_STREQ(first.first_value("album artist"), "Madonna");
            EXPECT_STREQ(first.first_value("artist"), "Drowned world");
            EXPECT_STREQ(first.first_value("title"), "substitue for love");
        }
        EXPECT_STREQ(updates->tags_of(state->tracks[1]).first_value("artist"), "Madonna");
        EXPECT_STREQ(first.first_value("album"), "Ray of light");
        EXPECT_STREQ(first.first_value("genre"), "Pop");
        EXPECT_EQ(first.first_value("date"), nullptr);
        updates->complete(completion_notification::result_success);
        run_main_thread();
    }
}

TEST_F(tagger_test, a_match_with_another_track_count_only_logs_the_mismatch) {
    auto state = make_lookup(12, {{"Server", {numbered_match("Band / Album", 11)}}});
    headless_view& view = open(state);
    view.click(update_files);

    EXPECT_EQ(host.console_lines(), (std::vector<std::string>{"Error: track count mismatch"}));
    EXPECT_TRUE(updates->calls().empty());
    EXPECT_TRUE(view.messages().empty());
    EXPECT_TRUE(view.window_enabled());
    EXPECT_FALSE(view.destroyed());
}

TEST_F(tagger_test, without_a_match_update_files_asks_the_user_to_choose_one) {
    headless_view& view = open(make_lookup(2, {{"Server", {}}}));
    // The button is disabled here; enabled from the view's side, the dialog still refuses.
    view.enable(update_files, true);
    view.click(update_files);

    ASSERT_EQ(view.messages().size(), 1u);
    EXPECT_EQ(view.messages()[0].text, "You need to select one of the matches first.");
    EXPECT_TRUE(updates->calls().empty());
    EXPECT_TRUE(host.console_lines().empty());
}

TEST_F(tagger_test, success_closes_the_dialog_and_anything_else_lets_the_user_retry) {
    for (std::uint32_t result : {completion_notification::result_success, completion_notification::result_aborted,
                                 completion_notification::result_failure}) {
        SCOPED_TRACE(result);
        headless_view& view = open(make_lookup(2, {{"Server", {numbered_match("Band / Album", 2)}}}));
        HWND window = view.handle();
        view.type_text(album, "Edited");
        std::size_t calls = updates->calls().size();
        view.click(update_files);
        ASSERT_FALSE(view.window_enabled());

        updates->complete(result);
        run_main_thread();

        bool success = result == completion_notification::result_success;
        EXPECT_EQ(closed(window), success);
        if (success) continue;
        EXPECT_TRUE(view.window_enabled());
        EXPECT_EQ(view.get_text(album), "Edited");
        view.click(update_files);
        EXPECT_EQ(updates->calls().size(), calls + 2);
        view.close();
    }
}

TEST_F(tagger_test, a_completion_for_another_task_is_ignored) {
    headless_view& view = open(make_lookup(1, {{"Server", {numbered_match("Band / Album", 1)}}}));
    HWND window = view.handle();
    view.click(update_files);

    updates->complete(completion_notification::result_success, 0x12345678);
    run_main_thread();
    EXPECT_FALSE(closed(window));
    EXPECT_FALSE(view.window_enabled());

    updates->complete(completion_notification::result_success);
    run_main_thread();
    EXPECT_TRUE(closed(window));
}

TEST_F(tagger_test, a_completion_after_the_user_closed_the_dialog_finds_no_dialog) {
    headless_view& view = open(make_lookup(1, {{"Server", {numbered_match("Band / Album", 1)}}}));
    HWND window = view.handle();
    view.click(update_files);
    view.close();
    ASSERT_TRUE(closed(window));

    updates->complete(completion_notification::result_success);
    run_main_thread();
    EXPECT_TRUE(closed(window));
    EXPECT_TRUE(windows->open().empty());
}

} // namespace
} // namespace tagger_testing
