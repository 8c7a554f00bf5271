// xmcd entries read from files: ours (read the file, cut it into lines as the transport does,
// parse, finish) against libcddb reading the same entry from its local cache with cddb_read.

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

#include <benchmark/benchmark.h>

#include "answer_lines.h"
#include "benchmarks.h"
#include "cddb/disc_record.h"
#include "cddb/xmcd_parser.h"

namespace {

namespace fs = std::filesystem;

// Any category does: libcddb looks an entry up by the category and the disc id it is given.
constexpr const char* cache_category = "misc";

std::string read_file(const fs::path& path) {
    std::FILE* in = std::fopen(path.c_str(), "rb");
    if (!in) throw std::runtime_error("cannot open " + path.string());
    std::string text;
    char buffer[65536];
    for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, in)) > 0;) text.append(buffer, n);
    std::fclose(in);
    return text;
}

disc_record parse_entry_file(const fs::path& path) {
    std::string text = read_file(path);
    disc_record record;
    xmcd_parser parser(record);
    for_each_answer_line(text, [&parser](std::string_view line) { parser.feed_line(line); });
    finish_disc_record(record);
    return record;
}

struct libcddb_entry {
    bool read = false;
    std::string title;
    int tracks = 0;
};

// One lookup as a libcddb caller makes it: a fresh disc naming category and id, then cddb_read.
libcddb_entry libcddb_read(cddb_conn_t* connection, std::uint32_t disc_id) {
    cddb_disc_t* disc = cddb_disc_new();
    cddb_disc_set_category_str(disc, cache_category);
    cddb_disc_set_discid(disc, disc_id);
    libcddb_entry entry;
    entry.read = cddb_read(connection, disc) != 0;
    if (const char* title = cddb_disc_get_title(disc)) entry.title = title;
    entry.tracks = cddb_disc_get_track_count(disc);
    cddb_disc_destroy(disc);
    return entry;
}

void ours(benchmark::State& state, const xmcd_parse_suite::entry& entry) {
    try {
        parse_entry_file(entry.file);
    } catch (const std::exception& e) {
        state.SkipWithError(e.what());
        return;
    }
    for (auto _ : state) {
        disc_record record = parse_entry_file(entry.file);
        benchmark::DoNotOptimize(record);
    }
}

void libcddb(benchmark::State& state, const xmcd_parse_suite::entry& entry, cddb_conn_t* connection) {
    // The comparison holds only if libcddb really parses the entry: its album title and track
    // count must be the ones our parser finds.
    disc_record reference = parse_entry_file(entry.file);
    std::string album(split_dtitle(reference.get_field(disc_record::dtitle)).album);
    libcddb_entry first = libcddb_read(connection, entry.disc_id);
    if (!first.read || first.title != album || first.tracks != static_cast<int>(reference.get_track_count())) {
        state.SkipWithError(("libcddb read \"" + first.title + "\" with " + std::to_string(first.tracks) +
                             " tracks, we read \"" + album + "\" with " +
                             std::to_string(reference.get_track_count()) + " tracks")
                                .c_str());
        return;
    }
    for (auto _ : state) {
        libcddb_entry read = libcddb_read(connection, entry.disc_id);
        if (!read.read) {
            state.SkipWithError("cddb_read failed");
            break;
        }
        benchmark::DoNotOptimize(read);
    }
}

} // namespace

xmcd_parse_suite::xmcd_parse_suite(const fs::path& entries) {
    for (const fs::directory_entry& file : fs::directory_iterator(entries)) {
        if (!file.is_regular_file() || file.path().extension() != ".xmcd") continue;
        std::string name = file.path().filename().string();
        name = name.substr(0, name.find('.'));
        entries_.push_back({name, file.path(), static_cast<std::uint32_t>(std::strtoul(name.c_str(), nullptr, 16))});
    }
    if (entries_.empty()) throw std::runtime_error("no xmcd entries in " + entries.string());
    std::sort(entries_.begin(), entries_.end(), [](const entry& a, const entry& b) { return a.name < b.name; });

    // libcddb finds a cached entry at <cache>/<category>/<disc id in lower-case hex>.
    std::string pattern = (fs::temp_directory_path() / "tessellon-bench-XXXXXX").string();
    if (!mkdtemp(pattern.data())) throw std::system_error(errno, std::generic_category(), "mkdtemp");
    cache_dir_ = pattern;
    fs::create_directory(cache_dir_ / cache_category);
    for (const entry& e : entries_) {
        char id[9];
        std::snprintf(id, sizeof id, "%08x", static_cast<unsigned>(e.disc_id));
        fs::copy_file(e.file, cache_dir_ / cache_category / id);
    }
    connection_ = cddb_new();
    if (!connection_) throw std::runtime_error("cddb_new failed");
    cddb_cache_only(connection_);
    cddb_cache_set_dir(connection_, cache_dir_.c_str());
}

xmcd_parse_suite::~xmcd_parse_suite() {
    if (connection_) cddb_destroy(connection_);
    std::error_code ignored;
    fs::remove_all(cache_dir_, ignored);
}

void xmcd_parse_suite::register_benchmarks() {
    for (const entry& e : entries_) {
        std::string group = "xmcd_parse/" + e.name + "/";
        benchmark::RegisterBenchmark((group + "ours").c_str(), ours, e);
        benchmark::RegisterBenchmark((group + "libcddb").c_str(), libcddb, e, connection_);
    }
}
