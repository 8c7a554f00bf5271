#pragma once
// What the tagger tests share: a test host with the component attached, doubles of the host
// services the tagger only calls (preferences window, tag update), lookups built from match
// descriptions, and the dialog opened the way a finished lookup opens it.

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <tunehall/preferences_page.h>
#include <tunehall/tag_update.h>

#include <hostkit/window_list.h>

#include "cddb/lookup_state.h"
#include "resources/resource.h"
#include "support/test_host.h"
#include "ui/headless/headless_view.h"

namespace tagger_testing {

enum control : int {
    matches_group = IDC_TAGGER_MATCHES_GROUP, matches = IDC_TAGGER_MATCHES, artist = IDC_TAGGER_ARTIST,
    album = IDC_TAGGER_ALBUM, year = IDC_TAGGER_YEAR, genre = IDC_TAGGER_GENRE, various_artists = IDC_TAGGER_VARIOUS,
    tracks = IDC_TAGGER_TRACKS, wipe_tags = IDC_TAGGER_WIPE, update_files = IDC_TAGGER_UPDATE,
    settings = IDC_TAGGER_SETTINGS, close_button = IDC_TAGGER_CLOSE,
};
constexpr unsigned key_f2 = 0x71;
constexpr int title_column = 1, comment_column = 2;
// How the in-place editor ends.
constexpr int escape = 0, tab = 1, shift_tab = 2, enter = 3;

class preferences_recorder : public preferences_window {
public:
    void show_page(const GUID& page) override { pages.push_back(page); }
    std::vector<GUID> pages;
};

// The host's tag update over in-memory "files": the filter runs at once; the completion is
// queued on the main thread when the test calls complete().
class recording_tag_update : public tag_update {
public:
    struct call {
        track_list tracks;
        HWND parent;
        std::uint32_t flags;
        std::uint32_t task_id;
    };
    void update_async(const track_list& tracks, service_ref<tag_update_filter> filter, HWND parent, std::uint32_t flags,
                      service_ref<completion_notification> done, std::uint32_t task_id) override;
    tag_record& tags_of(const track_ref& track) { return files_[track.get()]; }
    const std::vector<call>& calls() const { return calls_; }
    // Default task id: the one the last update was started with.
    void complete(std::uint32_t result, std::optional<std::uint32_t> task_id = std::nullopt);

private:
    std::map<const track_handle*, tag_record> files_;
    std::vector<call> calls_;
    service_ref<completion_notification> done_;
};

// One match as the lookup would have read it; missing per-track comments are empty.
struct match {
    std::string category = "rock";
    std::string dtitle{}, year{}, genre{}, disc_comment{};
    std::vector<std::string> titles{}, comments{};
    bool various = false;
};
disc_record make_record(const match& m);
track_list make_tracks(std::size_t count);
// A finished lookup over `track_count` tracks that found `servers` (label, matches) in order.
service_ref<lookup_state> make_lookup(std::size_t track_count,
                                      const std::vector<std::pair<std::string, std::vector<match>>>& servers);
// A match of `count` tracks called "Title 1".."Title n".
match numbered_match(const std::string& dtitle, std::size_t count, const std::string& category = "rock");

class tagger_test : public ::testing::Test {
protected:
    tagger_test();
    ~tagger_test() override;

    // Opens the dialog through the component's tagger_dialog_factory; returns the window it
    // handed to the host's window list.
    headless_view& open(service_ref<lookup_state> state);
    // Off the host's window list and destroyed.
    bool closed(HWND window) const;
    void run_main_thread() { host.host().queue().run_pending(); }

    testing_support::test_host host;
    service_ref<hostkit::window_list> windows = make_service<hostkit::window_list>();
    service_ref<preferences_recorder> preferences = make_service<preferences_recorder>();
    service_ref<recording_tag_update> updates = make_service<recording_tag_update>();

private:
    std::int64_t wipe_before_ = 0;
};

std::vector<std::string> column_texts(const headless_view& view, int column);
// A tag record's fields as (name, values) in order.
std::vector<std::pair<std::string, std::vector<std::string>>> fields_of(const tag_record& tags);

} // namespace tagger_testing
