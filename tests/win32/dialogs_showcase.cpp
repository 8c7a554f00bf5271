// Shows one of the dialogs with sample data and keeps it open, for screenshots
// (scripts/screenshots): "musicbrainz" (the MusicBrainz Lookup dialog), "preferences" (the page
// in the host's preferences window) or "server-editor" (the editor opened by the page's Add
// button). Writes the window's screen rectangle "left top right bottom" to the file named by the
// second argument once it is drawn, and ends when that file is removed or after two minutes.

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include <tunehall/core.h>
#include <tunehall/preferences_page.h>

#include "config/preferences_page.h"
#include "config/settings.h"
#include "musicbrainz/release_dialog.h"
#include "preferences_frame.h"
#include "ui_support.h"

using namespace ui_testing;

namespace {

void write_rect(const std::filesystem::path& marker, HWND window) {
    RECT r = screen_rect(window);
    std::ofstream(marker) << r.left << ' ' << r.top << ' ' << r.right << ' ' << r.bottom << '\n';
}

server_record server(const char* host, const char* port, const char* description) {
    server_record r;
    r.set_server(host);
    r.set_protocol("http");
    r.set_port(port);
    r.set_address("/~cddb/cddb.cgi");
    r.set_description(description);
    return r;
}

HWND open_preferences(winhost::test_host& host) {
    save_server_list({server("cddb.tessellon.invalid", "80", "discora server"),
                      server("mirror-eu.tessellon.invalid", "8880", "Random discora server (Europe)"),
                      server("127.0.0.1", "8080", "Local discora")});
    cfg_email.set("listener@example.invalid");
    for (auto& p : all_services<preferences_page>())
        if (std::string(p->get_name()) == preferences_page_name) host_service<preferences_window>()->show_page(p->get_guid());
    host.pump();
    HWND frame = FindWindowW(winhost::preferences_frame::class_name, nullptr);
    if (frame) SetWindowPos(frame, nullptr, 40, 40, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    return frame;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: dialogs_showcase musicbrainz|preferences|server-editor RECT_FILE\n");
        return 2;
    }
    const std::string which = argv[1];
    const std::filesystem::path marker = argv[2];
    ui_host ui({"C:\\music\\bowie\\01.flac\t284\tartist=David Bowie", "C:\\music\\bowie\\02.flac\t214",
                "C:\\music\\bowie\\03.flac\t200", "C:\\music\\bowie\\04.flac\t218", "C:\\music\\bowie\\05.flac\t178"});
    winhost::test_host& host = ui.host();
    auto until_marker_gone = [&] { host.pump_until([&] { return !std::filesystem::exists(marker); }, std::chrono::minutes(2)); };

    if (which == "musicbrainz") {
        auto r = std::make_shared<musicbrainz_release>();
        r->title = "The Rise and Fall of Ziggy Stardust and the Spiders From Mars";
        r->album_artist = {"David Bowie"};
        r->date = "2002-07-16";
        r->disc_number = 1;
        r->total_discs = 2;
        r->tracks = {{{"David Bowie"}, "Five Years"},
                     {{"David Bowie"}, "Soul Love"},
                     {{"David Bowie"}, "Moonage Daydream"},
                     {{"David Bowie"}, "Starman"},
                     {{"David Bowie", "Mick Ronson"}, "It Ain't Easy"}};
        open_release_dialog(host.main_window(), host.library().tracks(), r);
        host.pump();
        HWND dialog = find_window(L"MusicBrainz Lookup");
        if (!dialog) return 1;
        SetWindowPos(dialog, nullptr, 40, 40, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
        host.pump_until([] { return false; }, std::chrono::milliseconds(1500));
        write_rect(marker, dialog);
        until_marker_gone();
        return 0;
    }

    HWND frame = open_preferences(host);
    if (!frame) return 1;
    host.pump_until([] { return false; }, std::chrono::milliseconds(1000));
    if (which == "preferences") {
        write_rect(marker, frame);
        until_marker_gone();
        return 0;
    }
    if (which != "server-editor") return 2;
    // The editor is modal: this thread waits in its loop while a second one shows it off.
    const DWORD ui_thread = GetCurrentThreadId();
    HWND page = FindWindowExW(frame, nullptr, L"#32770", nullptr);
    modal_hand hand([&] { return find_thread_window(ui_thread, L"Add server [discora Tagger]", frame); },
                    [&](HWND editor) {
                        if (!editor) return;
                        SetDlgItemTextW(editor, 1026, L"cddb.example.invalid");
                        SetDlgItemTextW(editor, 1030, L"My own discora server");
                        SetWindowPos(editor, nullptr, 60, 60, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
                        std::this_thread::sleep_for(std::chrono::milliseconds(1500));
                        write_rect(marker, editor);
                        for (int i = 0; i < 1200 && std::filesystem::exists(marker); ++i)
                            std::this_thread::sleep_for(std::chrono::milliseconds(100));
                        SendMessageW(GetDlgItem(editor, IDCANCEL), BM_CLICK, 0, 0);
                    },
                    std::chrono::seconds(30));
    SendMessageW(GetDlgItem(page, 1025), BM_CLICK, 0, 0);
    return hand.join() ? 0 : 1;
}
