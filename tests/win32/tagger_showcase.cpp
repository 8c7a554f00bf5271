// Shows the tagger dialog with sample matches and keeps it open, for screenshots
// (scripts/screenshots). Writes the dialog's screen rectangle "left top right bottom" to the
// file named by its first argument once the dialog is drawn, and ends when that file is removed
// or after two minutes.

#include <cstdio>
#include <filesystem>
#include <fstream>

#include "ui_support.h"

using namespace ui_testing;

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: tagger_showcase RECT_FILE\n");
        return 2;
    }
    const std::filesystem::path marker = argv[1];
    ui_host ui({"C:\\music\\ska\\01.flac\t181\tartist=Toots & the Maytals\tgenre=Ska"});
    const match ska{"misc", "Various / Ska Island", "1997", "Ska",
                    {"Desmond Dekker - Israelites", "Toots & the Maytals - Monkey Man", "The Skatalites - Guns of Navarone",
                     "Prince Buster - Al Capone", "Jimmy Cliff - You Can Get It If You Really Want", "Millie - My Boy Lollipop"},
                    {"", "1969 single", "", "", "", ""}};
    const match reggae{"reggae", "Various / Ska Island", "1998", "Reggae", {"A", "B", "C", "D", "E", "F"}, {}};
    HWND dialog = open_tagger(ui.host(), make_lookup(6, {{"Local discora", {ska, reggae}}}));
    if (!dialog) return 1;
    SetWindowPos(dialog, nullptr, 40, 40, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    ui.host().pump_until([] { return false; }, std::chrono::milliseconds(1500));
    RECT r = screen_rect(dialog);
    { std::ofstream(marker) << r.left << ' ' << r.top << ' ' << r.right << ' ' << r.bottom << '\n'; }
    ui.host().pump_until([&] { return !std::filesystem::exists(marker); }, std::chrono::minutes(2));
    return 0;
}
