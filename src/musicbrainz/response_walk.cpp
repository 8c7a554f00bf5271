#include "musicbrainz/response_walk.h"

#include <cstring>
#include <memory>
#include <optional>

#include "musicbrainz/lookup.h"
#include "musicbrainz/parse_unsigned.h"
#include "xml/element_index.h"

using ZR::xmlParser::element;
using ZR::xmlParser::element_index;
using node = element_index::node;

namespace {

// The walk asks each element of an answer for several names, and each ancestor for its own: it
// reads the answer through one element index per walked element, so the text is stepped over
// once instead of once per lookup and level.

std::string_view attribute(const element_index& index, node n, std::string_view name) {
    const std::optional<std::string_view> value = index.attribute(n, name);
    if (!value) throw ZR::xmlParser::error();
    return *value;
}

std::uint32_t number_in(std::string_view text) { return parse_unsigned(text.data(), text.size()); }

// Calls `visit(index, release, medium_list, medium, discs)` for every medium under the releases
// of `holder`. A release list that is missing contributes nothing; one that cannot be walked
// ends the walk (media visited before stay visited).
template <typename Visit>
void for_each_medium(element_index& index, node holder, Visit visit) {
    try {
        for (node release : index.find_children(index.find_child(holder, "release-list"), "release")) {
            const node medium_list = index.find_child(release, "medium-list");
            for (node medium : index.find_children(medium_list, "medium"))
                visit(index, release, medium_list, medium,
                      index.find_children(index.find_child(medium, "disc-list"), "disc"));
        }
    } catch (const ZR::invalid_input&) {
    }
}

bool lists_disc(const element_index& index, const std::vector<node>& discs, std::string_view disc_id) {
    bool listed = false;
    for (node disc : discs)
        if (attribute(index, disc, "id") == disc_id) listed = true;  // every disc must have an id
    return listed;
}

std::vector<std::string> read_artist_credit(element_index& index, node n) {
    std::vector<std::string> artists;
    for (node credit : index.find_children(n, "artist-credit"))
        for (node name_credit : index.find_children(credit, "name-credit"))
            for (node artist : index.find_children(name_credit, "artist"))
                artists.push_back(index.text_of(index.find_child(artist, "name")));
    return artists;
}

// A track's length in milliseconds: its own, else its recording's; 0 when neither is given.
std::uint64_t length_of(element_index& index, node track, node recording) {
    for (node holder : {track, recording})
        if (const std::vector<node> lengths = index.find_children(holder, "length"); lengths.size() == 1)
            return number_in(index.text_of(lengths.front()));
    return 0;
}

// The release a medium yields; throws (and the medium is passed over) when a part is missing or
// a number does not fit. `lengths_ms`, when given, receives the track lengths by slot.
musicbrainz_release read_medium(element_index& index, node release, node medium_list, node medium,
                                std::size_t track_count, std::vector<std::uint64_t>* lengths_ms = nullptr) {
    const node track_list = index.find_child(medium, "track-list");
    if (number_in(attribute(index, track_list, "count")) != track_count) throw ZR::invalid_input();
    const std::vector<node> tracks = index.find_children(track_list, "track");
    if (tracks.size() != track_count) throw ZR::invalid_input();

    musicbrainz_release result;
    result.disc_number = number_in(index.text_of(index.find_child(medium, "position")));
    result.total_discs = number_in(attribute(index, medium_list, "count"));
    result.tracks.resize(track_count);
    result.title = index.text_of(index.find_child(release, "title"));
    result.album_artist = read_artist_credit(index, release);
    result.date = index.text_of(index.find_child(release, "date"));
    // Slots are filled by number, not by order: media list tracks in any order.
    for (node track : tracks) {
        const std::uint32_t number = number_in(index.text_of(index.find_child(track, "number")));
        if (number == 0 || number > track_count) throw ZR::invalid_input();
        const node recording = index.find_child(track, "recording");
        musicbrainz_track& slot = result.tracks[number - 1];
        slot.title = index.text_of(index.find_child(recording, "title"));
        slot.artist = read_artist_credit(index, recording);
        if (lengths_ms) {
            lengths_ms->resize(track_count);
            (*lengths_ms)[number - 1] = length_of(index, track, recording);
        }
    }
    return result;
}

void collect_ids_under(element_index& index, node holder, std::vector<std::string>& out) {
    for_each_medium(index, holder, [&out](const element_index& index, node, node, node, const std::vector<node>& discs) {
        for (node disc : discs) out.emplace_back(attribute(index, disc, "id"));
    });
}

void read_candidates_under(element_index& index, node holder, std::string_view disc_id, std::size_t track_count,
                           std::vector<musicbrainz_release>& out) {
    for_each_medium(index, holder, [&](element_index& index, node release, node medium_list, node medium,
                                       const std::vector<node>& discs) {
        if (!lists_disc(index, discs, disc_id)) return;
        try {
            out.push_back(read_medium(index, release, medium_list, medium, track_count));
        } catch (const ZR::invalid_input&) {
        } catch (const ZR::overflow&) {
        }
    });
}

std::uint64_t distance(std::span<const std::uint64_t> a, const std::vector<std::uint64_t>& b) {
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i < a.size(); ++i) sum += a[i] > b[i] ? a[i] - b[i] : b[i] - a[i];
    return sum;
}

} // namespace

