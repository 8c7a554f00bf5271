#include "ui/win32/win32_view.h"

#include <commctrl.h>
#include <objbase.h>

#include <stdexcept>

#include <tunehall/autocomplete.h>
#include <tunehall/core.h>
#include <tunehall/shared.h>

#include "ui/view_factory.h"
#include "ui/win32/auto_complete.h"
#include "ui/win32/component_module.h"
#include "ui/win32/win32_text.h"

namespace {

// Keeps the view from reporting the changes it makes itself, as the headless view does not.
class quiet_scope {
public:
    explicit quiet_scope(int& depth) : depth_(depth) { ++depth_; }
    ~quiet_scope() { --depth_; }
    quiet_scope(const quiet_scope&) = delete;
    quiet_scope& operator=(const quiet_scope&) = delete;

private:
    int& depth_;
};

RECT client_rect_of(HWND control, HWND parent) {
    RECT r;
    GetWindowRect(control, &r);
    MapWindowPoints(nullptr, parent, reinterpret_cast<POINT*>(&r), 2);
    return r;
}

LVITEMW item_of(std::size_t row, int column = 0) {
    LVITEMW it{};
    it.iItem = static_cast<int>(row);
    it.iSubItem = column;
    return it;
}

} // namespace

win32_view::win32_view(int template_id, HWND parent, dialog_events& events)
    : events_(events), traits_(traits_of(template_id)) {
    // The shell's auto-complete objects are COM objects of this thread.
    HRESULT com = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    com_initialised_ = com == S_OK || com == S_FALSE;
    component_activation activation;
    HWND made = CreateDialogParamW(component_module(), MAKEINTRESOURCEW(template_id), parent, &dialog_proc,
                                   reinterpret_cast<LPARAM>(this));
    if (!made) {
        DWORD code = GetLastError();
        if (com_initialised_) CoUninitialize();
        throw_win32_error("Cannot create the dialog", code ? code : ERROR_RESOURCE_NAME_NOT_FOUND);
    }
}

win32_view::~win32_view() {
    destroy();
    if (com_initialised_) CoUninitialize();
}

INT_PTR CALLBACK win32_view::dialog_proc(HWND window, UINT message, WPARAM wp, LPARAM lp) {
    if (message == WM_INITDIALOG) {
        auto* self = reinterpret_cast<win32_view*>(lp);
        SetWindowLongPtrW(window, DWLP_USER, lp);
        self->window_ = window;
        self->initialise();
        return TRUE;
    }
    auto* self = reinterpret_cast<win32_view*>(GetWindowLongPtrW(window, DWLP_USER));
    if (!self) return FALSE;
    if (message == WM_NCDESTROY) {
        SetWindowLongPtrW(window, DWLP_USER, 0);
        self->window_ = nullptr;
        return FALSE;
    }
    LRESULT result = 0;
    // The controller may destroy the view while handling an event: nothing of it is used after.
    if (!self->handle(message, wp, lp, result)) return FALSE;
    SetWindowLongPtrW(window, DWLP_MSGRESULT, result);
    return TRUE;
}

