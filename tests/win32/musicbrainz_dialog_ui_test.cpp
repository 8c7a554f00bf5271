// The "MusicBrainz Lookup" dialog as a person meets it under Windows, and the write-at-once
// entry end to end against the project's local MusicBrainz server (scripts/test starts it and
// names it in TESSELLON_MUSICBRAINZ_HOST).

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

#include <windows.h>

#include <commctrl.h>

#include <tunehall/core.h>
#include <tunehall/tagging_source.h>

#include "musicbrainz/release_dialog.h"
#include "ui_support.h"

using namespace ui_testing;

namespace {

enum : int { album_caption = 1290, album = 1032, tracks_caption = 1291, tracks = 1024, save = IDOK, cancel = IDCANCEL };
constexpr const wchar_t* caption = L"MusicBrainz Lookup";

const std::vector<std::string> library_lines = {
    "C:\\music\\ska\\1.flac\t181\ttitle=one\tartist=Someone",
    "C:\\music\\ska\\2.flac\t175\ttitle=two",
};

std::shared_ptr<const musicbrainz_release> sample_release() {
    auto r = std::make_shared<musicbrainz_release>();
    r->title = "Ska Island";
    r->album_artist = {"Various"};
    r->date = "1997";
    r->disc_number = 1;
    r->total_discs = 2;
    r->tracks = {{{"Desmond Dekker"}, "Israelites"}, {{}, "Monkey Man"}};
    return r;
}

std::string file_bytes(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream out;
    out << in.rdbuf();
    return out.str();
}

// Records what the host's tagging call reports at its end.
class done_flag : public tagging_done {
public:
    void on_done(bool success) override { result = success ? 1 : 0; }
    int result = -1;
};

struct musicbrainz_window : ::testing::Test {
    ui_host ui{library_lines};
    HWND dialog = nullptr;
    service_ref<done_flag> done = make_service<done_flag>();
    std::string library_before = file_bytes(ui.manifest());

    void open() {
        open_release_dialog(ui.host().main_window(), ui.host().library().tracks(), sample_release(), done);
        ui.host().pump();
        dialog = find_window(caption);
        ASSERT_TRUE(dialog) << "no MusicBrainz Lookup dialog";
    }
    HWND list(int id) { return GetDlgItem(dialog, id); }
    // Double-clicks a cell, types `text` into its editor and presses Enter.
    void edit_cell(int list_id, int row, int column, const wchar_t* text) {
        HWND l = list(list_id);
        double_click_cell(l, row, column);
        ASSERT_TRUE(ui.host().pump_until([&] { return cell_editor(l) != nullptr; }, std::chrono::seconds(10)))
            << "no editor on row " << row << " column " << column;
        HWND editor = cell_editor(l);
        SetWindowTextW(editor, text);
        SendMessageW(editor, WM_KEYDOWN, VK_RETURN, 1);
        ui.host().pump();
    }
    tag_record written(const std::string& path) { return winhost::track_library(ui.manifest()).tags_of(path); }
};

} // namespace

TEST_F(musicbrainz_window, the_dialog_follows_its_template_and_lists_the_release) {
    open();
    // Places in dialog units, as the template lays them out.
    auto place_of = [&](int id) {
        RECT r{};
        GetWindowRect(GetDlgItem(dialog, id), &r);
        MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&r), 2);
        RECT unit{0, 0, 4, 8};
        MapDialogRect(dialog, &unit);
        return std::vector<long>{r.left * 4 / unit.right, r.top * 8 / unit.bottom};
    };
    EXPECT_EQ(place_of(save), (std::vector<long>{208, 272}));
    EXPECT_EQ(place_of(cancel), (std::vector<long>{262, 272}));
    EXPECT_EQ(GetWindowLongPtrW(GetDlgItem(dialog, save), GWL_STYLE) & 0xF, BS_DEFPUSHBUTTON);

    // Modeless: the host's window manager knows it, and the main window is still usable.
    const auto open_windows = ui.host().open_windows();
    EXPECT_NE(std::find(open_windows.begin(), open_windows.end(), dialog), open_windows.end());
    EXPECT_TRUE(IsWindowEnabled(ui.host().main_window()));

    for (int id : {album, tracks})
        EXPECT_EQ(SendMessageW(list(id), LVM_GETEXTENDEDLISTVIEWSTYLE, 0, 0) & 0x10021, 0x10021) << id;
    ASSERT_EQ(row_count(list(album)), 4);
    EXPECT_EQ(cell(list(album), 0, 0), "Title");
    EXPECT_EQ(cell(list(album), 0, 1), "Ska Island");
    EXPECT_EQ(cell(list(album), 1, 1), "Various");
    EXPECT_EQ(cell(list(album), 2, 1), "1997");
    EXPECT_EQ(cell(list(album), 3, 1), "1/2");
    ASSERT_EQ(row_count(list(tracks)), 2);
    EXPECT_EQ(cell(list(tracks), 1, 0), "2");
    EXPECT_EQ(cell(list(tracks), 0, 1), "Israelites");
    EXPECT_EQ(cell(list(tracks), 0, 2), "Desmond Dekker");

    // The names are not editable: a double click there opens nothing.
    double_click_cell(list(album), 0, 0);
    ui.host().pump_until([] { return false; }, std::chrono::milliseconds(300));
    EXPECT_EQ(cell_editor(list(album)), nullptr);
    SendMessageW(GetDlgItem(dialog, cancel), BM_CLICK, 0, 0);
}

