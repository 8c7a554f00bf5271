#pragma once
// What the Windows user-interface tests share: a test host with the component linked in, the
// shared fixtures, and a user's hands on real windows (keys, clicks, texts, list cells and
// groups), all through ordinary window messages.

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <windows.h>

#include "cddb/lookup_state.h"
#include "test_host.h"

namespace ui_testing {

// A file of the shared fixtures.
std::filesystem::path fixture(const std::string& relative);
// The track lengths (seconds) that lay out fixture disc `disc_id`.
std::vector<double> fixture_disc_lengths(const std::string& disc_id);

// A test host in a fresh profile, its library read from `manifest_lines`, with the component
// (linked into the test program) attached under its own file name.
class ui_host {
public:
    explicit ui_host(const std::vector<std::string>& manifest_lines = {});
    ~ui_host();
    winhost::test_host& host() { return *host_; }
    const std::filesystem::path& folder() const { return folder_; }
    const std::filesystem::path& manifest() const { return manifest_; }

private:
    std::filesystem::path folder_, manifest_;
    std::unique_ptr<winhost::test_host> host_;
};

// One match of a lookup result.
struct match {
    std::string category, dtitle, year, genre;
    std::vector<std::string> titles, comments;
};
// A finished lookup on `track_count` tracks, with one (label, matches) group per server.
service_ref<lookup_state> make_lookup(std::size_t track_count,
                                      const std::vector<std::pair<std::string, std::vector<match>>>& servers);
// Opens the tagger dialog on `state` as a finished lookup does; returns its window.
HWND open_tagger(winhost::test_host& host, service_ref<lookup_state> state);

// A top-level window of this thread with caption `title` (null when none).
HWND find_window(const std::wstring& title);
std::string text_of(HWND window);
std::string item_text(HWND dialog, int id);
RECT screen_rect(HWND window);

int row_count(HWND list);
std::string cell(HWND list, int row, int column);
std::optional<int> selected_row(HWND list);
bool groups_enabled(HWND list);
// The header of group `group_id`, and the group a row is in.
std::string group_header(HWND list, int group_id);
int group_of_row(HWND list, int row);
// Selects `row` as a click on it would (the list notifies its dialog).
void select_row(HWND list, int row);
// Focuses `row` without other changes.
void focus_row(HWND list, int row);

// A key going down and up in `target`, with Shift and / or Control held meanwhile.
void press_key(HWND target, UINT key, bool shift = false, bool control = false);
// A left click in the middle of a list cell.
void click_cell(HWND list, int row, int column);
// The text control of the in-place editor open on `list`, or null.
HWND cell_editor(HWND list);

} // namespace ui_testing