void win32_view::initialise() {
    if (traits_.modal_frame) {
        SetWindowLongPtrW(window_, GWL_EXSTYLE, GetWindowLongPtrW(window_, GWL_EXSTYLE) | WS_EX_DLGMODALFRAME);
        SetWindowPos(window_, nullptr, 0, 0, 0, 0, SWP_FRAMECHANGED | SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    }
    if (traits_.size_grip) {
        RECT client;
        GetClientRect(window_, &client);
        CreateWindowExW(0, L"SCROLLBAR", nullptr, WS_CHILD | WS_VISIBLE | SBS_SIZEGRIP | SBS_SIZEBOXBOTTOMRIGHTALIGN, 0, 0,
                        client.right, client.bottom, window_,
                        reinterpret_cast<HMENU>(static_cast<INT_PTR>(dialog_size_grip_id())), component_module(), nullptr);
    }
    if (!traits_.auto_complete.empty()) {
        // The host's library suggests what the user may mean; a host without it is broken.
        service_ref<library_suggestions> suggestions = host_service<library_suggestions>();
        for (const auto& f : traits_.auto_complete)
            if (HWND edit = GetDlgItem(window_, f.edit)) attach_auto_complete(edit, suggestions->values_of(f.field));
    }
    if (!traits_.caption_fonts.empty()) {
        // The captions stand out from the controls: the dialog's own font, in bold.
        LOGFONTW face{};
        auto dialog_font = reinterpret_cast<HFONT>(SendMessageW(window_, WM_GETFONT, 0, 0));
        if (!dialog_font || !GetObjectW(dialog_font, sizeof face, &face))
            GetObjectW(GetStockObject(DEFAULT_GUI_FONT), sizeof face, &face);
        face.lfWeight = FW_BOLD;
        caption_font_ = CreateFontIndirectW(&face);
        for (int id : traits_.caption_fonts)
            if (HWND caption = GetDlgItem(window_, id))
                SendMessageW(caption, WM_SETFONT, reinterpret_cast<WPARAM>(caption_font_), TRUE);
    }
    remember_layout();
}

void win32_view::remember_layout() {
    RECT client;
    GetClientRect(window_, &client);
    original_client_ = {client.right, client.bottom};
    for (const anchor_factors& f : traits_.anchors)
        if (HWND control = GetDlgItem(window_, f.id)) original_places_[f.id] = client_rect_of(control, window_);
}

void win32_view::apply_layout() {
    if (original_places_.empty()) return;
    RECT client;
    GetClientRect(window_, &client);
    const int grow_x = client.right - original_client_.cx, grow_y = client.bottom - original_client_.cy;
    // One batch: the controls move together, without drawing each intermediate state.
    HDWP batch = BeginDeferWindowPos(static_cast<int>(original_places_.size()));
    for (const auto& [id, place] : original_places_) {
        const anchor_factors* f = find_anchor(traits_.anchors, id);
        HWND control = GetDlgItem(window_, id);
        if (!f || !control || !batch) continue;
        layout_rect r = anchored_rect({place.left, place.top, place.right, place.bottom}, *f, grow_x, grow_y);
        batch = DeferWindowPos(batch, control, nullptr, r.left, r.top, r.right - r.left, r.bottom - r.top,
                               SWP_NOZORDER | SWP_NOACTIVATE);
    }
    if (batch) EndDeferWindowPos(batch);
    // Group boxes draw only their frame: what they leave behind must be painted over.
    RedrawWindow(window_, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

void win32_view::limit_size(MINMAXINFO& info) const {
    if (traits_.min_width_dlu <= 0 || traits_.min_height_dlu <= 0) return;
    RECT r{0, 0, traits_.min_width_dlu, traits_.min_height_dlu};
    MapDialogRect(window_, &r);
    AdjustWindowRectEx(&r, static_cast<DWORD>(GetWindowLongPtrW(window_, GWL_STYLE)), FALSE,
                       static_cast<DWORD>(GetWindowLongPtrW(window_, GWL_EXSTYLE)));
    info.ptMinTrackSize = {r.right - r.left, r.bottom - r.top};
}

bool win32_view::handle(UINT message, WPARAM wp, LPARAM lp, LRESULT& result) {
    switch (message) {
    case WM_COMMAND: {
        const int id = LOWORD(wp), code = HIWORD(wp);
        if (lp == 0 || code == BN_CLICKED) {
            // Buttons, and Enter / Escape turned into IDOK / IDCANCEL by the dialog manager.
            if (lp == 0 || IsWindowEnabled(reinterpret_cast<HWND>(lp))) events_.on_command(id);
            return true;
        }
        if (code == EN_CHANGE && quiet_ == 0) {
            events_.on_edit_changed(id);
            return true;
        }
        return false;
    }
    case WM_CLOSE:
        events_.on_command(IDCANCEL);
        return true;
    case WM_NOTIFY:
        return on_notify(*reinterpret_cast<const NMHDR*>(lp));
    case WM_SIZE:
        if (editor_ && !editor_->has_ended()) editor_->end(in_place::accepted);  // its cell moves
        apply_layout();
        return true;
    case WM_GETMINMAXINFO:
        limit_size(*reinterpret_cast<MINMAXINFO*>(lp));
        result = 0;
        return true;
    default:
        return false;
    }
}

bool win32_view::on_notify(const NMHDR& header) {
    const int id = static_cast<int>(header.idFrom);
    switch (header.code) {
    case LVN_ITEMCHANGED: {
        const auto& change = reinterpret_cast<const NMLISTVIEW&>(header);
        if ((change.uChanged & LVIF_STATE) && ((change.uNewState ^ change.uOldState) & LVIS_SELECTED) && quiet_ == 0)
            events_.on_list_selection_changed(id);
        return true;
    }
    case NM_CLICK:
    case NM_DBLCLK: {
        const auto& click = reinterpret_cast<const NMITEMACTIVATE&>(header);
        LVHITTESTINFO hit{};
        hit.pt = click.ptAction;
        SendMessageW(header.hwndFrom, LVM_SUBITEMHITTEST, 0, reinterpret_cast<LPARAM>(&hit));
        if (hit.iItem >= 0)
            events_.on_list_click(id, static_cast<std::size_t>(hit.iItem), hit.iSubItem, header.code == NM_DBLCLK);
        return true;
    }
    case LVN_KEYDOWN: {
        const auto& key = reinterpret_cast<const NMLVKEYDOWN&>(header);
        events_.on_list_key(id, key.wVKey, GetKeyState(VK_SHIFT) < 0);
        return true;
    }
    default:
        return false;
    }
}

HWND win32_view::item(int id) const {
    HWND control = GetDlgItem(window_, id);
    if (!control) throw std::logic_error("dialog has no control " + std::to_string(id));
    return control;
}

void win32_view::set_title(const std::string& text) { uSetWindowText(window_, text.c_str()); }

std::string win32_view::get_text(int id) const {
    std::string out;
    uGetDlgItemText(window_, id, &out);
    return out;
}

void win32_view::set_text(int id, const std::string& text) {
    quiet_scope quiet(quiet_);
    uSetWindowText(item(id), text.c_str());
}

int win32_view::get_check(int id) const { return static_cast<int>(SendMessageW(item(id), BM_GETCHECK, 0, 0)); }

void win32_view::set_check(int id, bool checked) {
    SendMessageW(item(id), BM_SETCHECK, checked ? BST_CHECKED : BST_UNCHECKED, 0);
}

void win32_view::enable(int id, bool enabled) { EnableWindow(item(id), enabled ? TRUE : FALSE); }

bool win32_view::is_enabled(int id) const { return IsWindowEnabled(item(id)) != FALSE; }

void win32_view::enable_window(bool enabled) { EnableWindow(window_, enabled ? TRUE : FALSE); }

void win32_view::show() {
    if (traits_.disables_owner && !disabled_owner_) {
        HWND owner = GetWindow(window_, GW_OWNER);
        if (owner && IsWindowEnabled(owner)) {
            EnableWindow(owner, FALSE);
            disabled_owner_ = owner;
        }
    }
    ShowWindow(window_, SW_SHOW);
}

void win32_view::release_owner() {
    // Enabled before the dialog goes, so that the system activates the owner, not another window.
    if (HWND owner = disabled_owner_) {
        disabled_owner_ = nullptr;
        if (IsWindow(owner)) EnableWindow(owner, TRUE);
    }
}

void win32_view::destroy() {
    editor_.reset();
    release_owner();
    if (HWND window = window_) {
        SetWindowLongPtrW(window, DWLP_USER, 0);
        window_ = nullptr;
        DestroyWindow(window);
    }
    if (caption_font_) {
        DeleteObject(caption_font_);
        caption_font_ = nullptr;
    }
}

int win32_view::message_box(const std::string& text, const std::string& caption, std::uint32_t flags) {
    return MessageBoxW(window_, to_wide(text).c_str(), to_wide(caption).c_str(), flags);
}

void win32_view::combo_add(int id, const std::string& text) {
    SendMessageW(item(id), CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(to_wide(text).c_str()));
}

void win32_view::combo_select(int id, int index) {
    quiet_scope quiet(quiet_);
    SendMessageW(item(id), CB_SETCURSEL, static_cast<WPARAM>(index), 0);
}

void win32_view::list_add_column(int id, const std::string& title, int width, align alignment) {
    HWND list = item(id);
    HWND header = reinterpret_cast<HWND>(SendMessageW(list, LVM_GETHEADER, 0, 0));
    const int index = header ? static_cast<int>(SendMessageW(header, HDM_GETITEMCOUNT, 0, 0)) : 0;
    std::wstring text = to_wide(title);
    LVCOLUMNW column{};
    column.mask = LVCF_FMT | LVCF_WIDTH | LVCF_TEXT | LVCF_SUBITEM;
    column.fmt = alignment == align::right ? LVCFMT_RIGHT : alignment == align::center ? LVCFMT_CENTER : LVCFMT_LEFT;
    column.cx = width;
    column.pszText = text.data();
    column.iSubItem = index;
    SendMessageW(list, LVM_INSERTCOLUMNW, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&column));
}

void win32_view::list_clear(int id) {
    quiet_scope quiet(quiet_);
    if (editor_ && editing_.list == id) editor_.reset();
    SendMessageW(item(id), LVM_DELETEALLITEMS, 0, 0);
}

std::size_t win32_view::list_add_row(int id, const std::string& text, std::intptr_t data, std::size_t group) {
    quiet_scope quiet(quiet_);
    HWND list = item(id);
    std::wstring wide = to_wide(text);
    LVITEMW row = item_of(list_row_count(id));
    row.mask = LVIF_TEXT | LVIF_PARAM;
    row.pszText = wide.data();
    row.lParam = static_cast<LPARAM>(data);
    if (group != no_group) {
        row.mask |= LVIF_GROUPID;
        row.iGroupId = static_cast<int>(group);
    }
    LRESULT at = SendMessageW(list, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&row));
    if (at < 0) throw std::runtime_error("Cannot add a row to list " + std::to_string(id));
    return static_cast<std::size_t>(at);
}

void win32_view::list_delete_row(int id, std::size_t row) {
    quiet_scope quiet(quiet_);
    if (editor_ && editing_.list == id && editing_.row == row) editor_.reset();
    SendMessageW(item(id), LVM_DELETEITEM, row, 0);
}

std::size_t win32_view::list_row_count(int id) const {
    return static_cast<std::size_t>(SendMessageW(item(id), LVM_GETITEMCOUNT, 0, 0));
}

void win32_view::list_set_cell(int id, std::size_t row, int column, const std::string& text) {
    quiet_scope quiet(quiet_);
    std::wstring wide = to_wide(text);
    LVITEMW cell = item_of(row, column);
    cell.pszText = wide.data();
    SendMessageW(item(id), LVM_SETITEMTEXTW, row, reinterpret_cast<LPARAM>(&cell));
}

std::string win32_view::list_get_cell(int id, std::size_t row, int column) const {
    HWND list = item(id);
    // The list copies at most the buffer's size and does not say how long the text is: grow
    // the buffer until the text fits with room to spare.
    for (std::size_t size = 256;; size *= 4) {
        std::wstring buffer(size, L'\0');
        LVITEMW cell = item_of(row, column);
        cell.pszText = buffer.data();
        cell.cchTextMax = static_cast<int>(size);
        LRESULT got = SendMessageW(list, LVM_GETITEMTEXTW, row, reinterpret_cast<LPARAM>(&cell));
        if (static_cast<std::size_t>(got) + 1 < size) return from_wide(buffer.c_str(), static_cast<int>(got));
    }
}

std::intptr_t win32_view::list_row_data(int id, std::size_t row) const {
    LVITEMW it = item_of(row);
    it.mask = LVIF_PARAM;
    if (!SendMessageW(item(id), LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&it)))
        throw std::logic_error("list " + std::to_string(id) + " has no row " + std::to_string(row));
    return static_cast<std::intptr_t>(it.lParam);
}

