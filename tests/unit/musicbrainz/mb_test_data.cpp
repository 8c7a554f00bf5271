#include "mb_test_data.h"

#include <cstdio>
#include <cstdlib>
#include <sstream>

#include <gtest/gtest.h>

#include <hostkit/plain_track.h>

#include "support/temp_folder.h"

namespace mb_testing {

namespace {

std::string answers_folder() { return std::string(TESSELLON_SOURCE_DIR) + "/tests/servers/musicbrainz_answers"; }

std::string must_read(const std::filesystem::path& path) {
    std::string bytes = testing_support::read_file(path);
    if (bytes.empty()) ADD_FAILURE() << "missing or empty: " << path;
    return bytes;
}

std::vector<std::uint64_t> numbers_in(const std::string& text) {
    std::vector<std::uint64_t> numbers;
    std::istringstream in(text);
    for (std::uint64_t v; in >> v;) numbers.push_back(v);
    return numbers;
}

// Rows of a TSV with a header line; `columns` is the expected column count.
std::vector<std::vector<std::string>> rows_of(const std::string& text, std::size_t columns) {
    std::vector<std::vector<std::string>> rows;
    std::istringstream in(text);
    std::string line;
    std::getline(in, line);  // column names
    while (std::getline(in, line)) {
        if (line.empty()) continue;
        std::vector<std::string> cells;
        std::istringstream row(line);
        for (std::string cell; std::getline(row, cell, '\t');) cells.push_back(cell);
        if (cells.size() != columns) {
            ADD_FAILURE() << "bad row: " << line;
            continue;
        }
        rows.push_back(cells);
    }
    return rows;
}

} // namespace

std::vector<known_disc> fixture_discs() {
    // discid, first_track, last_track, leadout_sectors, track_offsets, found_in
    std::vector<known_disc> discs;
    for (auto& cells : rows_of(must_read(testing_support::fixture("musicbrainz/discid-tocs.tsv")), 6))
        discs.push_back(known_disc{cells[0], std::stoull(cells[3]), numbers_in(cells[4]), cells[5]});
    return discs;
}

std::vector<known_disc> server_discs() {
    // discid, leadout_sectors, track_offsets, disc
    std::vector<known_disc> discs;
    for (auto& cells : rows_of(must_read(answers_folder() + "/tocs.tsv"), 4))
        discs.push_back(known_disc{cells[0], std::stoull(cells[1]), numbers_in(cells[2]), cells[3]});
    return discs;
}

known_disc disc_with_id(const std::string& id) {
    for (const auto& list : {fixture_discs(), server_discs()})
        for (const known_disc& d : list)
            if (d.id == id) return d;
    ADD_FAILURE() << "no known disc " << id;
    return {};
}

std::vector<double> lengths_of(const known_disc& disc) {
    std::vector<double> lengths;
    for (std::size_t i = 0; i < disc.offsets.size(); ++i) {
        const std::uint64_t end = i + 1 < disc.offsets.size() ? disc.offsets[i + 1] : disc.leadout;
        lengths.push_back(static_cast<double>(end - disc.offsets[i]) / 75.0);
    }
    return lengths;
}

std::string pregap_of(const known_disc& disc) {
    if (disc.offsets.empty() || disc.offsets[0] == 150) return "";
    const std::uint64_t frames = disc.offsets[0] - 150;
    char text[32];
    std::snprintf(text, sizeof text, "%02u:%02u:%02u", static_cast<unsigned>(frames / 4500),
                  static_cast<unsigned>(frames / 75 % 60), static_cast<unsigned>(frames % 75));
    return text;
}

track_list tracks_of(const known_disc& disc) {
    track_list tracks = tracks_of(lengths_of(disc));
    if (const std::string pregap = pregap_of(disc); !pregap.empty()) {
        track_info info;
        info.info_set("pregap", pregap);
        tracks[0] = hostkit::make_plain_track("/music/" + disc.id + "/01.flac", lengths_of(disc)[0], info);
    }
    return tracks;
}

track_list tracks_of(const std::vector<double>& lengths) {
    track_list tracks;
    for (std::size_t i = 0; i < lengths.size(); ++i)
        tracks.push_back(hostkit::make_plain_track("/music/track" + std::to_string(i + 1) + ".flac", lengths[i]));
    return tracks;
}

std::string fixture_answer(const std::string& relative) {
    return must_read(testing_support::fixture("musicbrainz/" + relative));
}

std::string server_answer(const std::string& disc_id) { return must_read(answers_folder() + "/" + disc_id + ".xml"); }

ZR::xmlParser::element metadata_of(const std::string& answer) {
    std::string_view text = answer;
    ZR::xmlParser::prepare_document(text);
    return ZR::xmlParser::find_child(ZR::xmlParser::element(text.data(), text.size()), "metadata");
}

scoped_environment::scoped_environment(const char* name, const char* value) : name_(name) {
    if (const char* old = std::getenv(name)) old_ = old;
    if (value) ::setenv(name, value, 1);
    else ::unsetenv(name);
}

scoped_environment::~scoped_environment() {
    if (old_) ::setenv(name_.c_str(), old_->c_str(), 1);
    else ::unsetenv(name_.c_str());
}

} // namespace mb_testing
