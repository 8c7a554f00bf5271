#include "track_library.h"

#include <algorithm>
#include <fstream>
#include <set>
#include <sstream>

#include <hostkit/file_util.h>
#include <hostkit/plain_track.h>
#include <tunehall/exceptions.h>

namespace winhost {

namespace {

constexpr std::string_view info_prefix = "info.";

std::vector<std::string> split_tabs(const std::string& line) {
    std::vector<std::string> out;
    std::size_t start = 0;
    for (;;) {
        std::size_t tab = line.find('\t', start);
        out.push_back(line.substr(start, tab == std::string::npos ? std::string::npos : tab - start));
        if (tab == std::string::npos) return out;
        start = tab + 1;
    }
}

// Tabs and line breaks cannot stand in a value: they are written as \t and \n (and \ as \\).
std::string escape(const std::string& text) {
    std::string out;
    for (char c : text) {
        if (c == '\\') out += "\\\\";
        else if (c == '\t') out += "\\t";
        else if (c == '\n') out += "\\n";
        else if (c == '\r') out += "\\r";
        else out += c;
    }
    return out;
}

std::string unescape(const std::string& text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\' || i + 1 == text.size()) {
            out += text[i];
            continue;
        }
        char c = text[++i];
        out += c == 't' ? '\t' : c == 'n' ? '\n' : c == 'r' ? '\r' : c;
    }
    return out;
}

class library_suggestion_source : public library_suggestions {
public:
    explicit library_suggestion_source(const track_library& library) : library_(library) {}
    std::vector<std::string> values_of(const char* field) override { return library_.values_of(field ? field : ""); }

private:
    const track_library& library_;
};

} // namespace

bool track_library::parse_line(const std::string& raw, entry& out) {
    std::string line = raw;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.empty() || line[0] == '#') return false;
    std::vector<std::string> cells = split_tabs(line);
    if (cells.size() < 2) throw tunehall_io::exception_io_data("a track needs a path and a length");
    out = entry{};
    out.path = cells[0];  // paths hold backslashes of their own, never tabs or line breaks
    try {
        std::size_t used = 0;
        out.seconds = std::stod(cells[1], &used);
        if (used != cells[1].size() || out.seconds < 0) throw std::invalid_argument("length");
    } catch (const std::logic_error&) {
        throw tunehall_io::exception_io_data("not a length in seconds: " + cells[1]);
    }
    for (std::size_t i = 2; i < cells.size(); ++i) {
        std::size_t eq = cells[i].find('=');
        if (eq == std::string::npos || eq == 0) throw tunehall_io::exception_io_data("not name=value: " + cells[i]);
        std::string name = cells[i].substr(0, eq), value = unescape(cells[i].substr(eq + 1));
        if (name.rfind(info_prefix, 0) == 0) out.info.info_set(name.substr(info_prefix.size()).c_str(), value);
        else out.info.tags.add_tag_value(name.c_str(), value);
    }
    out.info.length = out.seconds;
    return true;
}

std::string track_library::format_line(const entry& e) {
    std::ostringstream line;
    line.precision(17);
    line << e.path << '\t' << e.seconds;
    for (auto& [name, value] : e.info.info) line << '\t' << info_prefix << name << '=' << escape(value);
    const tag_record& tags = e.info.tags;
    for (std::size_t f = 0; f < tags.field_count(); ++f)
        for (std::size_t v = 0; v < tags.value_count(f); ++v) line << '\t' << tags.field_name(f) << '=' << escape(tags.value(f, v));
    return line.str();
}

track_library::track_library(std::filesystem::path manifest) : manifest_(std::move(manifest)) {
    std::ifstream in(manifest_, std::ios::binary);
    if (!in) return;
    std::string line;
    for (int number = 1; std::getline(in, line); ++number) {
        entry e;
        try {
            if (parse_line(line, e)) entries_.push_back(std::move(e));
        } catch (const tunehall_io::exception_io_data& error) {
            throw tunehall_io::exception_io_data(hostkit::path_utf8(manifest_) + ", line " + std::to_string(number) + ": " +
                                                 error.what());
        }
    }
}

track_list track_library::tracks() const { return find(""); }

track_list track_library::find(const std::string& part) const {
    std::lock_guard lock(lock_);
    track_list out;
    for (const entry& e : entries_)
        if (e.path.find(part) != std::string::npos) out.push_back(hostkit::make_plain_track(e.path, e.seconds, e.info));
    return out;
}

std::size_t track_library::index_of(const std::string& path) const {
    for (std::size_t i = 0; i < entries_.size(); ++i)
        if (entries_[i].path == path) return i;
    throw tunehall_io::exception_io_not_found("Not in the library: " + path);
}

tag_record track_library::tags_of(const std::string& path) const {
    std::lock_guard lock(lock_);
    return entries_[index_of(path)].info.tags;
}

std::vector<std::string> track_library::values_of(const std::string& field) const {
    std::lock_guard lock(lock_);
    std::set<std::string> values;
    for (const entry& e : entries_) {
        std::size_t f = e.info.tags.find_field(field.c_str());
        if (f == tag_record::npos) continue;
        for (std::size_t v = 0; v < e.info.tags.value_count(f); ++v) values.insert(e.info.tags.value(f, v));
    }
    return {values.begin(), values.end()};
}

tag_record track_library::read_tags(const track_ref& track) { return tags_of(track->path()); }

void track_library::write_tags(const track_ref& track, const tag_record& tags) {
    std::lock_guard lock(lock_);
    entries_[index_of(track->path())].info.tags = tags;
    save_locked();
}

void track_library::save_locked() const {
    std::string text = "# path\tseconds\tinfo.NAME=value or TAG=value ...\n";
    for (const entry& e : entries_) text += format_line(e) + "\n";
    hostkit::replace_file_atomically(manifest_, text);
}

service_ref<library_suggestions> make_library_suggestions(const track_library& library) {
    return make_service<library_suggestion_source>(library);
}

} // namespace winhost
