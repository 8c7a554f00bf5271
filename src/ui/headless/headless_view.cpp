#include "ui/headless/headless_view.h"

#include <mutex>
#include <set>
#include <stdexcept>

#include "resources/resource.h"
#include "ui/edit_keys.h"
#include "ui/view_factory.h"

namespace {
// Handles this class gave out, so that a host can tell a headless window from anything else.
std::mutex g_live_lock;
std::set<const headless_view*> g_live;
} // namespace

headless_view::headless_view(const dialog_template& t, HWND, dialog_events& events) : events_(events), title_(t.title) {
    for (auto& c : t.controls) {
        if (c.id == IDC_STATIC) continue;  // plain labels cannot be addressed
        control ctl;
        ctl.kind = c.kind;
        ctl.text = c.text;
        controls_.emplace(c.id, std::move(ctl));
    }
    std::lock_guard lock(g_live_lock);
    g_live.insert(this);
}

headless_view::~headless_view() {
    std::lock_guard lock(g_live_lock);
    g_live.erase(this);
}

headless_view* headless_view::from_handle(HWND handle) {
    auto* view = reinterpret_cast<headless_view*>(handle);
    std::lock_guard lock(g_live_lock);
    return g_live.count(view) ? view : nullptr;
}

HWND headless_view::handle() const { return reinterpret_cast<HWND>(const_cast<headless_view*>(this)); }

headless_view::control& headless_view::at(int id) {
    auto it = controls_.find(id);
    if (it == controls_.end()) throw std::logic_error("dialog has no control " + std::to_string(id));
    return it->second;
}

const headless_view::control& headless_view::at(int id) const { return const_cast<headless_view*>(this)->at(id); }

const headless_view::row& headless_view::row_at(int id, std::size_t r) const {
    const control& c = at(id);
    if (r >= c.rows.size()) throw std::logic_error("list " + std::to_string(id) + " has no row " + std::to_string(r));
    return c.rows[r];
}

int headless_view::message_box(const std::string& text, const std::string& caption, std::uint32_t flags) {
    messages_.push_back({text, caption, flags});
    return answer_;
}

void headless_view::list_add_column(int id, const std::string& title, int width, align alignment) {
    at(id).columns.push_back({title, width, alignment});
}

void headless_view::list_clear(int id) {
    control& c = at(id);
    c.rows.clear();
    c.selection.reset();
    c.focus.reset();
}

std::size_t headless_view::list_add_row(int id, const std::string& text, std::intptr_t data, std::size_t group) {
    control& c = at(id);
    row r;
    r.cells.assign(std::max<std::size_t>(c.columns.size(), 1), "");
    r.cells[0] = text;
    r.data = data;
    r.group = group;
    c.rows.push_back(std::move(r));
    return c.rows.size() - 1;
}

void headless_view::list_delete_row(int id, std::size_t r) {
    control& c = at(id);
    row_at(id, r);
    c.rows.erase(c.rows.begin() + static_cast<long>(r));
    // As a list view does: the selection goes with the row, later rows move up.
    for (auto* mark : {&c.selection, &c.focus}) {
        if (!*mark) continue;
        if (**mark == r) mark->reset();
        else if (**mark > r) --**mark;
    }
}

void headless_view::list_set_cell(int id, std::size_t r, int column, const std::string& text) {
    row_at(id, r);
    auto& cells = at(id).rows[r].cells;
    if (static_cast<std::size_t>(column) >= cells.size()) cells.resize(static_cast<std::size_t>(column) + 1);
    cells[static_cast<std::size_t>(column)] = text;
}

std::string headless_view::list_get_cell(int id, std::size_t r, int column) const {
    const auto& cells = row_at(id, r).cells;
    return static_cast<std::size_t>(column) < cells.size() ? cells[static_cast<std::size_t>(column)] : std::string();
}

void headless_view::list_select(int id, std::optional<std::size_t> r) {
    control& c = at(id);
    if (r) row_at(id, *r);
    c.selection = r;
    if (r) c.focus = r;
}

void headless_view::list_fit_column(int id, int column) {
    control& c = at(id);
    if (static_cast<std::size_t>(column) >= c.columns.size()) return;
    // Character counts stand in for pixel widths: wide enough for every cell and the header.
    std::size_t widest = c.columns[static_cast<std::size_t>(column)].title.size();
    for (auto& r : c.rows)
        if (static_cast<std::size_t>(column) < r.cells.size()) widest = std::max(widest, r.cells[static_cast<std::size_t>(column)].size());
    c.columns[static_cast<std::size_t>(column)].width = static_cast<int>(widest);
}

void headless_view::list_start_edit(int id, std::size_t r, int column) {
    row_at(id, r);
    leave_editor();
    editing_ = edit_position{id, r, column};
    editor_text_ = list_get_cell(id, r, column);
}

void headless_view::type_text(int id, const std::string& text) {
    leave_editor();
    at(id).text = text;
    events_.on_edit_changed(id);
}

void headless_view::click(int id) {
    control& c = at(id);
    if (!c.enabled || !window_enabled_) return;  // a disabled control takes no clicks
    leave_editor();
    if (c.kind == control_kind::check_box) c.check = c.check == 1 ? 0 : 1;
    events_.on_command(id);
}

void headless_view::select_row(int id, std::optional<std::size_t> r) {
    leave_editor();
    list_select(id, r);
    events_.on_list_selection_changed(id);
}

void headless_view::click_cell(int id, std::size_t r, int column, bool double_click) {
    leave_editor();
    list_select(id, r);
    events_.on_list_selection_changed(id);
    events_.on_list_click(id, r, column, double_click);
}

void headless_view::press_key(int id, unsigned key, bool shift) {
    leave_editor();
    events_.on_list_key(id, key, shift);
}

void headless_view::type_in_editor(const std::string& text) {
    if (!editing_) throw std::logic_error("no cell is being edited");
    editor_text_ = text;
}

void headless_view::finish_edit(const std::string& text, int end_code) {
    type_in_editor(text);
    end_editor(end_code);
}

void headless_view::end_editor(int end_code) {
    edit_position at = *editing_;
    editing_.reset();
    // As a real editor ends: the text is handed over first, then the end is told.
    events_.on_cell_edit_commit(at.list, at.row, at.column, editor_text_, end_code);
    events_.on_cell_edit_end(at.list, at.row, at.column, end_code);
}

void headless_view::leave_editor() {
    if (editing_) end_editor(in_place::accepted);  // as when the focus leaves it
}

std::string headless_view::row_group_header(int id, std::size_t r) const {
    const control& c = at(id);
    auto it = c.groups.find(row_at(id, r).group);
    return it == c.groups.end() ? std::string() : it->second;
}

std::unique_ptr<dialog_view> create_dialog_view(int template_id, HWND parent, dialog_events& events) {
    return std::make_unique<headless_view>(find_dialog_template(template_id), parent, events);
}
