#pragma once
// The Windows test host: a small stand-in for the player, usable by hand
// (tunehall_test_host.exe) and from tests (linked in). It has a main window, a library of tracks
// from a manifest file that is also their tag store, the host kit's services (configuration
// store, console log, threaded process with a progress window, main-thread queue), the
// asynchronous tag update, the auto-completion source, the modeless-window manager and a
// preferences window, and runs the component's menu commands on a selection. Its message loop
// also serves the host kit's main-thread queue, and so does every modal loop of a component:
// the queue's wait runs this loop's message handling.

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <hostkit/host.h>
#include <hostkit/tag_update_engine.h>

#include "progress_window.h"
#include "track_library.h"

namespace winhost {

struct test_host_options {
    std::filesystem::path profile;   // created when missing
    std::filesystem::path manifest;  // the library; empty: none
    bool show_main_window = false;
    bool console_to_stderr = false;
    bool dark_mode = false;          // component windows attached to the host's dark mode go dark
};

class window_manager;
class preferences_frame;
class dark_mode;

class test_host {
public:
    explicit test_host(const test_host_options& options);
    ~test_host();
    test_host(const test_host&) = delete;
    test_host& operator=(const test_host&) = delete;

    hostkit::host& kit() { return *kit_; }
    track_library& library() { return *library_; }
    HWND main_window() const { return main_window_; }

    // Loads a component file, or registers one linked into this program.
    void load_component(const std::string& path);
    void attach_component(tunehall_get_interface_fn entry, const std::string& path);

    // Runs the menu command called `name` on `selection`, as the user's click would;
    // exception_service_not_found when no component offers it.
    void run_menu_command(const std::string& name, const track_list& selection);
    // The names of every menu command offered, in the host's order.
    std::vector<std::string> menu_command_names() const;

    // The host's dark mode, and which component windows follow it.
    dark_mode& dark() { return *dark_; }

    // Component windows open now (modeless dialogs and the preferences window).
    std::vector<HWND> open_windows() const;

    // Handles what is waiting: window messages and the main-thread queue.
    void pump();
    // Pumps until `done()` holds or `limit` passed; returns done().
    bool pump_until(const std::function<bool()>& done, std::chrono::milliseconds limit = std::chrono::seconds(30));
    // The message loop of the program: runs until the main window is closed.
    int run();

    // Popups shown so far (the host records them; a person sees them in the main window's log).
    std::vector<hostkit::popup_entry> popups() const { return kit_->popups().popups(); }

    static constexpr const wchar_t* main_class = L"tunehall:test_host";

private:
    void create_main_window(bool show);
    // Takes every waiting window message, giving dialogs their keyboard handling first.
    void dispatch_messages();
    bool route_dialog_message(MSG& msg) const;
    // The main-thread queue's wait inside a component's modal loop.
    void wait_for_messages(std::chrono::milliseconds limit);
    void fill_main_window();
    static LRESULT CALLBACK main_proc(HWND window, UINT message, WPARAM wp, LPARAM lp);

    std::unique_ptr<progress_window> progress_;
    std::unique_ptr<hostkit::host> kit_;
    std::unique_ptr<track_library> library_;
    service_ref<window_manager> windows_;
    service_ref<preferences_frame> preferences_;
    service_ref<dark_mode> dark_;
    HWND main_window_ = nullptr;
    bool quit_ = false;
};

} // namespace winhost
