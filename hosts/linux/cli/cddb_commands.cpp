// `tessellon discid` and `tessellon cddb query|read|sites`: the CDDB client's own operations,
// one at a time, for checking a disc or a server by hand.

#include <cstdio>
#include <optional>

#include "cddb/protocol_handler.h"
#include "cddb/toc.h"
#include "cli/arguments.h"
#include "cli/commands.h"
#include "cli/input_checks.h"
#include "cli/interrupt.h"
#include "cli/record_output.h"
#include "cli/session.h"
#include "cli/track_input.h"
#include "config/settings.h"
#include "musicbrainz/disc_id.h"

namespace tessellon_cli {

namespace {

// "http://HOST[:PORT][/PATH]" as a server record.
server_record server_from_url(const std::string& url) {
    const server_url parts = parse_server_url("--server", url);
    server_record r;
    r.set_server(parts.host.c_str());
    r.set_protocol("http");
    r.set_port(parts.port.empty() ? "80" : parts.port.c_str());
    r.set_address(parts.address.empty() ? "/~cddb/cddb.cgi" : parts.address.c_str());
    r.set_description(url.c_str());
    return r;
}

// Runs one exchange with `server`; a failure is told with the server's place in front of the
// component's own text. Ctrl-C aborts it.
template <typename exchange_fn>
void ask(const server_record& server, exchange_fn&& exchange) {
    interrupt_scope ctrl_c;
    try {
        exchange(*open_protocol_handler(server), interrupt_scope::abort());
    } catch (const tunehall_io::exception_aborted&) {
        throw user_cancelled{"aborted while asking " + server_place(server)};
    } catch (const std::exception& e) {
        throw std::runtime_error(server_place(server) + ": " + e.what());
    }
}

server_record chosen_server(const option_reader& options) {
    if (auto url = options.value("--server")) return server_from_url(*url);
    server_list servers = load_server_list();
    if (servers.empty()) throw usage_error{"no server configured: add one with 'tessellon servers add' or give --server URL"};
    return servers.front();
}

void print(const std::string& text) { std::fputs(text.c_str(), stdout); }

int query(session&, const option_reader& options) {
    track_list tracks = read_tracks(options);
    server_record server = chosen_server(options);
    struct match {
        disc_record record;
        bool exact;
    };
    std::vector<match> matches;
    ask(server, [&](protocol_handler& cddb, abort_source& abort) {
        cddb.query(tracks, [&](disc_record&& r, bool exact) { matches.push_back({std::move(r), exact}); }, abort);
    });
    if (options.flag("--json")) {
        json_writer json;
        json.begin_object().key("matches").begin_array();
        for (auto& m : matches) {
            json.begin_object().key("exact").value(m.exact);
            json.key("category").value(m.record.get_field(disc_record::category));
            json.key("discid").value(m.record.get_field(disc_record::discid));
            json.key("dtitle").value(m.record.get_field(disc_record::dtitle));
            json.end_object();
        }
        json.end_array().end_object();
        print(json.text() + "\n");
    } else {
        for (auto& m : matches)
            print(std::string(m.exact ? "exact    " : "inexact  ") + m.record.get_field(disc_record::category) + " " +
                  m.record.get_field(disc_record::discid) + "  " + m.record.get_field(disc_record::dtitle) + "\n");
    }
    if (matches.empty()) {
        std::fprintf(stderr, "tessellon: no match on %s\n", server_place(server).c_str());
        return exit_nothing;
    }
    return exit_ok;
}

int read(session&, const option_reader& options) {
    if (options.positional().size() != 2) throw usage_error{"usage: tessellon cddb read CATEGORY DISCID [--server URL]"};
    server_record server = chosen_server(options);
    std::optional<disc_record> record;
    ask(server, [&](protocol_handler& cddb, abort_source& abort) {
        cddb.read(options.positional()[0], options.positional()[1], [&](disc_record&& r) { record = std::move(r); }, abort);
    });
    if (!record) throw tunehall_io::exception_io_data(server_place(server) + ": no entry in the answer");
    if (options.flag("--json")) {
        json_writer json;
        json.begin_object().key("record");
        write_record_json(json, *record);
        json.end_object();
        print(json.text() + "\n");
    } else {
        print(record_text(*record));
    }
    return exit_ok;
}

int sites(session&, const option_reader& options) {
    if (!options.positional().empty()) throw usage_error{"usage: tessellon cddb sites [--server URL]"};
    server_record server = chosen_server(options);
    server_list found;
    ask(server, [&](protocol_handler& cddb, abort_source& abort) {
        cddb.sites([&](server_record&& s) { found.push_back(std::move(s)); }, abort);
    });
    if (options.flag("--json")) {
        json_writer json;
        json.begin_object().key("sites").begin_array();
        for (auto& s : found) write_server_json(json, s);
        json.end_array().end_object();
        print(json.text() + "\n");
    } else {
        for (auto& s : found) print(std::string(s.get_protocol()) + "  " + server_text(s) + "\n");
    }
    if (found.empty()) {
        std::fprintf(stderr, "tessellon: %s has no list of servers to give\n", server_place(server).c_str());
        return exit_nothing;
    }
    return exit_ok;
}

} // namespace

int run_discid(const global_options& globals, const arguments& args) {
    option_reader options(args, {"--json"}, {"--lengths", "--toc", "--data-track"});
    session s(globals);
    album_input album = read_album(options);
    const track_list& tracks = album.tracks;
    disc_toc toc = compute_disc_toc(tracks);
    std::string id = format_disc_id(toc.disc_id);
    std::string query_text = cddb_query_text(tracks);
    // A MusicBrainz disc id exists only for 1 to 99 tracks; CDDB has no such limit.
    std::optional<std::string> musicbrainz_id;
    if (album.musicbrainz.size() <= 99)
        musicbrainz_id = compute_musicbrainz_disc_id(album.musicbrainz);
    else
        std::fprintf(stderr, "tessellon: no MusicBrainz disc id for %zu tracks (it covers 1 to 99)\n", album.musicbrainz.size());
    if (options.flag("--json")) {
        json_writer json;
        json.begin_object().key("cddb").begin_object();
        json.key("disc_id").value(id).key("query").value(query_text);
        json.key("track_count").value(static_cast<std::int64_t>(toc.track_count));
        json.key("offsets").begin_array();
        for (auto o : toc.offsets) json.value(static_cast<std::int64_t>(o));
        json.end_array();
        json.key("disc_seconds").value(static_cast<std::int64_t>(toc.disc_seconds));
        json.end_object();
        if (musicbrainz_id) json.key("musicbrainz").begin_object().key("disc_id").value(*musicbrainz_id).end_object();
        json.end_object();
        print(json.text() + "\n");
    } else {
        print("CDDB disc id: " + id + "\n" + query_text + "\n");
        if (musicbrainz_id) print("MusicBrainz disc id: " + *musicbrainz_id + "\n");
    }
    return exit_ok;
}

int run_cddb(const global_options& globals, const arguments& args) {
    if (args.empty()) throw usage_error{"usage: tessellon cddb query|read|sites ..."};
    arguments rest(args.begin() + 1, args.end());
    option_reader options(rest, {"--json"}, {"--server", "--lengths", "--toc", "--data-track"});
    session s(globals);
    if (args[0] == "query") return query(s, options);
    if (args[0] == "read") return read(s, options);
    if (args[0] == "sites") return sites(s, options);
    throw usage_error{"unknown cddb command '" + args[0] + "' (query, read or sites)"};
}

} // namespace tessellon_cli
