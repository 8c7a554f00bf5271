#include "cli/preferences_actions.h"

#include <tunehall/core.h>
#include <tunehall/main_thread.h>
#include <tunehall/shared.h>

#include "cli/commands.h"
#include "config/preferences_controls.h"
#include "cli/record_output.h"
#include "config/settings.h"
#include "config/preferences_page.h"

namespace tessellon_cli {

namespace {
// The page's and the server editor's controls, under the names this file gives them.
using preferences_controls::add_button, preferences_controls::edit_button, preferences_controls::remove_button,
    preferences_controls::retrieve_button, server_editor_controls::ok_button;
constexpr int email_edit = preferences_controls::email_field, server_list = preferences_controls::server_list_view;
constexpr int editor_server = server_editor_controls::server_field, editor_port = server_editor_controls::port_field,
              editor_address = server_editor_controls::address_field,
              editor_description = server_editor_controls::description_field;

class no_callback : public preferences_page_callback {
public:
    void on_state_changed() override {}
};
} // namespace

preferences_actions::preferences_actions(session& s) : session_(s) {
    for (auto& page : all_services<preferences_page>())
        if (std::string(page->get_name()) == preferences_page_name) instance_ = page->instantiate(nullptr, make_service<no_callback>());
    if (!instance_) throw tunehall_io::exception_io(std::string("The component has no \"") + preferences_page_name + "\" page");
    page_ = headless_view::from_handle(instance_->get_wnd());
    if (!page_) throw tunehall_io::exception_io("The preferences page is not one the command line can work");
}

preferences_actions::~preferences_actions() = default;

std::size_t preferences_actions::row_count() const { return page_->list_row_count(server_list); }

void preferences_actions::select(std::size_t number) {
    if (number == 0 || number > row_count())
        throw usage_error{"no server " + std::to_string(number) + " (there are " + std::to_string(row_count()) + ")"};
    page_->select_row(server_list, number - 1);
}

void preferences_actions::press_with_editor(int button, const server_fields& fields) {
    // The editor is modal: it waits in the host's modal loop, where this answer arrives.
    bool answered = false;
    host_service<main_thread_queue>()->post([&] {
        headless_view* editor = headless_view::from_handle(ModalDialog_Current());
        if (!editor) return;
        if (fields.server) editor->type_text(editor_server, *fields.server);
        if (fields.port) editor->type_text(editor_port, *fields.port);
        if (fields.address) editor->type_text(editor_address, *fields.address);
        if (fields.description) editor->type_text(editor_description, *fields.description);
        editor->click(ok_button);
        answered = true;
    });
    page_->click(button);
    session_.host().queue().run_pending();  // the answer is dropped when no editor opened
    if (!answered) throw tunehall_io::exception_io("The server editor did not open");
}

void preferences_actions::add(const server_fields& fields) { press_with_editor(add_button, fields); }

void preferences_actions::edit(std::size_t number, const server_fields& fields) {
    select(number);
    press_with_editor(edit_button, fields);
}

void preferences_actions::remove(std::size_t number) {
    select(number);
    page_->click(remove_button);
}

std::optional<std::string> preferences_actions::retrieve(std::size_t number) {
    select(number);
    std::size_t before = session_.host().popups().popups().size();
    page_->click(retrieve_button);
    auto popups = session_.host().popups().popups();
    if (popups.size() > before) return popups.back().message;
    return std::nullopt;
}

void preferences_actions::reset_servers() {
    const std::string email = page_->get_text(email_edit);
    instance_->reset();
    page_->type_text(email_edit, email);
}

std::string preferences_actions::server_place(std::size_t number) const {
    const auto servers = load_server_list();
    return number >= 1 && number <= servers.size() ? tessellon_cli::server_place(servers[number - 1]) : "server " + std::to_string(number);
}

void preferences_actions::set_email(const std::string& address) { page_->type_text(email_edit, address); }

} // namespace tessellon_cli
