// The whole road under Windows, as a person walks it: the host's menu command on three tracks
// of its library, the lookup against the project's local CDDB server (scripts/test starts it and
// names its port in TESSELLON_CDDB_PORT), the tagger dialog, an edit, "&Update files", and the
// tags in the library's store.

#include <gtest/gtest.h>

#include <cstdlib>

#include "config/settings.h"
#include "resources/resource.h"
#include "ui_support.h"

#include <commctrl.h>

using namespace ui_testing;

namespace {

// The library of fixture disc `disc_id`: one track per entry of its table of contents, as long
// as the frames between its start and the next one's (or the disc's end).
std::vector<std::string> library_of(const std::string& disc_id) {
    const testing_support::fixture_toc toc = testing_support::read_fixture_toc(disc_id);
    std::vector<std::string> lines;
    for (std::size_t i = 0; i < toc.offsets.size(); ++i) {
        const long end = i + 1 < toc.offsets.size() ? toc.offsets[i + 1] : toc.disc_seconds * 75;
        const std::string number = std::to_string(i + 1);
        lines.push_back("C:\\music\\" + disc_id + "\\" + number + ".flac\t" + std::to_string((end - toc.offsets[i]) / 75.0) +
                        "\ttitle=Track " + number + "\tcomment=ripped");
    }
    return lines;
}

server_record local_server(const char* port) {
    server_record r;
    r.set_server("127.0.0.1");
    r.set_protocol("http");
    r.set_port(port);
    r.set_address("/~cddb/cddb.cgi");
    r.set_description("Local discora");
    return r;
}

} // namespace

TEST(end_to_end, get_tags_from_discora_then_edit_and_update_files_writes_the_store) {
    const char* port = std::getenv("TESSELLON_CDDB_PORT");
    if (!port) GTEST_SKIP() << "TESSELLON_CDDB_PORT not set (scripts/test sets it)";
    ui_host ui(library_of("12025d03"));
    winhost::test_host& host = ui.host();
    save_server_list({local_server(port)});

    host.run_menu_command("Get tags from discora", host.library().tracks());
    HWND dialog = nullptr;
    ASSERT_TRUE(host.pump_until([&] { return (dialog = find_window(L"discora tagger")) != nullptr; }))
        << "no tagger dialog; popups: " << (host.popups().empty() ? "none" : host.popups().front().message);
    HWND matches = GetDlgItem(dialog, IDC_TAGGER_MATCHES), tracks = GetDlgItem(dialog, IDC_TAGGER_TRACKS);
    ASSERT_EQ(row_count(matches), 1);
    EXPECT_EQ(cell(matches, 0, 0), "Ernest Ray Everett - Single CD / Ernest Ray Everett - Single CD (country)");
    EXPECT_EQ(cell(tracks, 0, 1), "I'm Your Puppet");

    // The entry has no " / ": the user splits artist and album by hand, and renames a track.
    SetDlgItemTextW(dialog, IDC_TAGGER_ARTIST, L"Ernest Ray Everett");
    SetDlgItemTextW(dialog, IDC_TAGGER_ALBUM, L"Single CD");
    focus_row(tracks, 1);
    SendMessageW(tracks, WM_KEYDOWN, VK_F2, 1);
    host.pump();
    HWND editor = cell_editor(tracks);
    ASSERT_TRUE(editor);
    SetWindowTextW(editor, L"Me And Jacky (single edit)");
    SendMessageW(editor, WM_KEYDOWN, VK_RETURN, 1);
    host.pump();
    EXPECT_EQ(cell(tracks, 1, 1), "Me And Jacky (single edit)");

    SendMessageW(GetDlgItem(dialog, IDC_TAGGER_UPDATE), BM_CLICK, 0, 0);
    ASSERT_TRUE(host.pump_until([&] { return !IsWindow(dialog); })) << "the dialog stayed open after the update";
    EXPECT_TRUE(host.popups().empty()) << host.popups().front().message;

    // What the store holds now, read back from the manifest file itself.
    winhost::track_library written(ui.manifest());
    const tag_record tags = written.tags_of("C:\\music\\12025d03\\2.flac");
    EXPECT_STREQ(tags.first_value("title"), "Me And Jacky (single edit)");
    EXPECT_STREQ(tags.first_value("artist"), "Ernest Ray Everett");
    EXPECT_STREQ(tags.first_value("album"), "Single CD");
    EXPECT_STREQ(tags.first_value("date"), "2009");
    EXPECT_STREQ(tags.first_value("genre"), "Country");
    EXPECT_STREQ(tags.first_value("tracknumber"), "2");
    EXPECT_STREQ(written.tags_of("C:\\music\\12025d03\\1.flac").first_value("title"), "I'm Your Puppet");
}
