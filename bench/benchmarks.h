#pragma once
// The benchmark suites. Each registers pairs named "<group>/<case>/ours" and
// "<group>/<case>/<peer>", which the reporters set side by side.

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include <cddb/cddb.h>

// Disc ids for 12 and 99 tracks.
void register_disc_id_benchmarks();

// Every xmcd entry of a folder, read from its file: by our parser and by libcddb from its local
// cache. The suite owns the scratch cache folder, so it must outlive the run.
class xmcd_parse_suite {
public:
    explicit xmcd_parse_suite(const std::filesystem::path& entries);
    ~xmcd_parse_suite();
    xmcd_parse_suite(const xmcd_parse_suite&) = delete;
    xmcd_parse_suite& operator=(const xmcd_parse_suite&) = delete;

    void register_benchmarks();

    struct entry {
        std::string name;              // the file name up to its first dot: the disc id
        std::filesystem::path file;
        std::uint32_t disc_id;
    };

private:
    std::vector<entry> entries_;
    std::filesystem::path cache_dir_;
    cddb_conn_t* connection_ = nullptr;
};

// MusicBrainz: the response walk against pugixml and libxml2 on one answer and ours alone on
// answers of growing size; the disc id against libdiscid on the longest disc of `tocs`
// (musicbrainz/discid-tocs.tsv of the fixtures) and on 99 tracks. Each raises std::exception
// when a peer and ours disagree, before anything is timed.
void register_musicbrainz_walk_benchmarks();
void register_musicbrainz_disc_id_benchmarks(const std::filesystem::path& tocs);
