// `tessellon undo`: puts back the tags a `tag` or `musicbrainz` run replaced, from the journal in
// the profile folder; `--list` shows the runs kept.

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include <hostkit/file_util.h>
#include <hostkit/host.h>

#include "cli/arguments.h"
#include "cli/commands.h"
#include "cli/json_writer.h"
#include "undo_journal.h"

namespace tessellon_cli {

namespace {

int list_runs(const linux_host::undo_journal& journal, bool json_wanted) {
    const auto runs = journal.runs();
    if (json_wanted) {
        json_writer json;
        json.begin_object().key("runs").begin_array();
        for (const auto& r : runs) {
            json.begin_object().key("number").value(static_cast<std::int64_t>(r.number)).key("time").value(r.time);
            json.key("command").value(r.command).key("album").value(r.album).key("files").strings(r.files);
            json.key("complete").value(r.complete).key("undone").value(r.undone).end_object();
        }
        json.end_array().end_object();
        std::printf("%s\n", json.text().c_str());
        return exit_ok;
    }
    for (const auto& r : runs) {
        std::printf("%d  %s  %s  (%zu files%s%s)\n    %s\n", r.number, r.time.c_str(), r.album.c_str(), r.files.size(),
                    r.complete ? "" : ", interrupted", r.undone ? ", undone" : "", r.command.c_str());
    }
    if (runs.empty()) std::fprintf(stderr, "tessellon: the undo journal is empty\n");
    return exit_ok;
}

} // namespace

int run_undo(const global_options& globals, const arguments& args) {
    option_reader options(args, {"--list", "--force", "--json"}, {});
    linux_host::undo_journal journal(hostkit::default_profile(globals.profile) / "journal");
    if (options.flag("--list")) return list_runs(journal, options.flag("--json"));
    int number = 0;
    if (options.positional().size() > 1) throw usage_error{"undo takes one run number"};
    if (!options.positional().empty()) {
        const std::string& n = options.positional().front();
        char* end = nullptr;
        number = static_cast<int>(std::strtol(n.c_str(), &end, 10));
        if (*end != '\0' || number <= 0) throw usage_error{"undo " + n + ": not a run number (see undo --list)"};
    }
    const auto runs = journal.runs();
    if (number == 0 && std::all_of(runs.begin(), runs.end(), [](const auto& r) { return r.undone; })) {
        std::fprintf(stderr, "tessellon: no run left to undo\n");
        return exit_nothing;
    }
    const linux_host::undo_report report = journal.undo(number, options.flag("--force"));
    for (const auto& path : report.restored) std::fprintf(stderr, "restored %s\n", path.c_str());
    for (const auto& text : report.left_alone) std::fprintf(stderr, "tessellon: %s\n", text.c_str());
    for (const auto& text : report.failed) std::fprintf(stderr, "tessellon: %s\n", text.c_str());
    if (!report.failed.empty()) return exit_failure;
    return report.left_alone.empty() ? exit_ok : exit_nothing;
}

} // namespace tessellon_cli
