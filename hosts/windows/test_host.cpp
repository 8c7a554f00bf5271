#include "test_host.h"

#include <commctrl.h>
#include <ole2.h>

#include <tunehall/menu_command.h>
#include <tunehall/preferences_page.h>
#include <tunehall/shared.h>

#include "separator_control.h"

#include "dark_mode.h"
#include "host_text.h"
#include "preferences_frame.h"
#include "window_class.h"
#include "window_manager.h"
#include "winhttp_filesystem.h"

namespace winhost {

namespace {
constexpr int tracks_id = 100, log_id = 101;
constexpr UINT first_command_id = 1000, preferences_command_id = 999;
constexpr UINT_PTR log_timer = 1;
// Posted to the main window when work is queued for the main thread: it wakes the message loop.
constexpr UINT queue_wake_message = WM_APP + 1;
} // namespace

test_host::test_host(const test_host_options& options) {
    INITCOMMONCONTROLSEX controls{sizeof controls, ICC_LISTVIEW_CLASSES | ICC_PROGRESS_CLASS | ICC_STANDARD_CLASSES};
    InitCommonControlsEx(&controls);
    OleInitialize(nullptr);  // the shell's auto-complete objects and the clipboard want OLE

    progress_ = std::make_unique<progress_window>([this] { kit_->tasks().abort_all(); },
                                                  [this] { kit_->tasks().clear_abort(); });
    hostkit::host_options kit_options;
    kit_options.profile = options.profile;
    kit_options.console_to_stderr = options.console_to_stderr;
    kit_options.popups_to_stderr = options.console_to_stderr;
    kit_options.progress = progress_.get();
    kit_options.window_list = false;  // this host's own manager knows the main window
    kit_ = std::make_unique<hostkit::host>(kit_options);

    library_ = std::make_unique<track_library>(options.manifest);
    RegisterSeparatorClass();  // the player's caption control, named by component templates
    create_main_window(options.show_main_window);
    // Modal loops of the components (hostkit's run_until) keep this thread's windows alive, and
    // work posted from a worker wakes a loop that sleeps in the window system.
    const HWND main = main_window_;
    kit_->queue().set_hooks([this](std::chrono::milliseconds limit) { wait_for_messages(limit); },
                            [main] { PostMessageW(main, queue_wake_message, 0, 0); });
    windows_ = make_service<window_manager>(main_window_);
    preferences_ = make_service<preferences_frame>(main_window_);

    hostkit::registry& services = kit_->services();
    // WinHTTP first: it serves http paths, the host kit's local files serve the rest.
    services.add_instance(filesystem::class_guid, service_ptr(make_winhttp_filesystem().get()));
    services.add_instance(tag_update::class_guid, service_ptr(make_service<hostkit::tag_update_engine>(*library_).get()));
    services.add_instance(library_suggestions::class_guid, service_ptr(make_library_suggestions(*library_).get()));
    services.add_instance(modeless_window_manager::class_guid, service_ptr(windows_.get()));
    services.add_instance(preferences_window::class_guid, service_ptr(preferences_.get()));
    dark_ = make_service<dark_mode>(options.dark_mode);
    services.add_instance(dark_mode_helper::class_guid, service_ptr(dark_.get()));
}

test_host::~test_host() {
    // Component windows close as the user would close them, so their objects go too.
    for (HWND w : open_windows())
        if (IsWindow(w)) SendMessageW(w, WM_CLOSE, 0, 0);
    pump();
    kit_->queue().set_hooks({}, {});
    kit_.reset();
    progress_.reset();
    if (main_window_) DestroyWindow(main_window_);
    OleUninitialize();
}

void test_host::load_component(const std::string& path) {
    kit_->load_component(path);
    fill_main_window();
}

void test_host::attach_component(tunehall_get_interface_fn entry, const std::string& path) {
    kit_->attach_component(entry, path);
    fill_main_window();
}

void test_host::run_menu_command(const std::string& name, const track_list& selection) {
    for (auto& c : all_services<menu_command>())
        for (std::size_t i = 0; i < c->command_count(); ++i)
            if (name == c->command_name(i)) {
                c->command_execute(i, selection, main_window_);
                return;
            }
    throw exception_service_not_found();
}

std::vector<std::string> test_host::menu_command_names() const {
    std::vector<std::string> names;
    for (auto& c : all_services<menu_command>())
        for (std::size_t i = 0; i < c->command_count(); ++i) names.push_back(c->command_name(i));
    return names;
}

std::vector<HWND> test_host::open_windows() const {
    std::vector<HWND> out = windows_->open();
    if (HWND prefs = preferences_ ? preferences_->window() : nullptr) out.push_back(prefs);
    return out;
}

bool test_host::route_dialog_message(MSG& msg) const {
    if (windows_ && windows_->route(msg)) return true;
    // The open modal dialog and the preferences window (with its page) get the dialog keys too.
    HWND top = msg.hwnd ? GetAncestor(msg.hwnd, GA_ROOT) : nullptr;
    if (!top) return false;
    HWND prefs = preferences_ ? preferences_->window() : nullptr;
    if (top != ModalDialog_Current() && top != prefs) return false;
    return IsDialogMessageW(top, &msg) != FALSE;
}

void test_host::dispatch_messages() {
    MSG msg;
    while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
        if (msg.message == WM_QUIT) {
            quit_ = true;
            continue;
        }
        if (route_dialog_message(msg)) continue;
        TranslateMessage(&msg);
        DispatchMessageW(&msg);
    }
}

