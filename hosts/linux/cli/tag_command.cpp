// `tessellon tag`: the whole tagging road as a user takes it. The lookup runs, the tagger dialog
// opens (headless), the chosen match is selected and corrected by setting its controls, and
// "&Update files" writes the tags through the host's tag update, after its preview.

#include <cstdio>
#include <optional>
#include <unistd.h>

#include <tunehall/core.h>
#include <tunehall/window_service.h>

#include "audio/audio_file.h"
#include "cli/arguments.h"
#include "cli/commands.h"
#include "cli/dialog_input.h"
#include "cli/input_checks.h"
#include "cli/interrupt.h"
#include "cli/json_writer.h"
#include "cli/lookup_result.h"
#include "cli/session.h"
#include "cli/track_input.h"
#include "tagger/editing_model.h"
#include "tagger/tagger_controls.h"
#include "cli/write_preview.h"
#include "ui/headless/headless_view.h"

namespace tessellon_cli {

namespace {

// The tagger dialog's controls, under the names this command gives them.
constexpr int matches_list = tagger_controls::matches, artist_edit = tagger_controls::artist,
              album_edit = tagger_controls::album, year_edit = tagger_controls::year, genre_edit = tagger_controls::genre,
              various_check = tagger_controls::various_artists, track_list_id = tagger_controls::tracks,
              wipe_check = tagger_controls::wipe_tags, update_button = tagger_controls::update_button,
              close_button = tagger_controls::close_button;
using tagger_controls::comment_column, tagger_controls::title_column;

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
    interrupt_scope ctrl_c;
    for (;;) {
        std::fprintf(stderr, "Match to write [1-%zu, Enter for 1]: ", rows.size());
        std::fflush(stderr);
        const std::optional<std::string> line = read_answer();
        if (!line) {
            std::fputc('\n', stderr);
            throw user_cancelled{"no match chosen; nothing written"};
        }
        if (line->empty()) return 1;
        char* end = nullptr;
        unsigned long n = std::strtoul(line->c_str(), &end, 10);
        if (*end == '\0' && n >= 1 && n <= rows.size()) return n;
    }
}

void set_check(headless_view& v, int id, bool wanted) {
    if ((v.get_check(id) == 1) != wanted) v.click(id);
}

} // namespace

int run_tag(const global_options& globals, const arguments& args) {
    option_reader options(args, {"--json", "--wipe", "--keep", "--dry-run", "--yes", "--various", "--not-various"},
                          {"--lengths", "--match", "--artist", "--album", "--year", "--genre", "--title", "--comment"});
    if (options.flag("--wipe") && options.flag("--keep")) throw usage_error{"--wipe and --keep exclude each other"};
    if (options.flag("--various") && options.flag("--not-various")) throw usage_error{"--various and --not-various exclude each other"};
    // Checked before the lookup: its range is known only after it.
    std::optional<std::size_t> match;
    if (auto m = options.value("--match")) match = parse_number("--match", *m);
    session s(globals);
    hostkit::window_list& windows = s.host().windows();

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
    if (match) {
        if (*match > rows.size()) throw usage_error{"--match " + std::to_string(*match) + ": there are " + std::to_string(rows.size()) + " matches"};
        view->select_row(matches_list, rows[*match - 1]);
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
        edit_cell(*view, track_list_id, e.row, title_column, e.text, /*double_click=*/false);
    }
    for (auto& c : options.values("--comment")) {
        cell_edit e = parse_cell_edit("--comment", c, track_rows);
        edit_cell(*view, track_list_id, e.row, comment_column, e.text, /*double_click=*/false);
    }
    if (options.flag("--wipe")) set_check(*view, wipe_check, true);
    if (options.flag("--keep")) set_check(*view, wipe_check, false);

    // The dialog would refuse a match whose track count differs from the album's (on its console).
    if (auto row = view->list_selection(matches_list)) {
        const auto* record = reinterpret_cast<const disc_record*>(view->list_row_data(matches_list, *row));
        if (record && !fits_album(*record, tracks.size())) {
            std::fprintf(stderr, "tessellon: the match has %zu tracks and the album %zu files; nothing written\n",
                         record->get_track_count(), tracks.size());
            return exit_failure;
        }
    }

    write_choice choice{options.flag("--dry-run"), options.flag("--yes"), options.flag("--json"),
                        view->get_check(wipe_check) == 1 ? "wipe" : "keep"};
    s.tag_update().set_gate(make_write_gate(choice));
    s.tag_files().describe_run(command_text("tag", args), album_text(tracks));
    {
        interrupt_scope ctrl_c(&s.host().tasks());
        view->click(update_button);
        // The update runs in the background; the dialog closes when it succeeded and is enabled
        // again when it did not.
        s.host().queue().run_until([&] {
            return !windows.is_open(dialog) ||
                   (view->window_enabled() && s.host().tasks().running() == 0);
        });
    }
    const auto& result = s.tag_update().last_result();
    if (!result) return interrupt_scope::interrupted() ? exit_nothing : exit_failure;
    if (choice.json) {
        json_writer json;
        json.begin_object().key("mode").value(choice.mode).key("written").value(result->result == hostkit::update_result::outcome::written);
        json.key("tracks");
        write_plan_json(json, result->plan);
        json.end_object();
        std::printf("%s\n", json.text().c_str());
    }
    return report_update(result, choice, "");
}

} // namespace tessellon_cli
