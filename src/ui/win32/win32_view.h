#pragma once
// The Win32 view: a real modeless dialog made from the component's resource template. It only
// binds controls and reports what happens in them; the template's window-layer traits (frame,
// resize rules, smallest size, size grip, auto-completion, cell editors) come from its table.

#include <map>
#include <memory>

#include "ui/dialog_view.h"
#include "ui/win32/dialog_traits.h"
#include "ui/win32/in_place_editor.h"

class win32_view final : public dialog_view {
public:
    // Creates the dialog `template_id` owned by `parent`; exception_win32 when it cannot.
    win32_view(int template_id, HWND parent, dialog_events& events);
    ~win32_view() override;
    win32_view(const win32_view&) = delete;
    win32_view& operator=(const win32_view&) = delete;

    HWND handle() const override { return window_; }
    void set_title(const std::string& text) override;
    std::string get_text(int id) const override;
    void set_text(int id, const std::string& text) override;
    int get_check(int id) const override;
    void set_check(int id, bool checked) override;
    void enable(int id, bool enabled) override;
    bool is_enabled(int id) const override;
    void enable_window(bool enabled) override;
    void show() override;
    void destroy() override;
    int message_box(const std::string& text, const std::string& caption, std::uint32_t flags) override;
    void combo_add(int id, const std::string& text) override;
    void combo_select(int id, int index) override;
    void list_add_column(int id, const std::string& title, int width, align alignment) override;
    void list_clear(int id) override;
    std::size_t list_add_row(int id, const std::string& text, std::intptr_t data, std::size_t group) override;
    void list_delete_row(int id, std::size_t row) override;
    std::size_t list_row_count(int id) const override;
    void list_set_cell(int id, std::size_t row, int column, const std::string& text) override;
    std::string list_get_cell(int id, std::size_t row, int column) const override;
    std::intptr_t list_row_data(int id, std::size_t row) const override;
    void list_enable_groups(int id, bool enabled) override;
    void list_add_group(int id, std::size_t group, const std::string& header) override;
    void list_select(int id, std::optional<std::size_t> row) override;
    std::optional<std::size_t> list_selection(int id) const override;
    std::optional<std::size_t> list_focus(int id) const override;
    void list_set_extended_style(int id, std::uint32_t style) override;
    void list_fit_column(int id, int column) override;
    void list_start_edit(int id, std::size_t row, int column) override;
    void list_finish_edit() override { settle_editor(); }

private:
    struct edit_position {
        int list;
        std::size_t row;
        int column;
    };

    static INT_PTR CALLBACK dialog_proc(HWND window, UINT message, WPARAM wp, LPARAM lp);
    // Returns whether the message was handled; `result` is the dialog's answer to it.
    bool handle(UINT message, WPARAM wp, LPARAM lp, LRESULT& result);
    void initialise();
    void remember_layout();
    void apply_layout();
    void limit_size(MINMAXINFO& info) const;
    bool on_notify(const NMHDR& header);
    HWND item(int id) const;
    // Reports the open editor's end now (ending it as accepted if it still runs).
    void settle_editor();
    void editor_ended(int end_code);

    void release_owner();

    dialog_events& events_;
    const dialog_traits& traits_;
    HWND window_ = nullptr;
    int quiet_ = 0;  // >0 while the view itself changes controls: no events for that
    bool com_initialised_ = false;
    SIZE original_client_{};
    std::map<int, RECT> original_places_;  // control id -> client rectangle at creation
    std::unique_ptr<in_place_editor> editor_;
    edit_position editing_{};
    HFONT caption_font_ = nullptr;  // made for the traits' captions; deleted with the view
    HWND disabled_owner_ = nullptr;  // the owner this view disabled, to enable again
};
