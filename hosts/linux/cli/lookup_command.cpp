// `tessellon lookup`: runs the component's "discora" tagging source on the album, as the player's
// tagging tools would, and prints what every server found, grouped by server as the tagger dialog
// lists it.

#include <cstdio>

#include "cddb/lookup_task.h"
#include "cli/arguments.h"
#include "cli/commands.h"
#include "cli/interrupt.h"
#include "cli/lookup_result.h"
#include "cli/record_output.h"
#include "cli/session.h"
#include "cli/track_input.h"
#include "config/settings.h"
#include "tagger/editing_model.h"

namespace tessellon_cli {

namespace {

// Keeps what the lookup hands to the tagger dialog.
class result_catcher : public tagger_dialog_factory {
public:
    explicit result_catcher(service_ref<lookup_state>& out) : out_(out) {}
    void open(HWND, service_ref<lookup_state> state) override { out_ = state; }

private:
    service_ref<lookup_state>& out_;
};

// Whether the list is just the built-in server, a placeholder that names no real server.
bool only_placeholder_server(const server_list& servers) {
    server_record placeholder;
    default_server_record(placeholder);
    return servers.size() == 1 && servers[0] == placeholder;
}

// Names each server that failed on stderr; true when every server failed.
bool report_failed_servers(const session& s) {
    const server_list servers = load_server_list();
    std::size_t failed = 0;
    for (auto& server : servers) {
        const std::string origin = std::string(server.get_server()) + ":" + server.get_port();
        const std::vector<std::string> reasons = s.http_failures().of(origin);
        for (auto& reason : reasons)
            std::fprintf(stderr, "tessellon: %s (%s) failed: %s\n", origin.c_str(), server.get_description(), reason.c_str());
        if (!reasons.empty()) ++failed;
    }
    return !servers.empty() && failed == servers.size();
}

} // namespace

service_ref<tagging_source> component_tagging_source(const char* name) {
    for (auto& s : all_services<tagging_source>())
        if (std::string(s->name()) == name) return s;
    throw tunehall_io::exception_io(std::string("The component offers no ") + name + " tagging source");
}

lookup_outcome run_lookup(session& s, const track_list& tracks, service_ref<lookup_state>& result, bool catch_result) {
    if (catch_result) s.host().services().add_instance(tagger_dialog_factory::class_guid, make_service<result_catcher>(result));
    auto done = make_service<outcome_catcher>();
    {
        interrupt_scope ctrl_c(&s.host().tasks());
        // The lookup runs modally: it has ended, and said how, when this returns.
        component_tagging_source("discora")->lookup(tracks, nullptr, done);
    }
    if (interrupt_scope::interrupted() || done->outcome == tagging_outcome::aborted) return lookup_outcome::aborted;
    const bool every_server_failed = report_failed_servers(s);
    if (done->outcome == tagging_outcome::done) return lookup_outcome::found;
    if (only_placeholder_server(load_server_list()))
        std::fputs("tessellon: no discora server is set up yet; add one with: tessellon servers add HOST PORT ADDRESS DESCRIPTION\n", stderr);
    return every_server_failed ? lookup_outcome::every_server_failed : lookup_outcome::nothing_found;
}

int run_lookup_command(const global_options& globals, const arguments& args) {
    option_reader options(args, {"--json"}, {"--lengths", "--toc", "--data-track"});
    session s(globals);
    track_list tracks = read_tracks(options);
    service_ref<lookup_state> result;
    lookup_outcome outcome = run_lookup(s, tracks, result);
    if (outcome == lookup_outcome::aborted) return exit_nothing;

    if (options.flag("--json")) {
        json_writer json;
        json.begin_object().key("tracks").begin_array();
        for (auto& t : tracks) json.value(t->path());
        json.end_array().key("servers").begin_array();
        int number = 0;
        if (result) {
            for (auto& server : result->results) {
                json.begin_object().key("description").value(server.label).key("matches").begin_array();
                for (auto& r : server.records) {
                    json.begin_object().key("number").value(static_cast<std::int64_t>(++number));
                    json.key("label").value(match_label(r)).key("record");
                    write_record_json(json, r);
                    json.end_object();
                }
                json.end_array().end_object();
            }
        } else {
            for (auto& server : load_server_list()) {
                json.begin_object().key("description").value(server.get_description());
                json.key("matches").begin_array().end_array().end_object();
            }
        }
        json.end_array().end_object();
        std::printf("%s\n", json.text().c_str());
    } else if (result) {
        int number = 0;
        for (auto& server : result->results) {
            std::printf("%s\n", server.label.c_str());
            if (server.records.empty()) std::printf("     No matches found\n");
            for (auto& r : server.records) std::printf("  %2d %s\n", ++number, match_label(r).c_str());
        }
    }
    if (outcome == lookup_outcome::every_server_failed) return exit_failure;
    return outcome == lookup_outcome::found ? exit_ok : exit_nothing;
}

} // namespace tessellon_cli