TEST_F(musicbrainz_window, edits_by_double_click_and_f2_are_saved_into_the_tags) {
    open();
    edit_cell(album, 1, 1, L"A;  B");
    EXPECT_EQ(cell(list(album), 1, 1), "A;  B");
    edit_cell(tracks, 1, 1, L"Monkey Man (single)");

    // F2 on the focused track row edits its title; Shift+F2 its artist.
    HWND t = list(tracks);
    focus_row(t, 0);
    press_key(t, VK_F2, /*shift=*/true);
    ui.host().pump();
    HWND editor = cell_editor(t);
    ASSERT_TRUE(editor) << "Shift+F2 opened no editor";
    SetWindowTextW(editor, L"Desmond Dekker; The Aces");
    SendMessageW(editor, WM_KEYDOWN, VK_RETURN, 1);
    ui.host().pump();
    EXPECT_EQ(cell(t, 0, 2), "Desmond Dekker; The Aces");

    SendMessageW(GetDlgItem(dialog, save), BM_CLICK, 0, 0);
    ASSERT_TRUE(ui.host().pump_until([&] { return !IsWindow(dialog); })) << "the dialog stayed open after Save";
    // The tag update runs on after the dialog has gone; its end is reported to the caller.
    ASSERT_TRUE(ui.host().pump_until([&] { return done->result >= 0; })) << "the update did not end";
    EXPECT_EQ(done->result, 1);
    const tag_record first = written("C:\\music\\ska\\1.flac"), second = written("C:\\music\\ska\\2.flac");
    EXPECT_EQ(values_of(first, "album artist"), (std::vector<std::string>{"A", "B"}));
    EXPECT_EQ(values_of(first, "album"), (std::vector<std::string>{"Ska Island"}));
    EXPECT_EQ(values_of(first, "artist"), (std::vector<std::string>{"Desmond Dekker", "The Aces"}));
    EXPECT_EQ(values_of(first, "discnumber"), (std::vector<std::string>{"1"}));
    EXPECT_EQ(values_of(first, "totaldiscs"), (std::vector<std::string>{"2"}));
    EXPECT_EQ(values_of(second, "title"), (std::vector<std::string>{"Monkey Man (single)"}));
    // A track without artists of its own gets the album's.
    EXPECT_EQ(values_of(second, "artist"), (std::vector<std::string>{"A", "B"}));
    EXPECT_TRUE(ui.host().popups().empty());
}

TEST_F(musicbrainz_window, cancel_writes_nothing) {
    open();
    edit_cell(album, 0, 1, L"Something else");
    SendMessageW(GetDlgItem(dialog, cancel), BM_CLICK, 0, 0);
    ui.host().pump_until([&] { return !IsWindow(dialog); }, std::chrono::seconds(10));
    EXPECT_FALSE(IsWindow(dialog));
    EXPECT_EQ(done->result, 0) << "the caller was not told that nothing was done";
    ui.host().pump_until([] { return false; }, std::chrono::milliseconds(300));
    EXPECT_EQ(file_bytes(ui.manifest()), library_before);
}

