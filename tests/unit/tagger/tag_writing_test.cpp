// What "Update files" writes: each track's fields in order, old tags kept or wiped, the checks
// that stop a write, and what the dialog does when the host is done.

#include <gtest/gtest.h>

#include "tagger/tag_sets.h"
#include "tagger/tag_writer.h"
#include "tagger_test_support.h"

namespace tagger_testing {
namespace {

using fields = std::vector<std::pair<std::string, std::vector<std::string>>>;

TEST(track_tag_sets, have_exactly_these_fields_in_this_order) {
    const std::vector<std::string> one = {"One"}, one_two = {"One", "Two"}, various = {"Band / Song", "Intro"};
    const struct {
        match disc;
        std::size_t track;
        fields expected;
    } cases[] = {
        {{.dtitle = "Band / Album", .year = "1999", .genre = "Rock", .titles = one_two}, 1,
         {{"album", {"Album"}}, {"date", {"1999"}}, {"genre", {"Rock"}}, {"artist", {"Band"}}, {"title", {"Two"}},
          {"tracknumber", {"2"}}, {"totaltracks", {"2"}}}},
        // An empty album is still written; a title without " / " is artist and album.
        {{.dtitle = "Band / ", .titles = one}, 0,
         {{"album", {""}}, {"artist", {"Band"}}, {"title", {"One"}}, {"tracknumber", {"1"}}, {"totaltracks", {"1"}}}},
        {{.dtitle = "Greatest Hits", .titles = one}, 0,
         {{"album", {"Greatest Hits"}}, {"artist", {"Greatest Hits"}}, {"title", {"One"}}, {"tracknumber", {"1"}},
          {"totaltracks", {"1"}}}},
        // Various artists: a track's own artist, else the album's.
        {{.dtitle = "Various / Hits", .titles = various, .various = true}, 0,
         {{"album", {"Hits"}}, {"album artist", {"Various"}}, {"artist", {"Band"}}, {"title", {"Song"}},
          {"tracknumber", {"1"}}, {"totaltracks", {"2"}}}},
        {{.dtitle = "Various / Hits", .titles = various, .various = true}, 1,
         {{"album", {"Hits"}}, {"album artist", {"Various"}}, {"artist", {"Various"}}, {"title", {"Intro"}},
          {"tracknumber", {"2"}}, {"totaltracks", {"2"}}}},
        {{.dtitle = "Band / Album", .titles = {"Band / Song"}}, 0,
         {{"album", {"Album"}}, {"artist", {"Band"}}, {"title", {"Band / Song"}}, {"tracknumber", {"1"}},
          {"totaltracks", {"1"}}}},
        // Comments: the disc's, then the track's.
        {{.dtitle = "Band / Album", .disc_comment = "ripped", .titles = one, .comments = {"live"}}, 0,
         {{"album", {"Album"}}, {"artist", {"Band"}}, {"title", {"One"}}, {"tracknumber", {"1"}},
          {"totaltracks", {"1"}}, {"comment", {"ripped", "live"}}}},
        {{.dtitle = "Band / Album", .titles = one_two, .comments = {"", "live"}}, 1,
         {{"album", {"Album"}}, {"artist", {"Band"}}, {"title", {"Two"}}, {"tracknumber", {"2"}},
          {"totaltracks", {"2"}}, {"comment", {"live"}}}},
        {{.dtitle = "Band / Album", .disc_comment = "ripped", .titles = one_two, .comments = {"", "live"}}, 0,
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
    for (auto [name, value] : {std::pair{"year", "1980"}, {"date", "1980"}, {"discnumber", "1"}, {"artist", "Old Artist"},
                               {"album artist", "Old Various"}, {"title", "Old Title"}, {"comment", "old one"},
                               {"comment", "old two"}, {"totaltracks", "12"}, {"replaygain_track_gain", "-6.2 dB"}})
        t.add_tag_value(name, value);
    return t;
}

TEST(prepared_tags, keeping_replaces_the_taggers_fields_and_wiping_leaves_only_the_prepared_ones) {
    disc_record record = make_record(
        {.dtitle = "Band / Album", .genre = "Rock", .disc_comment = "ripped", .titles = {"One", "Two"}, .comments = {"", "live"}});
    const tag_record prepared = build_track_tag_sets(record, 2)[1];
    tag_record kept = old_file_tags();
    apply_prepared_tags(kept, prepared, false);
    EXPECT_EQ(fields_of(kept), (fields{{"date", {"1980"}}, {"discnumber", {"1"}}, {"totaltracks", {"2"}},
                                       {"replaygain_track_gain", {"-6.2 dB"}}, {"album", {"Album"}}, {"genre", {"Rock"}},
                                       {"artist", {"Band"}}, {"title", {"Two"}}, {"tracknumber", {"2"}},
                                       {"comment", {"ripped", "live"}}}));
    tag_record wiped = old_file_tags();
    apply_prepared_tags(wiped, prepared, true);
    EXPECT_EQ(fields_of(wiped), fields_of(prepared));
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
              (fields{{"album", {"Album"}}, {"date", {"2004"}}, {"artist", {"The Band"}}, {"title", {"Finale"}},
                      {"tracknumber", {"3"}}, {"totaltracks", {"3"}}, {"comment", {"hidden track"}}}));
    EXPECT_STREQ(updates->tags_of(state->tracks[0]).first_value("title"), "Title 1");
}

// The two boxes are read when the user presses "Update files", not when the dialog opens.
TEST_F(tagger_test, the_wipe_and_various_artists_boxes_decide_what_is_written) {
    for (bool click : {false, true}) {
        SCOPED_TRACE(click ? "both clicked" : "as opened");
        auto state = make_lookup(1, {{"Server", {{.dtitle = "Madonna / Ray of light", .titles = {"Drowned world / substitue"},
                                                  .various = true}}}});
        updates->tags_of(state->tracks[0]) = old_file_tags();
        headless_view& view = open(state);
        EXPECT_EQ(view.get_check(various_artists), 1);
        if (click) {
            view.click(wipe_tags);
            view.click(various_artists);
        }
        view.click(update_files);

        const tag_record& tags = updates->tags_of(state->tracks[0]);
        EXPECT_EQ(tags.first_value("year"), nullptr);
        EXPECT_STREQ(tags.first_value("album"), "Ray of light");
        EXPECT_EQ(tags.first_value("discnumber") == nullptr, click);
        EXPECT_STREQ(tags.first_value("album artist"), click ? nullptr : "Madonna");
        EXPECT_STREQ(tags.first_value("artist"), click ? "Madonna" : "Drowned world");
        EXPECT_STREQ(tags.first_value("title"), click ? "Drowned world / substitue" : "substitue");
        updates->complete(completion_notification::result_success);
        run_main_thread();
    }
}

TEST_F(tagger_test, update_files_refuses_another_track_count_or_no_match) {
    headless_view& mismatch = open(make_lookup(12, {{"Server", {numbered_match("Band / Album", 11)}}}));
    mismatch.click(update_files);
    EXPECT_EQ(host.console_lines(), (std::vector<std::string>{"Error: track count mismatch"}));
    EXPECT_TRUE(mismatch.messages().empty());
    EXPECT_TRUE(mismatch.window_enabled());
    EXPECT_FALSE(mismatch.destroyed());
    mismatch.close();

    headless_view& none = open(make_lookup(2, {{"Server", {}}}));
    // The button is disabled here; enabled from the view's side, the dialog still refuses.
    none.enable(update_files, true);
    none.click(update_files);
    ASSERT_EQ(none.messages().size(), 1u);
    EXPECT_EQ(none.messages()[0].text, "You need to select one of the matches first.");
    EXPECT_TRUE(updates->calls().empty());
    EXPECT_EQ(host.console_lines().size(), 1u);
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
        // A completion for another task is ignored.
        updates->complete(completion_notification::result_success, 0x12345678);
        run_main_thread();
        EXPECT_FALSE(closed(window));
        EXPECT_FALSE(view.window_enabled());

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

TEST_F(tagger_test, a_completion_after_the_user_closed_the_dialog_finds_no_dialog) {
    headless_view& view = open(make_lookup(1, {{"Server", {numbered_match("Band / Album", 1)}}}));
    HWND window = view.handle();
    view.click(update_files);
    view.close();
    ASSERT_TRUE(closed(window));
    updates->complete(completion_notification::result_success);
    run_main_thread();
    EXPECT_TRUE(windows->open().empty());
}

} // namespace
} // namespace tagger_testing
