#include "cli/write_preview.h"

#include <cstdio>
#include <optional>

#include <unistd.h>

#include "cli/command_line.h"
#include "cli/commands.h"
#include "cli/interrupt.h"
#include "cli/json_writer.h"

namespace tessellon_cli {

namespace {

using hostkit::update_plan;
using hostkit::update_result;

std::vector<std::string> values_of(const tag_record& tags, std::size_t field) {
    std::vector<std::string> out;
    for (std::size_t v = 0; v < tags.value_count(field); ++v) out.push_back(tags.value(field, v));
    return out;
}

std::vector<std::string> values_named(const tag_record& tags, const std::string& name) {
    const std::size_t f = tags.find_field(name.c_str());
    return f == tag_record::npos ? std::vector<std::string>{} : values_of(tags, f);
}

struct field_change {
    std::string field, change;
    std::vector<std::string> old_values, new_values;
};

// Every field of the new record in its order (those that stay as they were too), then the
// fields it drops.
std::vector<field_change> changes_of(const hostkit::planned_file& f) {
    std::vector<field_change> out;
    for (std::size_t i = 0; i < f.after.field_count(); ++i) {
        const std::string name = f.after.field_name(i);
        std::vector<std::string> now = values_of(f.after, i), then = values_named(f.before, name);
        if (then.empty()) out.push_back({name, "added", {}, now});
        else out.push_back({name, then != now ? "changed" : "unchanged", then, now});
    }
    for (std::size_t i = 0; i < f.before.field_count(); ++i)
        if (f.after.find_field(f.before.field_name(i).c_str()) == tag_record::npos)
            out.push_back({f.before.field_name(i), "removed", values_of(f.before, i), {}});
    return out;
}

std::string quoted(const std::vector<std::string>& values) {
    std::string out;
    for (const std::string& v : values) out += (out.empty() ? "\"" : "; \"") + v + "\"";
    return out;
}

bool answer_is_yes() {
    const std::optional<std::string> line = read_answer();
    return line && (*line == "y" || *line == "Y" || *line == "yes");
}

} // namespace

std::string preview_text(const update_plan& plan, const std::string& mode) {
    std::string out;
    if (mode == "wipe") out += "Mode: wipe (fields the match does not set are removed)\n";
    else if (mode == "keep") out += "Mode: keep (fields the match does not set stay)\n";
    for (const auto& f : plan.files) {
        out += f.path + (f.changes ? "\n" : ": unchanged\n");
        for (const field_change& c : changes_of(f)) {
            out += "  " + c.field + ": ";
            if (c.change == "added") out += "added " + quoted(c.new_values);
            else if (c.change == "removed") out += "removed " + quoted(c.old_values);
            else if (c.change == "unchanged") out += quoted(c.new_values);
            else out += quoted(c.old_values) + " -> " + quoted(c.new_values);
            out += "\n";
        }
    }
    return out;
}

void write_plan_json(json_writer& json, const update_plan& plan) {
    json.begin_array();
    for (const auto& f : plan.files) {
        json.begin_object().key("path").value(f.path).key("fields");
        write_fields_json(json, f.after);
        json.key("changes").begin_array();
        for (const field_change& c : changes_of(f)) {
            if (c.change == "unchanged") continue;
            json.begin_object().key("field").value(c.field).key("change").value(c.change);
            json.key("old").strings(c.old_values).key("new").strings(c.new_values).end_object();
        }
        json.end_array().end_object();
    }
    json.end_array();
}

hostkit::tag_update_engine::gate_fn make_write_gate(const write_choice& choice) {
    return [choice](const update_plan& plan) {
        const std::string text = preview_text(plan, choice.mode);
        if (choice.dry_run) {
            if (!choice.json) std::fputs(text.c_str(), stdout);
            return false;
        }
        // The progress line of the update is already drawn on a terminal; the preview replaces it.
        if (isatty(STDERR_FILENO)) std::fputs("\r\033[K", stderr);
        std::fputs(text.c_str(), stderr);
        if (choice.yes || !isatty(STDIN_FILENO)) return true;
        std::fprintf(stderr, "Write these tags to %zu files? [y/N] ", plan.changing());
        std::fflush(stderr);
        // Ctrl-C at the question is a no, also when the answer was typed after it.
        return answer_is_yes();
    };
}

std::string command_text(const char* command, const std::vector<std::string>& args) {
    std::string out = std::string("tessellon ") + command;
    for (const std::string& a : args) out += " " + a;
    return out;
}

std::string album_text(const track_list& tracks) {
    if (tracks.empty()) return {};
    const std::string first = tracks.front()->path();
    const std::size_t slash = first.rfind('/');
    return slash == std::string::npos ? "." : first.substr(0, slash);
}

int report_update(const std::optional<update_result>& result, const write_choice& choice, const char* what) {
    if (!result) return exit_failure;
    using outcome = update_result::outcome;
    const std::size_t planned = result->plan.changing();
    switch (result->result) {
    case outcome::written:
        std::fprintf(stderr, "tessellon: wrote the tags of %zu files%s (tessellon undo puts them back)\n", result->written.size(), what);
        return exit_ok;
    case outcome::nothing_to_write:
        std::fprintf(stderr, "tessellon: every file already has these tags\n");
        return exit_ok;
    case outcome::declined:
        if (choice.dry_run) return exit_ok;
        std::fprintf(stderr, "tessellon: nothing written\n");
        return exit_nothing;
    case outcome::interrupted:
        std::fprintf(stderr, "tessellon: interrupted after %zu of %zu files; every file is whole and the journal has "
                             "the written ones (tessellon undo puts them back)\n", result->written.size(), planned);
        return exit_nothing;
    case outcome::refused:
        std::fprintf(stderr, "tessellon: no file was changed\n");
        return exit_failure;
    case outcome::failed:
        std::fprintf(stderr, "tessellon: %s\n", result->rolled_back ? "the files written before the failure were put back; no file was changed"
                                                                     : "the album is only partly tagged; see the errors above");
        return exit_failure;
    }
    return exit_failure;
}

} // namespace tessellon_cli
