#pragma once
// What the Windows user-interface tests share: a test host with the component linked in and a
// user's hands on real windows (keys, clicks, texts, list cells), all through ordinary window
// messages.

#include <atomic>
#include <chrono>
#include <filesystem>
#include <functional>
#include <thread>
#include <optional>
#include <string>
#include <vector>

#include <windows.h>

#include "cddb/lookup_state.h"
#include "support/temp_folder.h"
#include "test_host.h"

namespace ui_testing {

// A test host in a fresh profile, its library read from `manifest_lines`, with the component
// (linked into the test program) attached under its own file name.
class ui_host {
public:
    explicit ui_host(const std::vector<std::string>& manifest_lines = {});
    winhost::test_host& host() { return *host_; }
    const std::filesystem::path& manifest() const { return manifest_; }

private:
    testing_support::temp_folder folder_{"tessellon-ui"};  // outlives the host, which writes into it
    std::filesystem::path manifest_;
    std::unique_ptr<winhost::test_host> host_;
};

// One match of a lookup result: its disc title, track titles and track comments.
struct match {
    std::string dtitle;
    std::vector<std::string> titles, comments;
};
// A finished lookup on as many tracks as the first match has titles, all from one server.
service_ref<lookup_state> make_lookup(const std::vector<match>& matches);
// Opens the tagger dialog on `state` as a finished lookup does; returns its window.
HWND open_tagger(winhost::test_host& host, service_ref<lookup_state> state);

std::string text_of(HWND window);
RECT screen_rect(HWND window);

int row_count(HWND list);
std::string cell(HWND list, int row, int column);
std::optional<int> selected_row(HWND list);
// Focuses `row` without other changes.
void focus_row(HWND list, int row);

// A key going down and up in `target`, with Shift and / or Control held meanwhile.
void press_key(HWND target, UINT key, bool shift = false, bool control = false);
// A left click in the middle of a list cell.
void click_cell(HWND list, int row, int column);
// The text control of the in-place editor open on `list`, or null.
HWND cell_editor(HWND list);
// A left double click in the middle of a list cell (posted: pump to deliver it).
void double_click_cell(HWND list, int row, int column);

// A top-level window of thread `thread` for which `wanted` holds (null when none).
HWND find_thread_window(DWORD thread, const std::function<bool(HWND)>& wanted);
// A top-level window of thread `thread` titled `title`, owned by `owner` when that is given.
HWND find_thread_window(DWORD thread, const std::wstring& title, HWND owner = nullptr);
// A visible top-level window of this thread titled `title` (null when none).
inline HWND find_window(const std::wstring& title) { return find_thread_window(GetCurrentThreadId(), title); }

// A second pair of hands for modal windows: the main thread waits inside a modal loop (a
// dialog, a message box) while this thread finds the window it opened and works it through
// sent messages, which that loop delivers. `act` gets the window, or null when none turned up
// in time; whatever modal window is still registered then is closed, so that a failing test
// ends instead of hanging.
class modal_hand {
public:
    modal_hand(std::function<HWND()> find, std::function<void(HWND)> act,
               std::chrono::milliseconds limit = std::chrono::seconds(20));
    ~modal_hand();
    // Waits for the hand to finish; true when it found its window.
    bool join();

private:
    std::atomic<bool> found_{false};
    std::thread thread_;
};

} // namespace ui_testing
