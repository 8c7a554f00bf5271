// `tessellon musicbrainz`: the MusicBrainz tagging source as the player offers it. Without
// --write the lookup opens the "MusicBrainz Lookup" dialog (headless), the edits are typed into
// its list cells and "Save" writes the tags; with --write the lookup writes at once. Either way the
// host's tag update shows what will change first and asks on a terminal.

#include <cstdio>
#include <optional>

#include <tunehall/answer_cache_policy.h>
#include <tunehall/core.h>
#include <tunehall/tagging_source.h>

#include "cli/arguments.h"
#include "cli/commands.h"
#include "cli/dialog_input.h"
#include "cli/interrupt.h"
#include "cli/json_writer.h"
#include "cli/lookup_result.h"
#include "cli/session.h"
#include "cli/track_input.h"
#include "musicbrainz/cache.h"
#include "cli/write_preview.h"
#include "musicbrainz/disc_id.h"
#include "musicbrainz/lookup.h"
#include "musicbrainz/release_dialog.h"
#include "musicbrainz/release_dialog_controls.h"
#include "musicbrainz/release_text.h"

namespace tessellon_cli {

namespace {

// The MusicBrainz dialog's controls, the rows of its album list and its columns.
using namespace release_dialog_controls;
constexpr int track_rows = release_dialog_controls::tracks;  // `tracks` here are the album's files
constexpr const char* dialog_title = "MusicBrainz Lookup";

// --refresh: the component asks the service even for a disc whose answer it has kept.
// --dry-run: it keeps no new answer, so that the run changes nothing in the profile.
class cache_flags : public answer_cache_policy {
public:
    cache_flags(bool refresh, bool keep) : refresh_(refresh), keep_(keep) {}
    bool refresh_cached_answers() override { return refresh_; }
    bool keep_new_answers() override { return keep_; }

private:
    bool refresh_;
    bool keep_;
};

std::string release_text(const std::string& disc_id, const musicbrainz_release& r) {
    std::string out = "MusicBrainz disc id: " + disc_id + "\nTitle:  " + r.title + "\nArtist: " +
                      join_artists(r.album_artist) + "\nDate:   " + r.date + "\nDisc:   " + disc_text(r) + "\n";
    if (r.matched_by_toc) out += "Match:  by table of contents (the disc id is unknown to the service)\n";
    for (std::size_t i = 0; i < r.tracks.size(); ++i) {
        out += "  " + std::to_string(i + 1) + "  " + r.tracks[i].title;
        if (!r.tracks[i].artist.empty()) out += "  (" + join_artists(r.tracks[i].artist) + ")";
        out += "\n";
    }
    return out;
}

void release_json(json_writer& json, const musicbrainz_release& r) {
    json.begin_object();
    json.key("title").value(r.title).key("album_artist").strings(r.album_artist).key("date").value(r.date);
    json.key("disc_number").value(static_cast<std::int64_t>(r.disc_number));
    json.key("total_discs").value(static_cast<std::int64_t>(r.total_discs));
    json.key("tracks").begin_array();
    for (auto& t : r.tracks) json.begin_object().key("title").value(t.title).key("artist").strings(t.artist).end_object();
    json.end_array().end_object();
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

// The release as written, from the tags the update gave the files: what the write-at-once
// entry, which shows no dialog, wrote.
std::optional<musicbrainz_release> release_written(const hostkit::update_plan& plan) {
    if (plan.files.empty()) return std::nullopt;
    auto text = [](const tag_record& t, const char* name) {
        const std::size_t f = t.find_field(name);
        return f == tag_record::npos || t.value_count(f) == 0 ? std::string() : t.value(f, 0);
    };
    auto texts = [](const tag_record& t, const char* name) {
        std::vector<std::string> out;
        const std::size_t f = t.find_field(name);
        for (std::size_t v = 0; f != tag_record::npos && v < t.value_count(f); ++v) out.push_back(t.value(f, v));
        return out;
    };
    const tag_record& first = plan.files.front().after;
    musicbrainz_release r;
    r.title = text(first, "album");
    r.album_artist = texts(first, "album artist");
    r.date = text(first, "date");
    r.disc_number = static_cast<unsigned>(std::strtoul(text(first, "discnumber").c_str(), nullptr, 10));
    r.total_discs = static_cast<unsigned>(std::strtoul(text(first, "totaldiscs").c_str(), nullptr, 10));
    for (const auto& f : plan.files) {
        musicbrainz_track t;
        t.title = text(f.after, "title");
        t.artist = texts(f.after, "artist");
        r.tracks.push_back(std::move(t));
    }
    return r;
}

} // namespace

int run_musicbrainz(const global_options& globals, const arguments& args) {
    option_reader options(args, {"--json", "--write", "--refresh", "--dry-run", "--yes"},
                          {"--lengths", "--toc", "--data-track", "--title", "--artist", "--date", "--disc", "--track-title", "--track-artist"});
    const bool write_at_once = options.flag("--write");
    if (write_at_once && has_edits(options))
        throw usage_error{"--write takes the release as found; leave it out to correct the release first"};
    session s(globals);
    if (options.flag("--refresh") || options.flag("--dry-run"))
        s.host().services().add_instance(answer_cache_policy::class_guid,
                                         make_service<cache_flags>(options.flag("--refresh"), !options.flag("--dry-run")));
    // An enhanced disc's id covers its audio tracks only; they are the ones tagged.
    const track_list tracks = read_album(options).musicbrainz;
    if (tracks.size() > 99)
        throw usage_error{"a MusicBrainz disc id covers 1 to 99 tracks; " + std::to_string(tracks.size()) + " were given"};
    const std::string disc_id = compute_musicbrainz_disc_id(tracks);
    hostkit::window_list& windows = s.host().windows();
    const std::size_t windows_before = windows.open().size();
    auto done = make_service<outcome_catcher>();
    std::optional<musicbrainz_release> shown;
    const write_choice choice{options.flag("--dry-run"), options.flag("--yes"), options.flag("--json"), ""};
    s.tag_update().set_gate(make_write_gate(choice));
    s.tag_files().describe_run(command_text("musicbrainz", args), album_text(tracks));

    {
        interrupt_scope ctrl_c(&s.host().tasks());
        auto source = component_tagging_source("MusicBrainz");
        auto idle = [&] { return s.host().tasks().running() == 0; };
        if (write_at_once) {
            source->lookup_write(tracks, windows.main_window(), done);
            s.host().queue().run_until([&] { return done->outcome.has_value() && idle(); });
        } else {
            source->lookup(tracks, windows.main_window(), done);
            s.host().queue().run_until([&] { return done->outcome.has_value() || windows.open().size() > windows_before; });
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
                view->click(save_button);
                s.host().queue().run_until([&] { return done->outcome.has_value() && idle(); });
            }
        }
    }