std::vector<std::string> read_artist_credit(const element& e) {
    element_index index(e);
    return read_artist_credit(index, element_index::root);
}

void collect_disc_ids(const element& e, std::vector<std::string>& out) {
    element_index index(e);
    collect_ids_under(index, element_index::root, out);
}

void read_release_candidates(const element& e, std::string_view disc_id, std::size_t track_count,
                             std::vector<musicbrainz_release>& out) {
    element_index index(e);
    read_candidates_under(index, element_index::root, disc_id, track_count, out);
}

musicbrainz_answer_walk::musicbrainz_answer_walk(const element& metadata)
    : index_(std::make_unique<element_index>(metadata)) {
    holders_.push_back(element_index::root);
    for (node disc : index_->find_children(element_index::root, "disc")) holders_.push_back(disc);
}

musicbrainz_answer_walk::~musicbrainz_answer_walk() = default;

void musicbrainz_answer_walk::collect_disc_ids(std::vector<std::string>& out) {
    for (node holder : holders_) collect_ids_under(*index_, holder, out);
}

void musicbrainz_answer_walk::read_release_candidates(std::string_view disc_id, std::size_t track_count,
                                                      std::vector<musicbrainz_release>& out) {
    for (node holder : holders_) read_candidates_under(*index_, holder, disc_id, track_count, out);
}

void musicbrainz_answer_walk::read_closest_media(std::span<const std::uint64_t> lengths_ms,
                                                 std::vector<musicbrainz_release>& out) {
    std::vector<musicbrainz_release> closest;
    std::uint64_t best = UINT64_MAX;
    for (node holder : holders_)
        for_each_medium(*index_, holder, [&](element_index& index, node release, node medium_list, node medium,
                                             const std::vector<node>&) {
            std::vector<std::uint64_t> lengths;
            std::optional<musicbrainz_release> found;
            try {
                found = read_medium(index, release, medium_list, medium, lengths_ms.size(), &lengths);
            } catch (const ZR::invalid_input&) {
            } catch (const ZR::overflow&) {
            }
            if (!found) return;
            const std::uint64_t d = distance(lengths_ms, lengths);
            if (d > best) return;
            if (d < best) closest.clear();
            best = d;
            found->matched_by_toc = true;
            closest.push_back(std::move(*found));
        });
    for (musicbrainz_release& r : closest) out.push_back(std::move(r));
}

const musicbrainz_release& choose_release(const std::vector<musicbrainz_release>& candidates) {
    if (candidates.empty()) throw musicbrainz_no_match();
    const musicbrainz_release* chosen = &candidates.front();
    for (const musicbrainz_release& candidate : candidates)
        if (std::strcmp(candidate.date.c_str(), chosen->date.c_str()) < 0) chosen = &candidate;
    return *chosen;
}