void win32_view::list_enable_groups(int id, bool enabled) {
    SendMessageW(item(id), LVM_ENABLEGROUPVIEW, enabled ? TRUE : FALSE, 0);
}

void win32_view::list_add_group(int id, std::size_t group, const std::string& header) {
    std::wstring text = to_wide(header);
    LVGROUP g{};
    g.cbSize = sizeof g;
    g.mask = LVGF_HEADER | LVGF_GROUPID;
    g.pszHeader = text.data();
    g.iGroupId = static_cast<int>(group);
    SendMessageW(item(id), LVM_INSERTGROUP, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&g));
}

void win32_view::list_select(int id, std::optional<std::size_t> row) {
    quiet_scope quiet(quiet_);
    HWND list = item(id);
    LVITEMW none{};
    none.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
    SendMessageW(list, LVM_SETITEMSTATE, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&none));
    if (!row) return;
    LVITEMW chosen{};
    chosen.stateMask = chosen.state = LVIS_SELECTED | LVIS_FOCUSED;
    SendMessageW(list, LVM_SETITEMSTATE, *row, reinterpret_cast<LPARAM>(&chosen));
    SendMessageW(list, LVM_ENSUREVISIBLE, *row, FALSE);
}

std::optional<std::size_t> win32_view::list_selection(int id) const {
    LRESULT at = SendMessageW(item(id), LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED);
    if (at < 0) return std::nullopt;
    return static_cast<std::size_t>(at);
}

