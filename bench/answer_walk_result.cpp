// Comparing the three walks' results field by field, so that a disagreement names what differs.

#include "answer_walk.h"

namespace {

std::string joined(const std::vector<std::string>& texts) {
    std::string out;
    for (const std::string& t : texts) out += (out.empty() ? "\"" : ", \"") + t + "\"";
    return "[" + out + "]";
}

std::string differs(const std::string& what, const std::string& a, const std::string& b) {
    return what + ": \"" + a + "\" against \"" + b + "\"";
}

std::string release_difference(const musicbrainz_release& a, const musicbrainz_release& b) {
    if (a.title != b.title) return differs("title", a.title, b.title);
    if (a.date != b.date) return differs("date", a.date, b.date);
    if (a.album_artist != b.album_artist) return differs("album artist", joined(a.album_artist), joined(b.album_artist));
    if (a.disc_number != b.disc_number || a.total_discs != b.total_discs)
        return differs("disc number", std::to_string(a.disc_number) + "/" + std::to_string(a.total_discs),
                       std::to_string(b.disc_number) + "/" + std::to_string(b.total_discs));
    if (a.tracks.size() != b.tracks.size())
        return differs("track count", std::to_string(a.tracks.size()), std::to_string(b.tracks.size()));
    for (std::size_t t = 0; t < a.tracks.size(); ++t) {
        const std::string where = "track " + std::to_string(t + 1) + " ";
        if (a.tracks[t].title != b.tracks[t].title)
            return differs(where + "title", a.tracks[t].title, b.tracks[t].title);
        if (a.tracks[t].artist != b.tracks[t].artist)
            return differs(where + "artist", joined(a.tracks[t].artist), joined(b.tracks[t].artist));
    }
    return {};
}

} // namespace

std::string first_difference(const answer_walk_result& a, const answer_walk_result& b) {
    if (a.disc_ids != b.disc_ids) return differs("disc ids", joined(a.disc_ids), joined(b.disc_ids));
    if (a.candidates.size() != b.candidates.size())
        return differs("candidates", std::to_string(a.candidates.size()), std::to_string(b.candidates.size()));
    for (std::size_t i = 0; i < a.candidates.size(); ++i)
        if (std::string d = release_difference(a.candidates[i], b.candidates[i]); !d.empty())
            return "candidate " + std::to_string(i + 1) + ", " + d;
    return {};
}