    const auto& result = s.tag_update().last_result();
    if (!result && interrupt_scope::interrupted()) return exit_nothing;
    if (!result) {
        // No update ran: the component told the user why (on stderr); "nothing found" is not a
        // failure of the program.
        return done->outcome == tagging_outcome::nothing_found ? exit_nothing : exit_failure;
    }
    if (!shown) {
        // The write-at-once entry shows nothing: the release is the one its tags carry, and the
        // cache tells whether the service knew the disc id or only its table of contents.
        shown = release_written(result->plan);
        musicbrainz_cache cache;
        std::string entry;
        if (shown) shown->matched_by_toc = !cache.get("disc-" + disc_id, entry) && cache.get("toc-" + disc_id, entry);
    }
    if (choice.json) {
        json_writer json;
        json.begin_object().key("disc_id").value(disc_id);
        if (shown && shown->matched_by_toc) json.key("matched_by").value("toc");
        if (shown) release_json(json.key("release"), *shown);
        json.key("written").value(result->result == hostkit::update_result::outcome::written).key("tracks");
        write_plan_json(json, result->plan);
        std::printf("%s\n", json.end_object().text().c_str());
    } else if (shown && !choice.dry_run) {
        std::fputs(release_text(disc_id, *shown).c_str(), stdout);
    }
    return report_update(result, choice, " from MusicBrainz");
}

} // namespace tessellon_cli
