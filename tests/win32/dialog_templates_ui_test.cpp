// The real dialogs the component's resources make: every control the dialogs' code addresses is
// there, in template order, with its id, window class, kind and text. (A native test ties the
// headless templates to the resource script; this ties the compiled resources to both.)

#include <gtest/gtest.h>

#include "ui_support.h"

#include <commctrl.h>

#include <map>

#include "musicbrainz/release_dialog.h"
#include "resources/resource.h"
#include "ui/headless/dialog_templates.h"
#include "ui/view_factory.h"

using namespace ui_testing;

namespace {

struct no_events : dialog_events {
    void on_command(int) override {}
};

std::wstring class_of(HWND window) {
    wchar_t name[64] = {};
    GetClassNameW(window, name, 64);
    return name;
}

// The window class each kind of control is made of, and its button type where that tells kinds apart.
const std::map<control_kind, std::pair<std::wstring, int>> classes = {
    {control_kind::label, {L"Static", -1}},          {control_kind::edit, {L"Edit", -1}},
    {control_kind::button, {L"Button", BS_PUSHBUTTON}}, {control_kind::check_box, {L"Button", BS_AUTOCHECKBOX}},
    {control_kind::group_box, {L"Button", BS_GROUPBOX}}, {control_kind::list_view, {WC_LISTVIEWW, -1}},
    {control_kind::combo_box, {L"ComboBox", -1}},    {control_kind::separator, {L"tunehall:separator", -1}}};

} // namespace

TEST(dialog_templates, each_real_dialog_has_the_templates_controls_in_order) {
    ui_host ui;
    no_events events;
    for (int id : {IDD_PREFERENCES, IDD_TAGGER, IDD_SERVER_EDITOR, IDD_MUSICBRAINZ}) {
        SCOPED_TRACE("dialog " + std::to_string(id));
        const dialog_template& wanted = find_dialog_template(id);
        std::unique_ptr<dialog_view> view = create_dialog_view(id, ui.host().main_window(), events);  // the page is a child window
        HWND dialog = view->handle();
        ASSERT_TRUE(dialog);
        EXPECT_EQ(text_of(dialog), wanted.title);
        std::vector<HWND> controls;
        for (HWND c = GetWindow(dialog, GW_CHILD); c; c = GetWindow(c, GW_HWNDNEXT))
            if (!(class_of(c) == L"ScrollBar" && (GetWindowLongPtrW(c, GWL_STYLE) & SBS_SIZEGRIP))) controls.push_back(c);
        ASSERT_EQ(controls.size(), wanted.controls.size());
        for (std::size_t i = 0; i < controls.size(); ++i) {
            const control_template& t = wanted.controls[i];
            SCOPED_TRACE("control " + std::to_string(t.id));
            EXPECT_EQ(GetDlgCtrlID(controls[i]), t.id);
            const auto& [class_name, button_type] = classes.at(t.kind);
            EXPECT_EQ(class_of(controls[i]), class_name);
            // A default push button is a push button that Enter presses.
            LONG_PTR type = GetWindowLongPtrW(controls[i], GWL_STYLE) & BS_TYPEMASK;
            if (type == BS_DEFPUSHBUTTON) type = BS_PUSHBUTTON;
            if (button_type >= 0) { EXPECT_EQ(type, button_type); }
            const bool shows_its_text = t.kind != control_kind::edit && t.kind != control_kind::list_view &&
                                        t.kind != control_kind::combo_box;
            if (shows_its_text) { EXPECT_EQ(text_of(controls[i]), t.text); }
        }
    }
}

TEST(dialog_templates, the_musicbrainz_dialog_is_modeless_with_save_as_default_and_grid_lists) {
    ui_host ui{{"C:\\music\\1.flac\t181\ttitle=one"}};
    auto release = std::make_shared<musicbrainz_release>();
    release->title = "Ska Island";
    release->tracks = {{{"Desmond Dekker"}, "Israelites"}};
    open_release_dialog(ui.host().main_window(), ui.host().library().tracks(), release);
    ui.host().pump();
    HWND dialog = find_window(L"MusicBrainz Lookup");
    ASSERT_TRUE(dialog);
    const auto open_windows = ui.host().open_windows();
    EXPECT_NE(std::find(open_windows.begin(), open_windows.end(), dialog), open_windows.end());
    EXPECT_TRUE(IsWindowEnabled(ui.host().main_window()));
    EXPECT_EQ(GetWindowLongPtrW(GetDlgItem(dialog, IDC_MB_SAVE), GWL_STYLE) & BS_TYPEMASK, BS_DEFPUSHBUTTON);
    const LRESULT list_style = LVS_EX_GRIDLINES | LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER;
    for (int id : {IDC_MB_ALBUM, IDC_MB_TRACKS})
        EXPECT_EQ(SendMessageW(GetDlgItem(dialog, id), LVM_GETEXTENDEDLISTVIEWSTYLE, 0, 0) & list_style, list_style) << id;
    SendMessageW(GetDlgItem(dialog, IDC_MB_CANCEL), BM_CLICK, 0, 0);
    ui.host().pump();
    EXPECT_FALSE(IsWindow(dialog));
}
