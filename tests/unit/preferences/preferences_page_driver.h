#pragma once
// Driving the preferences page as the host and the user do: the page found by its GUID among the
// component's services, and the server editor answered once it waits for input.

#include <cstdint>
#include <functional>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <tunehall/config_store.h>
#include <tunehall/core.h>
#include <tunehall/main_thread.h>
#include <tunehall/preferences_page.h>
#include <tunehall/shared.h>

#include "config/preferences_page_guid.h"
#include "config/settings.h"
#include "resources/resource.h"
#include "ui/headless/headless_view.h"
#include "unit/config/server_record_maker.h"

// Failure messages show a record's fields rather than its bytes.
inline void PrintTo(const server_record& r, std::ostream* os) {
    *os << '{' << r.get_server() << ' ' << r.get_protocol() << ' ' << r.get_port() << ' ' << r.get_address() << " \""
        << r.get_description() << "\"}";
}

namespace preferences_testing {

enum page_control : int {
    email = IDC_PREFS_EMAIL, servers = IDC_PREFS_SERVERS, add_button = IDC_PREFS_ADD, edit_button = IDC_PREFS_EDIT,
    remove_button = IDC_PREFS_REMOVE, retrieve_button = IDC_PREFS_RETRIEVE,
};
enum editor_control : int {
    ok = 1, cancel = 2,  // IDOK, IDCANCEL
    protocol_field = IDC_EDITOR_PROTOCOL, server_field = IDC_EDITOR_SERVER, port_field = IDC_EDITOR_PORT,
    address_field = IDC_EDITOR_ADDRESS, description_field = IDC_EDITOR_DESCRIPTION,
};
constexpr std::uint32_t unchanged_state = 0x10008, changed_state = 0x10009;

inline constexpr auto& make_server = make_server_record;

inline server_record builtin_server() {
    server_record r;
    default_server_record(r);
    return r;
}

inline std::optional<std::string> stored_server_blob() {
    service_ref<memory_block> blob = host_service<host_config_store>()->get_blob("discora.servers");
    if (!blob) return std::nullopt;
    return std::string(static_cast<const char*>(blob->data()), blob->size());
}

inline service_ref<preferences_page> find_page() {
    for (auto& page : all_services<preferences_page>())
        if (tunehall::guid_equal(page->get_guid(), preferences_page_guid)) return page;
    throw std::logic_error("the component registers no page under its GUID");
}

// How often the page told the host its state changed.
class state_counter : public preferences_page_callback {
public:
    void on_state_changed() override { ++calls; }
    int calls = 0;
};

class open_page {
public:
    explicit open_page(HWND parent = nullptr)
        : callback_(make_service<state_counter>()), instance_(find_page()->instantiate(parent, callback_)) {
        if (!instance_) throw std::logic_error("the page created no instance");
        view_ = headless_view::from_handle(instance_->get_wnd());
        if (!view_) throw std::logic_error("the page has no live window");
    }

    headless_view& view() { return *view_; }
    preferences_page_instance& instance() { return *instance_; }
    std::uint32_t state() { return instance_->get_state(); }
    int state_changes() const { return callback_->calls; }
    // The host closes its preferences window without applying.
    void close() { instance_.reset(); }

    // Server and description of each row.
    std::vector<std::pair<std::string, std::string>> rows() const {
        std::vector<std::pair<std::string, std::string>> out;
        for (std::size_t r = 0, n = view_->list_row_count(servers); r < n; ++r)
            out.emplace_back(view_->list_get_cell(servers, r, 0), view_->list_get_cell(servers, r, 1));
        return out;
    }

private:
    service_ref<state_counter> callback_;
    service_ref<preferences_page_instance> instance_;
    headless_view* view_ = nullptr;
};

inline headless_view* open_editor() { return headless_view::from_handle(ModalDialog_Current()); }

// `act` runs on the next server editor once its modal loop serves the main-thread queue; it must
// end the editor.
inline void when_editor_opens(std::function<void(headless_view&)> act) {
    host_service<main_thread_queue>()->post([act = std::move(act)] {
        if (headless_view* editor = open_editor())
            act(*editor);
        else
            ADD_FAILURE() << "no server editor was open";
    });
}

// An editor that opens anyway is cancelled (so the test cannot hang) and noted in `opened`.
inline void expect_no_editor(bool& opened) {
    host_service<main_thread_queue>()->post([&opened] {
        if (headless_view* editor = open_editor()) {
            opened = true;
            editor->click(cancel);
        }
    });
}

inline void run_queued() {
    host_service<main_thread_queue>()->run_until([] { return true; });
}

} // namespace preferences_testing