void test_host::wait_for_messages(std::chrono::milliseconds limit) {
    MsgWaitForMultipleObjects(0, nullptr, FALSE, static_cast<DWORD>(limit.count()), QS_ALLINPUT);
    dispatch_messages();
}

void test_host::pump() {
    dispatch_messages();
    // Work posted before the wake-up message could reach the window is served here as well.
    kit_->queue().run_pending();
}

bool test_host::pump_until(const std::function<bool()>& done, std::chrono::milliseconds limit) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    for (;;) {
        pump();
        if (done()) return true;
        if (std::chrono::steady_clock::now() > deadline) return false;
        // Posted main-thread work wakes this wait through the main window.
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 50, QS_ALLINPUT);
    }
}

int test_host::run() {
    while (!quit_ && IsWindow(main_window_)) {
        pump();
        MsgWaitForMultipleObjects(0, nullptr, FALSE, INFINITE, QS_ALLINPUT);
    }
    return 0;
}

void test_host::create_main_window(bool show) {
    register_window_class(main_class, &main_proc);
    main_window_ = CreateWindowExW(0, main_class, L"Tunehall test host", WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, CW_USEDEFAULT,
                                   640, 420, nullptr, nullptr, GetModuleHandleW(nullptr), this);
    HFONT font = static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT));
    HWND tracks = CreateWindowExW(WS_EX_CLIENTEDGE, L"LISTBOX", L"",
                                  WS_CHILD | WS_VISIBLE | WS_VSCROLL | LBS_EXTENDEDSEL | LBS_NOINTEGRALHEIGHT, 8, 8, 608, 250,
                                  main_window_, reinterpret_cast<HMENU>(static_cast<INT_PTR>(tracks_id)), nullptr, nullptr);
    HWND log = CreateWindowExW(WS_EX_CLIENTEDGE, L"EDIT", L"",
                               WS_CHILD | WS_VISIBLE | WS_VSCROLL | ES_MULTILINE | ES_READONLY | ES_AUTOVSCROLL, 8, 266, 608,
                               100, main_window_, reinterpret_cast<HMENU>(static_cast<INT_PTR>(log_id)), nullptr, nullptr);
    for (HWND c : {tracks, log}) SendMessageW(c, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    SetTimer(main_window_, log_timer, 250, nullptr);
    if (show) ShowWindow(main_window_, SW_SHOW);
}

void test_host::fill_main_window() {
    HWND tracks = GetDlgItem(main_window_, tracks_id);
    SendMessageW(tracks, LB_RESETCONTENT, 0, 0);
    for (const track_ref& t : library_->tracks())
        SendMessageW(tracks, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(widen(t->path()).c_str()));
    // The menu: every command of the components, then the preferences.
    HMENU bar = CreateMenu(), commands = CreatePopupMenu();
    UINT id = first_command_id;
    for (const std::string& name : menu_command_names()) AppendMenuW(commands, MF_STRING, id++, widen(name).c_str());
    AppendMenuW(commands, MF_SEPARATOR, 0, nullptr);
    AppendMenuW(commands, MF_STRING, preferences_command_id, L"&Preferences...");
    AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(commands), L"&Selection");
    if (HMENU old = GetMenu(main_window_)) DestroyMenu(old);
    SetMenu(main_window_, bar);
}

LRESULT CALLBACK test_host::main_proc(HWND window, UINT message, WPARAM wp, LPARAM lp) {
    auto* self = window_owner<test_host>(window, message, lp);
    switch (message) {
    case WM_COMMAND:
        if (self && lp == 0 && LOWORD(wp) >= first_command_id) {
            // The selected tracks, or the whole library when none is selected.
            track_list all = self->library_->tracks(), chosen;
            HWND tracks = GetDlgItem(window, tracks_id);
            for (std::size_t i = 0; i < all.size(); ++i)
                if (SendMessageW(tracks, LB_GETSEL, i, 0) > 0) chosen.push_back(all[i]);
            std::vector<std::string> names = self->menu_command_names();
            std::size_t index = LOWORD(wp) - first_command_id;
            try {
                if (index < names.size()) self->run_menu_command(names[index], chosen.empty() ? all : chosen);
            } catch (const std::exception& e) {
                MessageBoxW(window, widen(e.what()).c_str(), L"Tunehall test host", MB_ICONERROR);
            }
            return 0;
        }
        if (self && lp == 0 && LOWORD(wp) == preferences_command_id) {
            if (auto pages = all_services<preferences_page>(); !pages.empty()) self->preferences_->show_page(pages[0]->get_guid());
            return 0;
        }
        break;
    case WM_TIMER:
        // Popups are recorded for tests; a person reads them in the log below the tracks.
        if (self && wp == log_timer) {
            std::string text;
            for (const auto& p : self->popups()) text += "[" + p.title + "] " + p.message + "\r\n";
            HWND log = GetDlgItem(window, log_id);
            std::wstring wide = widen(text);
            if (wide.size() != static_cast<std::size_t>(GetWindowTextLengthW(log))) SetWindowTextW(log, wide.c_str());
        }
        return 0;
    case queue_wake_message:
        if (self && self->kit_) self->kit_->queue().run_pending();
        return 0;
    case WM_DESTROY:
        if (self) self->main_window_ = nullptr;
        PostQuitMessage(0);
        return 0;
    default:
        break;
    }
    return DefWindowProcW(window, message, wp, lp);
}

} // namespace winhost
