#include "config/server_editor.h"

#include <climits>
#include <memory>
#include <string>
#include <string_view>

#include <tunehall/core.h>
#include <tunehall/main_thread.h>
#include <tunehall/shared.h>

#include "config/preferences_controls.h"
#include "config/preferences_page.h"
#include "ui/view_factory.h"

namespace {

using namespace server_editor_controls;

// A port field read the way the system reads a signed integer from a dialog field: leading
// spaces, an optional '-', then decimal digits to the end. Anything else, an empty field or a
// value outside the int range reads as 0, so the record then holds the port "0".
int read_dialog_integer(std::string_view text) {
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    bool negative = !text.empty() && text.front() == '-';
    if (negative) text.remove_prefix(1);
    if (text.empty()) return 0;
    long long value = 0;
    for (char c : text) {
        if (c < '0' || c > '9') return 0;
        value = value * 10 + (c - '0');
        if (value > static_cast<long long>(INT_MAX) + 1) return 0;
    }
    if (negative) value = -value;
    if (value < INT_MIN || value > INT_MAX) return 0;
    return static_cast<int>(value);
}

// The modal loop: the caller waits here, with the host's main-thread work still served, until
// the editor has closed. This is the one place where a view that runs the window system's own
// modal loop differs.
void wait_until_closed(const bool& closed) {
    host_service<main_thread_queue>()->run_until([&closed] { return closed; });
}

class server_editor final : private dialog_events {
public:
    server_editor(server_record& record, server_editor_mode mode) : record_(record), mode_(mode) {}

    bool run(HWND parent) {
        view_ = create_dialog_view(dialog_template, parent, *this);
        initialise();
        view_->show();
        wait_until_closed(closed_);
        view_.reset();
        return accepted_;
    }

private:
    void initialise() {
        dialog_view& view = *view_;
        // Registered while the window exists, so that the page (or anyone) asking for a new modal
        // dialog gets this one brought forward instead.
        scope_.initialize(view.handle());
        view.set_title(std::string(mode_ == server_editor_mode::edit ? "Edit server [" : "Add server [") +
                       preferences_page_name + "]");
        // HTTP is the one protocol there is a handler for; the user cannot pick another.
        view.combo_add(protocol_list, "HTTP");
        view.combo_select(protocol_list, 0);
        view.enable(protocol_list, false);
        view.set_text(server_field, record_.get_server());
        view.set_text(port_field, record_.get_port());
        view.set_text(address_field, record_.get_address());
        view.set_text(description_field, record_.get_description());
    }

    void on_command(int id) override {
        if (closed_) return;
        if (id == ok_button) {
            store();
            close(true);
        } else if (id == cancel_button) {
            close(false);
        }
    }

    void store() {
        const dialog_view& view = *view_;
        record_.set_server(view.get_text(server_field).c_str());
        record_.set_port(std::to_string(read_dialog_integer(view.get_text(port_field))).c_str());
        record_.set_address(view.get_text(address_field).c_str());
        record_.set_description(view.get_text(description_field).c_str());
    }

    void close(bool accepted) {
        accepted_ = accepted;
        closed_ = true;
        scope_.deinitialize();
        view_->destroy();
    }

    server_record& record_;
    server_editor_mode mode_;
    std::unique_ptr<dialog_view> view_;
    modal_dialog_scope scope_;
    bool closed_ = false;
    bool accepted_ = false;
};

} // namespace

bool run_server_editor(HWND parent, server_record& record, server_editor_mode mode) {
    server_editor editor(record, mode);
    return editor.run(parent);
}
