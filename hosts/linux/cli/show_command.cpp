// `tessellon show`: the current tags of the album's files, under the host's field names.

#include <cstdio>

#include "audio/audio_file.h"
#include "cli/arguments.h"
#include "cli/commands.h"
#include "cli/json_writer.h"
#include "cli/session.h"
#include "cli/track_input.h"

namespace tessellon_cli {

void write_fields_json(json_writer& json, const tag_record& tags) {
    json.begin_array();
    for (std::size_t f = 0; f < tags.field_count(); ++f) {
        json.begin_array().value(tags.field_name(f)).begin_array();
        for (std::size_t v = 0; v < tags.value_count(f); ++v) json.value(tags.value(f, v));
        json.end_array().end_array();
    }
    json.end_array();
}

std::string fields_text(const tag_record& tags) {
    std::string out;
    for (std::size_t f = 0; f < tags.field_count(); ++f)
        for (std::size_t v = 0; v < tags.value_count(f); ++v) out += "  " + tags.field_name(f) + "=" + tags.value(f, v) + "\n";
    return out;
}

int run_show(const global_options& globals, const arguments& args) {
    option_reader options(args, {"--json"}, {});
    session s(globals);
    track_list tracks = read_tracks(options);
    json_writer json;
    json.begin_object().key("tracks").begin_array();
    for (auto& t : tracks) {
        track_info info;
        t->get_info(info);
        const char* length_kind = info.info_get(length_kind_field);
        if (options.flag("--json")) {
            json.begin_object().key("path").value(t->path());
            json.key("length").value(info.length).key("length_kind");
            length_kind ? json.value(length_kind) : json.null();
            json.key("fields");
            write_fields_json(json, info.tags);
            json.end_object();
        } else {
            // The tracks of a cue sheet share its path; their number tells them apart.
            const std::string name = t->subsong() > 0 ? std::string(t->path()) + " #" + std::to_string(t->subsong()) : t->path();
            std::printf("%s (%.3f s%s%s)\n%s", name.c_str(), info.length, length_kind ? ", " : "",
                        length_kind ? length_kind : "", fields_text(info.tags).c_str());
        }
    }
    json.end_array().end_object();
    if (options.flag("--json")) std::printf("%s\n", json.text().c_str());
    return exit_ok;
}

} // namespace tessellon_cli
