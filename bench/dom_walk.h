#pragma once
// The response walk over a tree that a peer library built, rule for rule the one our reader runs
// (the one child must be the only one, a disc without an id or a medium without a disc list
// ends the walk, a medium with a part missing or its numbers off is passed over, tracks fill
// their slots by number), so that the peers do the same work to reach the same result.
//
// `Dom` supplies, for elements in the MusicBrainz namespace:
//   using node;                                          an element (or the document)
//   static void for_each_child(node, const char* name, F f)   f(child) for each child element
//   static bool attribute(node, const char* name, std::string& value)   false when absent
//   static bool text(node, std::string& text)            false when it has child elements

#include <cstdint>
#include <string>
#include <string_view>

#include "answer_walk.h"
#include "musicbrainz/parse_unsigned.h"
#include "xml/zr_exceptions.h"

template <typename Dom>
class dom_walk {
public:
    using node = typename Dom::node;

    static answer_walk_result run(node document, std::string_view disc_id, std::size_t track_count) {
        answer_walk_result result;
        node metadata;
        try {
            metadata = one_child(document, "metadata");
        } catch (const unwalkable&) {
            throw ZR::invalid_input("no metadata element");
        }
        collect_disc_ids(metadata, result.disc_ids);
        Dom::for_each_child(metadata, "disc", [&](node disc) { collect_disc_ids(disc, result.disc_ids); });
        read_candidates(metadata, disc_id, track_count, result.candidates);
        Dom::for_each_child(metadata, "disc",
                            [&](node disc) { read_candidates(disc, disc_id, track_count, result.candidates); });
        return result;
    }

private:
    struct unwalkable {};

    static node one_child(node parent, const char* name) {
        node found{};
        int count = 0;
        Dom::for_each_child(parent, name, [&](node child) {
            found = child;
            ++count;
        });
        if (count != 1) throw unwalkable();
        return found;
    }

    static std::string attribute(node e, const char* name) {
        std::string value;
        if (!Dom::attribute(e, name, value)) throw unwalkable();
        return value;
    }

    static std::string text_of(node e) {
        std::string text;
        if (!Dom::text(e, text)) throw unwalkable();
        return text;
    }

    static std::uint32_t number(const std::string& text) { return parse_unsigned(text.data(), text.size()); }

    template <typename Visit>
    static void for_each_medium(node holder, Visit visit) {
        try {
            node release_list = one_child(holder, "release-list");
            Dom::for_each_child(release_list, "release", [&](node release) {
                node medium_list = one_child(release, "medium-list");
                Dom::for_each_child(medium_list, "medium", [&](node medium) {
                    visit(release, medium_list, medium, one_child(medium, "disc-list"));
                });
            });
        } catch (const unwalkable&) {
        }
    }

    static void collect_disc_ids(node holder, std::vector<std::string>& out) {
        for_each_medium(holder, [&](node, node, node, node disc_list) {
            Dom::for_each_child(disc_list, "disc", [&](node disc) { out.push_back(attribute(disc, "id")); });
        });
    }

    static std::vector<std::string> artist_credit(node e) {
        std::vector<std::string> artists;
        Dom::for_each_child(e, "artist-credit", [&](node credit) {
            Dom::for_each_child(credit, "name-credit", [&](node name_credit) {
                Dom::for_each_child(name_credit, "artist",
                                    [&](node artist) { artists.push_back(text_of(one_child(artist, "name"))); });
            });
        });
        return artists;
    }

    static musicbrainz_release read_medium(node release, node medium_list, node medium, std::size_t track_count) {
        node track_list = one_child(medium, "track-list");
        if (number(attribute(track_list, "count")) != track_count) throw unwalkable();
        std::size_t tracks = 0;
        Dom::for_each_child(track_list, "track", [&](node) { ++tracks; });
        if (tracks != track_count) throw unwalkable();

        musicbrainz_release result;
        result.disc_number = number(text_of(one_child(medium, "position")));
        result.total_discs = number(attribute(medium_list, "count"));
        result.tracks.resize(track_count);
        result.title = text_of(one_child(release, "title"));
        result.album_artist = artist_credit(release);
        result.date = text_of(one_child(release, "date"));
        Dom::for_each_child(track_list, "track", [&](node track) {
            const std::uint32_t n = number(text_of(one_child(track, "number")));
            if (n == 0 || n > track_count) throw unwalkable();
            node recording = one_child(track, "recording");
            musicbrainz_track& slot = result.tracks[n - 1];
            slot.title = text_of(one_child(recording, "title"));
            slot.artist = artist_credit(recording);
        });
        return result;
    }

    static void read_candidates(node holder, std::string_view disc_id, std::size_t track_count,
                                std::vector<musicbrainz_release>& out) {
        for_each_medium(holder, [&](node release, node medium_list, node medium, node disc_list) {
            bool listed = false;
            Dom::for_each_child(disc_list, "disc", [&](node disc) {
                if (attribute(disc, "id") == disc_id) listed = true;
            });
            if (!listed) return;
            try {
                out.push_back(read_medium(release, medium_list, medium, track_count));
            } catch (const unwalkable&) {
            } catch (const ZR::invalid_input&) {
            } catch (const ZR::overflow&) {
            }
        });
    }
};
