#include "musicbrainz/response_walk.h"

#include <cstring>

#include "musicbrainz/lookup.h"
#include "musicbrainz/parse_unsigned.h"

using ZR::xmlParser::element;
using ZR::xmlParser::find_child;
using ZR::xmlParser::find_children;
using ZR::xmlParser::text_of;

namespace {

const std::string& attribute(const element& e, const char* name) {
    auto found = e.attributes.find(name);
    if (found == e.attributes.end()) throw ZR::xmlParser::error();
    return found->second;
}

std::uint32_t number_in(const std::string& text) { return parse_unsigned(text.data(), text.size()); }

// Calls `visit(release, medium_list, medium, discs)` for every medium under the element's
// releases. A release list that is missing contributes nothing; one that cannot be walked ends
// the walk (media visited before stay visited).
template <typename Visit>
void for_each_medium(const element& holder, Visit visit) {
    try {
        for (const element& release : find_children(find_child(holder, "release-list"), "release")) {
            const element medium_list = find_child(release, "medium-list");
            for (const element& medium : find_children(medium_list, "medium"))
                visit(release, medium_list, medium, find_children(find_child(medium, "disc-list"), "disc"));
        }
    } catch (const ZR::invalid_input&) {
    }
}

bool lists_disc(const std::list<element>& discs, std::string_view disc_id) {
    bool listed = false;
    for (const element& disc : discs)
        if (attribute(disc, "id") == disc_id) listed = true;  // every disc must have an id
    return listed;
}

// The release a medium yields; throws (and the medium is passed over) when a part is missing or
// a number does not fit.
musicbrainz_release read_medium(const element& release, const element& medium_list, const element& medium,
                                std::size_t track_count) {
    const element track_list = find_child(medium, "track-list");
    if (number_in(attribute(track_list, "count")) != track_count) throw ZR::invalid_input();
    const std::list<element> tracks = find_children(track_list, "track");
    if (tracks.size() != track_count) throw ZR::invalid_input();

    musicbrainz_release result;
    result.disc_number = number_in(text_of(find_child(medium, "position")));
    result.total_discs = number_in(attribute(medium_list, "count"));
    result.tracks.resize(track_count);
    result.title = text_of(find_child(release, "title"));
    result.album_artist = read_artist_credit(release);
    result.date = text_of(find_child(release, "date"));
    // Slots are filled by number, not by order: media list tracks in any order.
    for (const element& track : tracks) {
        const std::uint32_t number = number_in(text_of(find_child(track, "number")));
        if (number == 0 || number > track_count) throw ZR::invalid_input();
        const element recording = find_child(track, "recording");
        musicbrainz_track& slot = result.tracks[number - 1];
        slot.title = text_of(find_child(recording, "title"));
        slot.artist = read_artist_credit(recording);
    }
    return result;
}

} // namespace

std::vector<std::string> read_artist_credit(const element& e) {
    std::vector<std::string> artists;
    for (const element& credit : find_children(e, "artist-credit"))
        for (const element& name_credit : find_children(credit, "name-credit"))
            for (const element& artist : find_children(name_credit, "artist"))
                artists.push_back(text_of(find_child(artist, "name")));
    return artists;
}

void collect_disc_ids(const element& e, std::vector<std::string>& out) {
    for_each_medium(e, [&out](const element&, const element&, const element&, const std::list<element>& discs) {
        for (const element& disc : discs) out.push_back(attribute(disc, "id"));
    });
}

void read_release_candidates(const element& e, std::string_view disc_id, std::size_t track_count,
                             std::vector<musicbrainz_release>& out) {
    for_each_medium(e, [&](const element& release, const element& medium_list, const element& medium,
                           const std::list<element>& discs) {
        if (!lists_disc(discs, disc_id)) return;
        try {
            out.push_back(read_medium(release, medium_list, medium, track_count));
        } catch (const ZR::invalid_input&) {
        } catch (const ZR::overflow&) {
        }
    });
}

const musicbrainz_release& choose_release(const std::vector<musicbrainz_release>& candidates) {
    if (candidates.empty()) throw musicbrainz_no_match();
    const musicbrainz_release* chosen = &candidates.front();
    for (const musicbrainz_release& candidate : candidates)
        if (std::strcmp(candidate.date.c_str(), chosen->date.c_str()) < 0) chosen = &candidate;
    return *chosen;
}
