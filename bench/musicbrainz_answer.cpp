#include "musicbrainz_answer.h"

#include <cstdio>

namespace {

// A fixed-looking MusicBrainz identifier (8-4-4-4-12 hexadecimal digits) made from two numbers.
std::string mbid(unsigned kind, unsigned n) {
    char text[40];
    std::snprintf(text, sizeof text, "%08x-%04x-4%03x-8%03x-%012x", 0x5e1f0000u + kind, n & 0xFFFF, kind & 0xFFF,
                  n % 0xFFF, n * 7919u);
    return text;
}

// Another disc's id, 28 characters like the real ones.
std::string other_disc_id(unsigned release) {
    char text[32];
    std::snprintf(text, sizeof text, "Bench0ther%017uX", release);
    return text;
}

void artist_credit(std::string& out, unsigned artist, bool with_guest) {
    out += "<artist-credit><name-credit><artist id=\"" + mbid(3, artist) + "\"><name>R&#233;sonance " +
           std::to_string(artist) + "</name></artist></name-credit>";
    if (with_guest)
        out += "<name-credit joinphrase=\" feat. \"><artist id=\"" + mbid(4, artist) + "\"><name>Guest " +
               std::to_string(artist) + "</name></artist></name-credit>";
    out += "</artist-credit>";
}

void medium(std::string& out, unsigned release, unsigned position, const std::string& disc_id) {
    out += "<medium><position>" + std::to_string(position) + "</position><format>CD</format>";
    out += "<disc-list count=\"1\"><disc id=\"" + disc_id + "\"><sectors>" +
           std::to_string(200000 + release * 31 + position) + "</sectors></disc></disc-list>";
    out += "<track-list count=\"" + std::to_string(answer_track_count) + "\" offset=\"0\">";
    for (unsigned t = 1; t <= answer_track_count; ++t) {
        const unsigned n = (release * 2 + position) * 100 + t;
        out += "<track><number>" + std::to_string(t) + "</number>";
        out += "<recording id=\"" + mbid(2, n) + "\"><title>Part " + std::to_string(t) +
               (t % 3 == 0 ? " &amp; Reprise" : "") + (t % 5 == 0 ? " (ライブ)" : "") + "</title>";
        artist_credit(out, release, t % 6 == 0);
        out += "</recording></track>";
    }
    out += "</track-list></medium>";
}

} // namespace

std::string make_musicbrainz_answer(unsigned releases) {
    std::string out = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                      "<metadata xmlns=\"http://musicbrainz.org/ns/mmd-2.0#\"><disc id=\"";
    out += answer_disc_id;
    out += "\"><sectors>215886</sectors><release-list count=\"" + std::to_string(releases) + "\">";
    for (unsigned r = 1; r <= releases; ++r) {
        out += "<release id=\"" + mbid(1, r) + "\"><title>Suite N&#176;" + std::to_string(r) +
               " &amp; Other Pieces</title><status>Official</status><quality>normal</quality>";
        artist_credit(out, r, false);
        out += "<date>" + std::to_string(1990 + r % 30) + "-0" + std::to_string(1 + r % 9) + "-1" +
               std::to_string(r % 10) + "</date><country>XE</country>";
        out += "<medium-list count=\"2\">";
        // The disc under test is the first medium of odd releases and the second of even ones.
        medium(out, r, 1, r % 2 ? answer_disc_id : other_disc_id(r));
        medium(out, r, 2, r % 2 ? other_disc_id(r) : answer_disc_id);
        out += "</medium-list></release>";
    }
    out += "</release-list></disc></metadata>\n";
    return out;
}
