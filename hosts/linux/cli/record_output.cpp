#include "cli/record_output.h"

#include <cstdio>

namespace tessellon_cli {

namespace {
const char* const field_names[] = {"category", "discid", "dtitle", "dyear", "dgenre", "extd", "submitted_via"};

std::optional<std::int64_t> known(std::uint32_t v) {
    if (v == disc_record::unknown) return std::nullopt;
    return v;
}
} // namespace

void write_record_json(json_writer& json, const disc_record& record) {
    json.begin_object();
    for (unsigned f = 0; f < disc_record::field_count; ++f) json.key(field_names[f]).value(record.get_field(f));
    json.key("disc_length").value(known(record.get_disc_length()));
    json.key("revision").value(static_cast<std::int64_t>(record.get_revision()));
    json.key("various_artists").value(record.get_various_artists());
    json.key("tracks").begin_array();
    for (std::size_t t = 0; t < record.get_track_count(); ++t) {
        json.begin_object();
        json.key("offset").value(known(record.get_track_offset(t)));
        json.key("ttitle").value(record.get_track_field(t, disc_record::ttitle));
        json.key("extt").value(record.get_track_field(t, disc_record::extt));
        json.end_object();
    }
    json.end_array();
    json.end_object();
}

std::string record_text(const disc_record& record) {
    std::string out;
    for (unsigned f = 0; f < disc_record::field_count; ++f)
        out += std::string(field_names[f]) + ": " + record.get_field(f) + "\n";
    auto number = [](std::uint32_t v) { return v == disc_record::unknown ? std::string("unknown") : std::to_string(v); };
    out += "disc_length: " + number(record.get_disc_length()) + "\n";
    out += "revision: " + std::to_string(record.get_revision()) + "\n";
    out += std::string("various_artists: ") + (record.get_various_artists() ? "yes" : "no") + "\n";
    for (std::size_t t = 0; t < record.get_track_count(); ++t) {
        char head[64];
        std::snprintf(head, sizeof head, "%3zu  %8s  ", t + 1, number(record.get_track_offset(t)).c_str());
        out += head;
        out += record.get_track_field(t, disc_record::ttitle);
        std::string extt = record.get_track_field(t, disc_record::extt);
        if (!extt.empty()) out += "  [" + extt + "]";
        out += "\n";
    }
    return out;
}

void write_server_json(json_writer& json, const server_record& s) {
    json.begin_object();
    json.key("server").value(s.get_server());
    json.key("protocol").value(s.get_protocol());
    json.key("port").value(s.get_port());
    json.key("address").value(s.get_address());
    json.key("description").value(s.get_description());
    json.end_object();
}

std::string server_place(const server_record& s) { return std::string(s.get_server()) + ":" + s.get_port(); }

std::string server_text(const server_record& s) {
    return std::string(s.get_server()) + ":" + s.get_port() + "  " + s.get_address() + "  " + s.get_description();
}

} // namespace tessellon_cli
