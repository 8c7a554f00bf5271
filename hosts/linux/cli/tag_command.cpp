// `tessellon tag`: the whole tagging road as a user takes it. The lookup runs, the tagger dialog
// opens (headless), the chosen match is selected and corrected by setting its controls, and
// "&Update files" writes the tags through the host's tag update.

#include <cstdio>
#include <iostream>
#include <unistd.h>

#include <tunehall/core.h>
#include <tunehall/window_service.h>

#include "audio/audio_file.h"
#include "cli/arguments.h"
#include "cli/commands.h"
#include "cli/dialog_input.h"
#include "cli/interrupt.h"
#include "cli/json_writer.h"
#include "cli/lookup_result.h"
#include "cli/session.h"
#include "cli/track_input.h"
#include "ui/headless/headless_view.h"

namespace tessellon_cli {

namespace {

// Control ids of the tagger dialog.
enum : int {
    matches_list = 1011, artist_edit = 1006, album_edit = 1007, year_edit = 1008, genre_edit = 1009,
    various_check = 1021, track_list_id = 1024, wipe_check = 1017, update_button = 1022, close_button = 2,
};

// For --dry-run: takes the update, shows what would be written, writes nothing, and reports
// the update as not done so the dialog stays open.
class dry_run_update : public tag_update {
public:
    void update_async(const track_list& tracks, service_ref<tag_update_filter> filter, HWND, std::uint32_t,
                      service_ref<completion_notification> done, std::uint32_t task_id) override {
        for (auto& t : tracks) {
            // On an empty record the filter leaves exactly the prepared fields, in their order.
            tag_record prepared;
            filter->apply(t, prepared);
            result.emplace_back(t->path(), prepared);
        }
        called = true;
        host_service<main_thread_queue>()->post([done, task_id] {
            if (done) done->on_completion(task_id, completion_notification::result_aborted);
        });
    }
    bool called = false;
    std::vector<std::pair<std::string, tag_record>> result;
};

// Rows of the matches list that carry a match, in the order the dialog lists them.
std::vector<std::size_t> match_rows(headless_view& v) {
    std::vector<std::size_t> rows;
    for (std::size_t r = 0; r < v.list_row_count(matches_list); ++r)
        if (v.list_row_data(matches_list, r) != 0) rows.push_back(r);
    return rows;
}

std::size_t ask_for_match(headless_view& v, const std::vector<std::size_t>& rows) {
    for (std::size_t i = 0; i < rows.size(); ++i) {
        std::string header = v.row_group_header(matches_list, rows[i]);
        std::fprintf(stderr, "%3zu  %s%s%s\n", i + 1, v.list_get_cell(matches_list, rows[i], 0).c_str(),
                     header.empty() ? "" : "   [", header.empty() ? "" : (header + "]").c_str());
    }
    for (;;) {
        std::fprintf(stderr, "Match to write [1-%zu, Enter for 1]: ", rows.size());
        std::string line;
        if (!std::getline(std::cin, line)) throw usage_error{"no match chosen"};
        if (line.empty()) return 1;
        char* end = nullptr;
        unsigned long n = std::strtoul(line.c_str(), &end, 10);
        if (*end == '\0' && n >= 1 && n <= rows.size()) return n;
    }
}

void set_check(headless_view& v, int id, bool wanted) {
    if ((v.get_check(id) == 1) != wanted) v.click(id);
}

} // namespace

int run_tag(const global_options& globals, const arguments& args) {
    option_reader options(args, {"--json", "--wipe", "--keep", "--dry-run", "--various", "--not-various"},
                          {"--lengths", "--match", "--artist", "--album", "--year", "--genre", "--title", "--comment"});
    if (options.flag("--wipe") && options.flag("--keep")) throw usage_error{"--wipe and --keep exclude each other"};
    if (options.flag("--various") && options.flag("--not-various")) throw usage_error{"--various and --not-various exclude each other"};
    const bool dry = options.flag("--dry-run");
    session s(globals, session::component_source::linked, /*write_tags=*/!dry);
    hostkit::window_list& windows = s.host().windows();
    auto dry_run = make_service<dry_run_update>();
    if (dry) s.host().services().add_instance(tag_update::class_guid, dry_run);

    track_list tracks = read_tracks(options);
    service_ref<lookup_state> unused;
    // The tagger dialog opens by itself when the lookup found something.
    lookup_outcome outcome = run_lookup(s, tracks, unused, /*catch_result=*/false);
    if (outcome == lookup_outcome::every_server_failed) return exit_failure;
    if (outcome != lookup_outcome::found) return exit_nothing;
    if (windows.open().empty()) throw tunehall_io::exception_io("The tagger dialog did not open");
    headless_view* view = headless_view::from_handle(windows.open().back().handle);
    if (!view) throw tunehall_io::exception_io("The tagger dialog is not one the command line can drive");
    HWND dialog = view->handle();
    // Whatever goes wrong from here on, the dialog is closed as the user would close it.
    struct close_on_exit {
        hostkit::window_list& windows;
        HWND dialog;
        ~close_on_exit() {
            if (windows.is_open(dialog))
                if (auto* v = headless_view::from_handle(dialog)) v->close();
        }
    } closer{windows, dialog};

    std::vector<std::size_t> rows = match_rows(*view);
    if (auto m = options.value("--match")) {
        char* end = nullptr;
        unsigned long n = std::strtoul(m->c_str(), &end, 10);
        if (*end != '\0' || n == 0 || n > rows.size())
            throw usage_error{"--match " + *m + ": there are " + std::to_string(rows.size()) + " matches"};
        view->select_row(matches_list, rows[n - 1]);
    } else if (isatty(STDIN_FILENO) && rows.size() > 1) {
        view->select_row(matches_list, rows[ask_for_match(*view, rows) - 1]);
    }

    if (auto v = options.value("--artist")) view->type_text(artist_edit, *v);
    if (auto v = options.value("--album")) view->type_text(album_edit, *v);
    if (auto v = options.value("--year")) view->type_text(year_edit, *v);
    if (auto v = options.value("--genre")) view->type_text(genre_edit, *v);
    if (options.flag("--various")) set_check(*view, various_check, true);
    if (options.flag("--not-various")) set_check(*view, various_check, false);
    const std::size_t track_rows = view->list_row_count(track_list_id);
    for (auto& t : options.values("--title")) {
        cell_edit e = parse_cell_edit("--title", t, track_rows);
        edit_cell(*view, track_list_id, e.row, 1, e.text, /*double_click=*/false);
    }
    for (auto& c : options.values("--comment")) {
        cell_edit e = parse_cell_edit("--comment", c, track_rows);
        edit_cell(*view, track_list_id, e.row, 2, e.text, /*double_click=*/false);
    }
    if (options.flag("--wipe")) set_check(*view, wipe_check, true);
    if (options.flag("--keep")) set_check(*view, wipe_check, false);

    std::size_t messages_before = view->messages().size();
    std::size_t console_before = s.host().console().lines().size();
    {
        interrupt_scope ctrl_c(s.host().tasks());
        view->click(update_button);
        // The update runs in the background; the dialog closes when it succeeded and is enabled
        // again when it did not.
        s.host().queue().run_until([&] {
            return !windows.is_open(dialog) ||
                   (view->window_enabled() && s.host().tasks().running() == 0);
        });
    }
    bool closed = !windows.is_open(dialog);
    if (!closed) {
        for (std::size_t i = messages_before; i < view->messages().size(); ++i)
            std::fprintf(stderr, "%s: %s\n", view->messages()[i].caption.c_str(), view->messages()[i].text.c_str());
        auto lines = s.host().console().lines();
        bool mismatch = std::find(lines.begin() + static_cast<long>(console_before), lines.end(), "Error: track count mismatch") != lines.end();
        view->click(close_button);
        if (dry && dry_run->called) {
            if (options.flag("--json")) {
                json_writer json;
                json.begin_object().key("tracks").begin_array();
                for (auto& [path, fields] : dry_run->result) {
                    json.begin_object().key("path").value(path).key("fields");
                    write_fields_json(json, fields);
                    json.end_object();
                }
                json.end_array().end_object();
                std::printf("%s\n", json.text().c_str());
            } else {
                for (auto& [path, fields] : dry_run->result) std::printf("%s\n%s", path.c_str(), fields_text(fields).c_str());
            }
            return exit_ok;
        }
        if (mismatch) std::fprintf(stderr, "tessellon: the match has a different number of tracks than the album\n");
        if (interrupt_scope::interrupted()) return exit_nothing;
        return exit_failure;
    }
    std::fprintf(stderr, "tessellon: tagged %zu files\n", tracks.size());
    return exit_ok;
}

} // namespace tessellon_cli