TEST_F(musicbrainz_window, a_disc_text_that_is_not_digits_shows_invalid_input_and_writes_nothing) {
    open();
    edit_cell(album, 3, 1, L"one/2");
    std::string message;
    const DWORD ui_thread = GetCurrentThreadId();
    modal_hand hand([&] { return find_thread_window(ui_thread, caption, dialog); },
                    [&](HWND box) {
                        if (!box) return;
                        message = message_box_text(box);
                        SendMessageW(box, WM_COMMAND, IDOK, 0);
                    });
    SendMessageW(GetDlgItem(dialog, save), BM_CLICK, 0, 0);
    ASSERT_TRUE(hand.join()) << "no message box";
    EXPECT_EQ(message, "invalid input");
    EXPECT_TRUE(IsWindow(dialog)) << "the dialog closed on a bad disc text";
    ui.host().pump_until([] { return false; }, std::chrono::milliseconds(300));
    EXPECT_EQ(file_bytes(ui.manifest()), library_before);
    SendMessageW(GetDlgItem(dialog, cancel), BM_CLICK, 0, 0);
}

namespace {

// Track lengths (seconds) that lay out the local server's disc `disc_id` (its tocs.tsv).
std::vector<double> musicbrainz_disc_lengths(const std::string& disc_id) {
    std::ifstream in(source_file("tests/servers/musicbrainz_answers/tocs.tsv"));
    for (std::string line; std::getline(in, line);) {
        std::istringstream fields(line);
        std::string id, leadout, offsets;
        std::getline(fields, id, '\t');
        std::getline(fields, leadout, '\t');
        std::getline(fields, offsets, '\t');
        if (id != disc_id) continue;
        std::vector<long> starts;
        std::istringstream numbers(offsets);
        for (long offset; numbers >> offset;) starts.push_back(offset);
        starts.push_back(std::stol(leadout));
        std::vector<double> lengths;
        for (std::size_t i = 0; i + 1 < starts.size(); ++i) lengths.push_back(static_cast<double>(starts[i + 1] - starts[i]) / 75.0);
        return lengths;
    }
    return {};
}

} // namespace

TEST(musicbrainz_end_to_end, write_at_once_tags_the_album_from_the_local_server) {
    if (!std::getenv("TESSELLON_MUSICBRAINZ_HOST")) GTEST_SKIP() << "TESSELLON_MUSICBRAINZ_HOST not set (scripts/test sets it)";
    const std::vector<double> lengths = musicbrainz_disc_lengths("pphmFbEaZKk7KDKQ_AKCMVtrjIg-");
    ASSERT_EQ(lengths.size(), 11u);
    std::vector<std::string> lines;
    for (std::size_t i = 0; i < lengths.size(); ++i)
        lines.push_back("C:\\music\\ziggy\\" + std::to_string(i + 1) + ".flac\t" + std::to_string(lengths[i]) + "\ttitle=Track " +
                        std::to_string(i + 1) + "\tcomment=ripped");
    ui_host ui(lines);
    service_ref<tagging_source> source;
    for (auto& s : all_services<tagging_source>())
        if (std::string(s->name()) == "MusicBrainz") source = s;
    ASSERT_TRUE(source);
    auto done = make_service<done_flag>();
    source->lookup_write(ui.host().library().tracks(), ui.host().main_window(), done);
    ASSERT_TRUE(ui.host().pump_until([&] { return done->result >= 0; }, std::chrono::seconds(60)))
        << "the lookup did not end; popups: " << (ui.host().popups().empty() ? "none" : ui.host().popups().front().message);
    EXPECT_EQ(done->result, 1) << (ui.host().popups().empty() ? "no popup" : ui.host().popups().front().message);
    EXPECT_EQ(find_window(caption), nullptr) << "write-at-once opened the dialog";

    winhost::track_library written(ui.manifest());
    const tag_record first = written.tags_of("C:\\music\\ziggy\\1.flac");
    EXPECT_EQ(values_of(first, "album"), (std::vector<std::string>{"The Rise and Fall of Ziggy Stardust and the Spiders From Mars"}));
    EXPECT_EQ(values_of(first, "album artist"), (std::vector<std::string>{"David Bowie"}));
    EXPECT_EQ(values_of(first, "title"), (std::vector<std::string>{"Five Years"}));
    EXPECT_EQ(values_of(first, "comment"), (std::vector<std::string>{"ripped"})) << "a field the mapping does not touch changed";
    EXPECT_EQ(values_of(written.tags_of("C:\\music\\ziggy\\10.flac"), "title"), (std::vector<std::string>{"Suffragette City"}));
}