std::optional<std::size_t> win32_view::list_focus(int id) const {
    LRESULT at = SendMessageW(item(id), LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED);
    if (at < 0) return std::nullopt;
    return static_cast<std::size_t>(at);
}

void win32_view::list_set_extended_style(int id, std::uint32_t style) {
    SendMessageW(item(id), LVM_SETEXTENDEDLISTVIEWSTYLE, style, style);
}

void win32_view::list_fit_column(int id, int column) {
    SendMessageW(item(id), LVM_SETCOLUMNWIDTH, static_cast<WPARAM>(column), LVSCW_AUTOSIZE_USEHEADER);
}

void win32_view::list_start_edit(int id, std::size_t row, int column) {
    settle_editor();
    if (!window_) return;  // the controller closed the dialog meanwhile
    HWND list = item(id);
    if (row >= list_row_count(id)) return;
    SendMessageW(list, LVM_ENSUREVISIBLE, row, FALSE);
    RECT cell{};
    cell.top = column;
    cell.left = column == 0 ? LVIR_LABEL : LVIR_BOUNDS;
    SendMessageW(list, LVM_GETSUBITEMRECT, row, reinterpret_cast<LPARAM>(&cell));
    const cell_editor_setup* setup = nullptr;
    for (const auto& s : traits_.cell_editors)
        if (s.list == id && s.column == column) setup = &s;
    editing_ = {id, row, column};
    editor_ = std::make_unique<in_place_editor>(list, cell, list_get_cell(id, row, column), setup ? setup->options : 0,
                                                [this](const std::string&, int code) { editor_ended(code); });
    editor_->on_commit([this, at = editing_](const std::string& text, int code) {
        events_.on_cell_edit_commit(at.list, at.row, at.column, text, code);
    });
    if (setup && setup->field)
        if (auto suggestions = try_host_service<library_suggestions>())
            attach_auto_complete(editor_->control(), suggestions->values_of(setup->field));
}

void win32_view::settle_editor() {
    if (!editor_) return;
    if (!editor_->has_ended()) editor_->end(in_place::accepted);
    // Its posted end message dies with its window: the end is reported here instead.
    editor_ended(editor_->end_code());
}

void win32_view::editor_ended(int end_code) {
    const edit_position at = editing_;
    if (editor_) {
        // The keyboard goes back to the list the editor lay on.
        HWND focus = GetFocus();
        if (!focus || focus == editor_->control() || IsChild(editor_->container(), focus))
            SetFocus(GetDlgItem(window_, at.list));
    }
    editor_.reset();
    events_.on_cell_edit_end(at.list, at.row, at.column, end_code);
}

std::unique_ptr<dialog_view> create_dialog_view(int template_id, HWND parent, dialog_events& events) {
    return std::make_unique<win32_view>(template_id, parent, events);
}
