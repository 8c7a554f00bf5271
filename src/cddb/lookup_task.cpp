#include "cddb/lookup_task.h"

#include <tunehall/console.h>
#include <tunehall/core.h>
#include <tunehall/popup.h>
#include <tunehall/window_service.h>

#include "config/settings.h"

lookup_task::lookup_task(service_ref<lookup_state> state, done_callback done)
    : state_(std::move(state)), servers_(load_server_list()), done_(std::move(done)) {
    for (const server_record& server : servers_) {
        service_ref<protocol_handler> connection;
        try {
            connection = open_protocol_handler(server);
        } catch (const std::exception&) {
            // An unsupported protocol just leaves this server out.
        }
        connections_.push_back(connection);
    }
}

void lookup_task::run(threaded_process_status& status, abort_source& abort) {
    const std::size_t n = servers_.size();
    for (std::size_t i = 0; i < n; ++i) {
        abort.check();
        status.set_progress(static_cast<std::uint32_t>(i * threaded_process_status::progress_max / n));
        state_->results.push_back({servers_[i].get_description(), {}});
        if (connections_[i]) {
            try {
                ask_server(i, n, status, abort);
            } catch (const std::exception&) {
                // A failing server is skipped; the transport already logged an i/o failure, and
                // an abort is raised again by the check before the next server.
            }
        }
        connections_[i].reset();
        matches_.clear();
    }
}

void lookup_task::ask_server(std::size_t i, std::size_t n, threaded_process_status& status, abort_source& abort) {
    connections_[i]->query(
        state_->tracks,
        [this](disc_record&& match, bool exact) {
            console_print((std::string(exact ? "found match: " : "found inexact match: ") +
                           match.get_field(disc_record::category) + " " + match.get_field(disc_record::discid) + " " +
                           match.get_field(disc_record::dtitle))
                              .c_str());
            matches_.push_back(std::move(match));
        },
        abort);
    const std::size_t m = matches_.size();
    for (std::size_t j = 0; j < m; ++j) {
        status.set_progress_float((static_cast<double>(i) + static_cast<double>(j + 1) / static_cast<double>(m + 1)) /
                                  static_cast<double>(n));
        connections_[i]->read(matches_[j].get_field(disc_record::category), matches_[j].get_field(disc_record::discid),
                              [&](disc_record&& entry) {
                                  // The copy keeps what the user edits, not the server's offsets.
                                  state_->results[i].records.push_back(disc_record(static_cast<const disc_record&>(entry)));
                              },
                              abort);
    }
}

std::string no_information_message(const track_list& tracks) {
    std::string text = "No information found on server for files:";
    for (const track_ref& t : tracks) {
        text += "\n";
        if (!t || t->path()[0] == '\0') {
            text += "[invalid location]";
            continue;
        }
        // Appended piece by piece: GCC 12 warns falsely (-Wrestrict) on "\"" + text + "\"".
        text += '"';
        text += t->path();
        text += '"';
        if (t->subsong() != 0) {
            text += " / index: ";
            text += std::to_string(t->subsong());
        }
    }
    return text;
}

void lookup_task::on_done(HWND parent, bool aborted) {
    bool found = !aborted && state_->record_count() > 0;
    if (aborted) {
        // The user cancelled: nothing to show.
    } else if (found) {
        auto factories = all_services<tagger_dialog_factory>();
        if (factories.empty()) tunehall_bug_check("No tagger dialog registered");
        auto windows = try_host_service<modeless_window_manager>();
        factories.front()->open(windows ? windows->main_window() : parent, state_);
    } else {
        const std::string text = no_information_message(state_->tracks);
        host_service<popup_message_v3>()->messageBoxAsync(parent, text.c_str(), "discora tagger", popup_message_v3::mb_ok, {});
    }
    if (done_) done_(aborted ? tagging_outcome::aborted : found ? tagging_outcome::done : tagging_outcome::nothing_found);
}

void start_lookup(const track_list& tracks, HWND parent, lookup_task::done_callback done) {
    auto state = make_service<lookup_state>(tracks);
    auto task = make_service<lookup_task>(state, std::move(done));
    host_service<threaded_process>()->run_modal(task, threaded_process::flag_show_abort | threaded_process::flag_show_progress,
                                                parent, lookup_progress_title, threaded_process::title_nul_terminated);
}
