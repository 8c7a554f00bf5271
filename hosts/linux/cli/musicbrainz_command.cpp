// `tessellon musicbrainz`: the MusicBrainz tagging source as the player offers it. Without
// --write the lookup opens the "MusicBrainz Lookup" dialog (headless), the edits are typed into
// its list cells and "Save" writes the tags; with --write the lookup writes at once.

#include <cstdio>
#include <iostream>
#include <optional>
#include <unistd.h>

#include <tunehall/core.h>
#include <tunehall/tagging_source.h>

#include "cli/arguments.h"
#include "cli/commands.h"
#include "cli/dialog_input.h"
#include "cli/interrupt.h"
#include "cli/json_writer.h"
#include "cli/session.h"
#include "cli/track_input.h"
#include "musicbrainz/disc_id.h"
#include "musicbrainz/lookup.h"
#include "musicbrainz/release_dialog.h"
#include "musicbrainz/release_text.h"

namespace tessellon_cli {

namespace {

// Control ids of the MusicBrainz dialog and the rows of its album list.
enum : int { album_list = 1032, track_rows = 1024, save_button = 1, cancel_button = 2 };
enum : std::size_t { title_row = 0, artist_row = 1, date_row = 2, disc_row = 3 };
constexpr int value_column = 1, title_column = 1, artist_column = 2;
constexpr const char* dialog_title = "MusicBrainz Lookup";

class done_flag : public tagging_done {
public:
    void on_done(bool success) override { result = success; }
    std::optional<bool> result;
};

service_ref<tagging_source> musicbrainz_source() {
    for (auto& s : all_services<tagging_source>())
        if (std::string(s->name()) == "MusicBrainz") return s;
    throw tunehall_io::exception_io("The component offers no MusicBrainz tagging source");
}

std::string release_text(const std::string& disc_id, const musicbrainz_release& r) {
    std::string out = "MusicBrainz disc id: " + disc_id + "\nTitle:  " + r.title + "\nArtist: " +
                      join_artists(r.album_artist) + "\nDate:   " + r.date + "\nDisc:   " + disc_text(r) + "\n";
    for (std::size_t i = 0; i < r.tracks.size(); ++i) {
        out += "  " + std::to_string(i + 1) + "  " + r.tracks[i].title;
        if (!r.tracks[i].artist.empty()) out += "  (" + join_artists(r.tracks[i].artist) + ")";
        out += "\n";
    }
    return out;
}

std::string release_json(const std::string& disc_id, const musicbrainz_release& r) {
    json_writer json;
    json.begin_object().key("disc_id").value(disc_id).key("release").begin_object();
    json.key("title").value(r.title).key("album_artist").strings(r.album_artist).key("date").value(r.date);
    json.key("disc_number").value(static_cast<std::int64_t>(r.disc_number));
    json.key("total_discs").value(static_cast<std::int64_t>(r.total_discs));
    json.key("tracks").begin_array();
    for (auto& t : r.tracks) json.begin_object().key("title").value(t.title).key("artist").strings(t.artist).end_object();
    json.end_array().end_object().end_object();
    return json.text() + "\n";
}

bool has_edits(const option_reader& options) {
    for (const char* name : {"--title", "--artist", "--date", "--disc"})
        if (options.value(name)) return true;
    return !options.values("--track-title").empty() || !options.values("--track-artist").empty();
}

// Types the edits into the dialog's cells.
void apply_edits(headless_view& view, const option_reader& options) {
    const std::pair<const char*, std::size_t> album_edits[] = {
        {"--title", title_row}, {"--artist", artist_row}, {"--date", date_row}, {"--disc", disc_row}};
    for (auto& [name, row] : album_edits)
        if (auto v = options.value(name)) edit_cell(view, album_list, row, value_column, *v, /*double_click=*/true);
    const std::size_t rows = view.list_row_count(track_rows);
    for (auto& v : options.values("--track-title")) {
        cell_edit e = parse_cell_edit("--track-title", v, rows);
        edit_cell(view, track_rows, e.row, title_column, e.text, true);
    }
    for (auto& v : options.values("--track-artist")) {
        cell_edit e = parse_cell_edit("--track-artist", v, rows);
        edit_cell(view, track_rows, e.row, artist_column, e.text, true);
    }
}

bool user_confirms() {
    std::fprintf(stderr, "Write these tags? [Y/n] ");
    std::string line;
    if (!std::getline(std::cin, line)) return false;
    return line.empty() || line == "y" || line == "Y" || line == "yes";
}

} // namespace

int run_musicbrainz(const global_options& globals, const arguments& args) {
    option_reader options(args, {"--json", "--write"},
                          {"--lengths", "--title", "--artist", "--date", "--disc", "--track-title", "--track-artist"});
    const bool write_at_once = options.flag("--write");
    if (write_at_once && has_edits(options))
        throw usage_error{"--write takes the release as found; leave it out to correct the release first"};
    session s(globals);
    track_list tracks = read_tracks(options);
    if (tracks.size() > 99)
        throw usage_error{"a MusicBrainz disc id covers 1 to 99 tracks; " + std::to_string(tracks.size()) + " were given"};
    const std::string disc_id = compute_musicbrainz_disc_id(tracks);
    hostkit::window_list& windows = s.host().windows();
    const std::size_t popups_before = s.host().popups().popups().size();
    const std::size_t windows_before = windows.open().size();
    auto done = make_service<done_flag>();
    std::optional<musicbrainz_release> shown;

    {
        interrupt_scope ctrl_c(&s.host().tasks());
        auto source = musicbrainz_source();
        auto idle = [&] { return s.host().tasks().running() == 0; };
        if (write_at_once) {
            source->lookup_write(tracks, windows.main_window(), done);
            s.host().queue().run_until([&] { return done->result.has_value() && idle(); });
        } else {
            source->lookup(tracks, windows.main_window(), done);
            s.host().queue().run_until([&] { return done->result.has_value() || windows.open().size() > windows_before; });
            if (windows.open().size() > windows_before) {
                headless_view* view = headless_view::from_handle(windows.open().back().handle);
                if (!view || view->title() != dialog_title)
                    throw tunehall_io::exception_io("The MusicBrainz dialog is not one the command line can drive");
                // Whatever goes wrong from here on, the dialog is cancelled as the user would.
                const HWND dialog = view->handle();
                struct cancel_on_exit {
                    hostkit::window_list& windows;
                    HWND dialog;
                    ~cancel_on_exit() {
                        if (windows.is_open(dialog))
                            if (auto* v = headless_view::from_handle(dialog)) v->click(cancel_button);
                    }
                } canceller{windows, dialog};

                apply_edits(*view, options);
                try {
                    shown = release_from_lists(*view, musicbrainz_release{});
                } catch (const std::exception& e) {
                    throw usage_error{std::string("--disc: ") + e.what() + " (expected N/M)"};
                }
                if (isatty(STDIN_FILENO)) {
                    std::fputs(release_text(disc_id, *shown).c_str(), stderr);
                    if (!user_confirms()) {
                        view->click(cancel_button);
                        return exit_nothing;
                    }
                }
                view->click(save_button);
                s.host().queue().run_until([&] { return done->result.has_value() && idle(); });
            }
        }
        if (interrupt_scope::interrupted()) return exit_nothing;
    }

    if (!done->result.value_or(false)) {
        // The component told the user through a popup (on stderr); "nothing found" is not a
        // failure of the program.
        auto popups = s.host().popups().popups();
        // A disc the service does not know is answered with 404 (not found).
        const std::string said = popups.size() > popups_before ? popups.back().message : "";
        const bool no_match = said.ends_with("No matching entry") || said.find("failed: 404") != std::string::npos;
        return no_match ? exit_nothing : exit_failure;
    }
    if (!shown) {
        // The write-at-once entry shows nothing; its release is in the cache the lookup just
        // filled or read, so reading it again asks no server.
        abort_source_dummy no_abort;
        shown = *musicbrainz_lookup(tracks, no_abort);
    }
    if (options.flag("--json"))
        std::fputs(release_json(disc_id, *shown).c_str(), stdout);
    else
        std::fputs(release_text(disc_id, *shown).c_str(), stdout);
    std::fprintf(stderr, "tessellon: tagged %zu files from MusicBrainz\n", tracks.size());
    return exit_ok;
}

} // namespace tessellon_cli
