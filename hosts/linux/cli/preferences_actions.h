#pragma once
// The component's preferences page, opened and worked as a user works it: the command line's
// `servers` edits and `config email` go through it, so the page's own rules apply.

#include <optional>
#include <string>

#include <tunehall/preferences_page.h>

#include "cli/session.h"
#include "ui/headless/headless_view.h"

namespace tessellon_cli {

// The fields the server editor is filled with; what is not given keeps what the editor shows.
struct server_fields {
    std::optional<std::string> server, port, address, description;
};

class preferences_actions {
public:
    explicit preferences_actions(session& s);
    ~preferences_actions();

    // Rows of the page's server list (1-based numbers as `servers list` shows them).
    std::size_t row_count() const;
    // "&Add...", the editor filled with `fields` and confirmed.
    void add(const server_fields& fields);
    // "&Edit..." on row `number`.
    void edit(std::size_t number, const server_fields& fields);
    // "&Remove" on row `number`.
    void remove(std::size_t number);
    // "Retrieve..." on row `number`; the page's message, if it showed one (an error or "no
    // servers"), is returned.
    std::optional<std::string> retrieve(std::size_t number);
    // Types into the e-mail field.
    void set_email(const std::string& address);
    // The page's Reset for the server list only: the e-mail typed before stays.
    void reset_servers();
    void apply() { instance_->apply(); }
    // "host:port" of row `number`.
    std::string server_place(std::size_t number) const;

private:
    void select(std::size_t number);
    // Presses `button`; the server editor it opens is answered with `fields`.
    void press_with_editor(int button, const server_fields& fields);

    session& session_;
    service_ref<preferences_page_instance> instance_;
    headless_view* page_ = nullptr;
};

} // namespace tessellon_cli
