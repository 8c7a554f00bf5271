#include "config/server_list_retrieval.h"

#include <exception>
#include <string>

#include <tunehall/core.h>
#include <tunehall/popup.h>
#include <tunehall/threaded_process.h>

#include "cddb/protocol_handler.h"
#include "config/preferences_page.h"
#include "config/server_list_retrieval_filter.h"

namespace {

constexpr const char* progress_title = "Retrieving Server List";
constexpr const char* list_unaltered = "\n\nThe current server list will be left unaltered.";

// The work the progress dialog runs. Its fields are written on the worker and read on the main
// thread only after the modal run has returned.
class server_list_retrieval_task : public threaded_process_task {
public:
    explicit server_list_retrieval_task(service_ref<protocol_handler> connection) : connection_(std::move(connection)) {}

    void run(threaded_process_status&, abort_source& abort) override {
        succeeded_ = false;
        try {
            connection_->sites([this](server_record&& site) { keep_if_reachable(std::move(site)); }, abort);
            succeeded_ = true;
        } catch (const tunehall_io::exception_aborted&) {
            aborted_ = true;
        } catch (const std::exception& e) {
            error_ = e.what();
        }
    }

    bool succeeded() const { return succeeded_; }
    bool aborted() const { return aborted_; }
    const std::string& error() const { return error_; }
    server_list& result() { return result_; }

private:
    void keep_if_reachable(server_record&& site) {
        if (filter_.supports(site.get_protocol())) result_.push_back(std::move(site));
    }

    service_ref<protocol_handler> connection_;
    bool succeeded_ = false;
    bool aborted_ = false;
    std::string error_;
    server_list result_;
    supported_protocol_filter filter_;
};

void show_message(HWND parent, const std::string& text) {
    host_service<popup_message_v3>()->messageBoxAsync(parent, text.c_str(), preferences_page_name,
                                                     popup_message_v3::mb_ok, {});
}

void show_error(HWND parent, const server_record& source, const std::string& error) {
    show_message(parent, std::string("An error occurred while trying to retrieve a server list from ") +
                             source.get_server() + ".\n\n" + error + list_unaltered);
}

} // namespace

std::optional<server_list> retrieve_server_list(const server_record& source, HWND progress_parent, HWND message_parent) {
    service_ref<protocol_handler> connection;
    try {
        connection = open_protocol_handler(source);
    } catch (const std::exception& e) {
        // No handler for the protocol, or one that cannot set the connection up: nothing to run.
        show_error(message_parent, source, e.what());
        return std::nullopt;
    }

    auto task = make_service<server_list_retrieval_task>(std::move(connection));
    if (!host_service<threaded_process>()->run_modal(task, threaded_process::flag_show_abort, progress_parent,
                                                     progress_title, threaded_process::title_nul_terminated))
        return std::nullopt;

    if (task->succeeded()) {
        if (!task->result().empty()) return std::move(task->result());
        show_message(message_parent, std::string("The server list retrieved from ") + source.get_server() +
                                         " contains no servers that are accessible by one of the supported protocols." +
                                         list_unaltered);
    } else if (!task->aborted() && !task->error().empty()) {
        show_error(message_parent, source, task->error());
    }
    return std::nullopt;
}
