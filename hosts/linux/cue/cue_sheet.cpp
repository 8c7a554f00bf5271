#include "cue_sheet.h"

#include <tunehall/exceptions.h>
#include <tunehall/text.h>

// A cue sheet as rippers write it (one FILE for the disc here; a sheet may also give one FILE per
// track, or a MODE1/2352 data track):
//
//   REM GENRE Rock
//   REM DATE 1998
//   PERFORMER "The Band"
//   TITLE "The Album"
//   FILE "album.flac" WAVE
//     TRACK 01 AUDIO
//       TITLE "Hidden Intro"
//       INDEX 00 00:00:00
//       INDEX 01 00:32:00
//     TRACK 02 AUDIO
//       TITLE "Second"
//       PREGAP 00:02:00
//       INDEX 01 04:10:37
//
// Times are minutes:seconds:frames, 75 frames per second. Keywords not listed here (CATALOG,
// ISRC, FLAGS, SONGWRITER, other REMs, ...) are kept as they are and otherwise ignored.

namespace linux_cue {

namespace {

std::string upper(std::string s) {
    for (char& c : s)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    return s;
}

// One line split into words; a word in double quotes may hold spaces.
struct line_words {
    std::vector<std::string> words;
    bool bad_quote = false;
};

line_words split_words(const std::string& line) {
    line_words out;
    std::size_t i = 0;
    while (i < line.size()) {
        if (line[i] == ' ' || line[i] == '\t') {
            ++i;
            continue;
        }
        std::string word;
        if (line[i] == '"') {
            const std::size_t close = line.find('"', i + 1);
            if (close == std::string::npos) {
                out.bad_quote = true;
                return out;
            }
            word = line.substr(i + 1, close - i - 1);
            i = close + 1;
        } else {
            while (i < line.size() && line[i] != ' ' && line[i] != '\t') word += line[i++];
        }
        out.words.push_back(std::move(word));
    }
    return out;
}

// The rest of the line after its first `skip` words, unquoted when it is one quoted word: REM
// values are often written without quotes ("REM DATE 1998", "REM COMMENT ripped by hand").
std::string rest_after(const std::string& line, std::size_t skip) {
    std::size_t i = 0;
    for (std::size_t w = 0; w < skip; ++w) {
        while (i < line.size() && (line[i] == ' ' || line[i] == '\t')) ++i;
        while (i < line.size() && line[i] != ' ' && line[i] != '\t') ++i;
    }
    while (i < line.size() && (line[i] == ' ' || line[i] == '\t')) ++i;
    std::string rest = line.substr(i);
    while (!rest.empty() && (rest.back() == ' ' || rest.back() == '\t')) rest.pop_back();
    if (rest.size() >= 2 && rest.front() == '"' && rest.back() == '"') rest = rest.substr(1, rest.size() - 2);
    return rest;
}

// The sheet's lines without line ends (LF or CRLF) and without a leading byte order mark.
std::vector<std::string> split_lines(const std::string& text) {
    std::vector<std::string> lines;
    std::size_t start = text.compare(0, 3, "\xEF\xBB\xBF") == 0 ? 3 : 0;
    while (start < text.size()) {
        std::size_t end = text.find('\n', start);
        if (end == std::string::npos) end = text.size();
        std::string line = text.substr(start, end - start);
        if (!line.empty() && line.back() == '\r') line.pop_back();
        lines.push_back(std::move(line));
        start = end + 1;
    }
    return lines;
}

// What each line is, for reading and for editing in place.
enum class line_kind { other, file, track, title, performer, rem_date, rem_genre, rem_comment };

struct scanned {
    cue_sheet sheet;
    std::vector<std::string> lines;
    std::vector<line_kind> kinds;
    std::vector<std::size_t> owner;  // the track a line belongs to, npos before the first TRACK
};

constexpr std::size_t no_track = static_cast<std::size_t>(-1);

class line_error {
public:
    line_error(const std::string& name, std::size_t line) : prefix_("Bad cue sheet " + name + ", line " + std::to_string(line) + ": ") {}
    [[noreturn]] void fail(const std::string& what) const { throw exception_bad_cuesheet(prefix_ + what); }

private:
    std::string prefix_;
};

// "mm:ss:ff" with seconds below 60 and frames below 75, as frames.
std::uint32_t parse_time(const std::string& text, const line_error& error) {
    unsigned long parts[3] = {0, 0, 0};
    std::size_t p = 0;
    for (int k = 0; k < 3; ++k) {
        const std::size_t begin = p;
        while (p < text.size() && text[p] >= '0' && text[p] <= '9' && p - begin < 6) parts[k] = parts[k] * 10 + static_cast<unsigned long>(text[p++] - '0');
        if (p == begin || (k < 2 && (p >= text.size() || text[p++] != ':'))) error.fail("'" + text + "' is not a time mm:ss:ff");
    }
    if (p != text.size()) error.fail("'" + text + "' is not a time mm:ss:ff");
    if (parts[1] >= 60 || parts[2] >= 75) error.fail("'" + text + "' is not a time mm:ss:ff (seconds below 60, frames below 75)");
    return static_cast<std::uint32_t>(parts[0] * 4500 + parts[1] * 75 + parts[2]);
}

unsigned parse_number(const std::string& text, unsigned low, unsigned high, const char* what, const line_error& error) {
    unsigned long n = 0;
    for (char c : text) {
        if (c < '0' || c > '9' || n > high) error.fail(std::string(what) + " '" + text + "' is not a number from " + std::to_string(low) + " to " + std::to_string(high));
        n = n * 10 + static_cast<unsigned long>(c - '0');
    }
    if (text.empty() || n < low || n > high)
        error.fail(std::string(what) + " '" + text + "' is not a number from " + std::to_string(low) + " to " + std::to_string(high));
    return static_cast<unsigned>(n);
}

scanned scan(const std::string& text, const std::string& name) {
    scanned s;
    s.lines = split_lines(text);
    cue_sheet& sheet = s.sheet;
    std::size_t track_line = 0;
    std::size_t last_index_file = 0;
    auto finish_track = [&] {
        if (sheet.tracks.empty()) return;
        const cue_track& t = sheet.tracks.back();
        bool has_start = false;
        for (auto& i : t.indices) has_start = has_start || i.number == 1;
        if (!has_start) line_error(name, track_line).fail("TRACK " + std::to_string(t.number) + " has no INDEX 01");
    };
    for (std::size_t n = 0; n < s.lines.size(); ++n) {
        const std::string& line = s.lines[n];
        const line_error error(name, n + 1);
        line_words split = split_words(line);
        if (split.bad_quote) error.fail("a quote is not closed");
        line_kind kind = line_kind::other;
        const std::size_t current = sheet.tracks.empty() ? no_track : sheet.tracks.size() - 1;
        if (!split.words.empty()) {
            const std::vector<std::string>& w = split.words;
            const std::string key = upper(w[0]);
            if (key == "FILE") {
                if (w.size() != 3) error.fail("FILE takes a quoted file name and a type");
                sheet.files.push_back({w[1], upper(w[2])});
                kind = line_kind::file;
            } else if (key == "TRACK") {
                if (sheet.files.empty()) error.fail("TRACK before any FILE");
                if (w.size() != 3) error.fail("TRACK takes a number and a mode");
                finish_track();
                cue_track t;
                t.number = parse_number(w[1], 1, 99, "track number", error);
                if (!sheet.tracks.empty() && t.number <= sheet.tracks.back().number) error.fail("track numbers must increase");
                t.file = sheet.files.size() - 1;
                t.audio = upper(w[2]) == "AUDIO";
                sheet.tracks.push_back(std::move(t));
                track_line = n + 1;
                kind = line_kind::track;
            } else if (key == "INDEX") {
                if (current == no_track) error.fail("INDEX before any TRACK");
                if (w.size() != 3) error.fail("INDEX takes a number and a time");
                cue_track& t = sheet.tracks.back();
                cue_index i{parse_number(w[1], 0, 99, "index number", error), parse_time(w[2], error)};
                if (!t.indices.empty() && i.number <= t.indices.back().number) error.fail("index numbers must increase");
                // A FILE line between a track's INDEX 00 and INDEX 01 moves the track to that file.
                if (i.number == 1) t.file = sheet.files.size() - 1;
                if (!t.indices.empty() && last_index_file == sheet.files.size() - 1 && i.frames < t.indices.back().frames)
                    error.fail("INDEX " + w[1] + " comes before the index above it");
                t.indices.push_back(i);
                last_index_file = sheet.files.size() - 1;
            } else if (key == "PREGAP" || key == "POSTGAP") {
                if (current == no_track) error.fail(key + " before any TRACK");
                if (w.size() != 2) error.fail(key + " takes a time");
                (key == "PREGAP" ? sheet.tracks.back().pregap : sheet.tracks.back().postgap) = parse_time(w[1], error);
            } else if (key == "TITLE" || key == "PERFORMER") {
                const std::string value = rest_after(line, 1);
                const bool title = key == "TITLE";
                if (current == no_track)
                    (title ? sheet.title : sheet.performer) = value;
                else
                    (title ? sheet.tracks.back().title : sheet.tracks.back().performer) = value;
                kind = title ? line_kind::title : line_kind::performer;
            } else if (key == "REM" && w.size() >= 2) {
                const std::string what = upper(w[1]);
                const std::string value = rest_after(line, 2);
                if (what == "COMMENT") {
                    (current == no_track ? sheet.comments : sheet.tracks.back().comments).push_back(value);
                    kind = line_kind::rem_comment;
                } else if (current == no_track && (what == "DATE" || what == "GENRE")) {
                    (what == "DATE" ? sheet.date : sheet.genre) = value;
                    kind = what == "DATE" ? line_kind::rem_date : line_kind::rem_genre;
                }
            }
        }
        s.kinds.push_back(kind);
        // A TRACK line opens its own track's block.
        s.owner.push_back(kind == line_kind::file ? no_track : kind == line_kind::track ? sheet.tracks.size() - 1 : current);
    }
    finish_track();
    if (sheet.tracks.empty()) line_error(name, s.lines.size()).fail("no TRACK in the sheet");
    return s;
}

std::string quoted(const std::string& value) {
    // A cue sheet has no escape for a quote inside a quoted value.
    std::string v = value;
    for (char& c : v)
        if (c == '"') c = '\'';
    return "\"" + v + "\"";
}

std::vector<std::string> values_of(const tag_record& tags, const char* name) {
    std::vector<std::string> out;
    const std::size_t f = tags.find_field(name);
    if (f != tag_record::npos)
        for (std::size_t v = 0; v < tags.value_count(f); ++v) out.push_back(tags.value(f, v));
    return out;
}

std::string first_of(const tag_record& tags, const char* name) {
    const char* v = tags.first_value(name);
    return v ? v : "";
}

} // namespace

std::uint32_t cue_track::start() const {
    for (auto& i : indices)
        if (i.number == 1) return i.frames;
    return 0;
}

cue_sheet parse_cue_sheet(const std::string& text, const std::string& name) { return scan(text, name).sheet; }

tag_record cue_track_tags(const cue_sheet& sheet, std::size_t track) {
    const cue_track& t = sheet.tracks.at(track);
    tag_record tags;
    const std::string artist = t.performer.empty() ? sheet.performer : t.performer;
    if (!artist.empty()) tags.set_field("artist", artist);
    if (!t.title.empty()) tags.set_field("title", t.title);
    if (!sheet.title.empty()) tags.set_field("album", sheet.title);
    if (!sheet.performer.empty() && sheet.performer != artist) tags.set_field("album artist", sheet.performer);
    if (!sheet.date.empty()) tags.set_field("date", sheet.date);
    if (!sheet.genre.empty()) tags.set_field("genre", sheet.genre);
    for (auto& c : t.comments.empty() ? sheet.comments : t.comments) tags.add_tag_value("comment", c);
    tags.set_field("tracknumber", std::to_string(t.number));
    tags.set_field("totaltracks", std::to_string(sheet.tracks.size()));
    return tags;
}

std::string with_track_tags(const std::string& text, const std::string& name, std::size_t track, const tag_record& tags) {
    scanned s = scan(text, name);
    if (track >= s.sheet.tracks.size()) throw tunehall_io::exception_io_data("No track " + std::to_string(track + 1) + " in " + name);

    // The disc's performer is the album artist, or for a single-artist album its artist.
    std::string disc_performer = first_of(tags, "album artist");
    if (disc_performer.empty()) disc_performer = first_of(tags, "artist");
    std::vector<std::string> disc_lines;
    if (auto v = first_of(tags, "genre"); !v.empty()) disc_lines.push_back("REM GENRE " + quoted(v));
    if (auto v = first_of(tags, "date"); !v.empty()) disc_lines.push_back("REM DATE " + quoted(v));
    for (auto& c : values_of(tags, "comment")) disc_lines.push_back("REM COMMENT " + quoted(c));
    if (!disc_performer.empty()) disc_lines.push_back("PERFORMER " + quoted(disc_performer));
    if (auto v = first_of(tags, "album"); !v.empty()) disc_lines.push_back("TITLE " + quoted(v));
    std::vector<std::string> track_lines;
    if (auto v = first_of(tags, "title"); !v.empty()) track_lines.push_back("    TITLE " + quoted(v));
    if (auto v = first_of(tags, "artist"); !v.empty()) track_lines.push_back("    PERFORMER " + quoted(v));

    // The new lines go where the old ones of their kind were: the disc's where its first such
    // line was (else before the first FILE), the track's right after its TRACK line.
    auto ours = [&](std::size_t n) {
        const line_kind k = s.kinds[n];
        if (s.owner[n] == no_track) return k == line_kind::title || k == line_kind::performer || k == line_kind::rem_date ||
                                           k == line_kind::rem_genre || k == line_kind::rem_comment;
        return s.owner[n] == track && (k == line_kind::title || k == line_kind::performer || k == line_kind::rem_comment);
    };
    std::size_t disc_at = no_track;
    for (std::size_t n = 0; n < s.lines.size() && disc_at == no_track; ++n)
        if ((ours(n) && s.owner[n] == no_track) || s.kinds[n] == line_kind::file || s.kinds[n] == line_kind::track) disc_at = n;

    const std::string eol = text.find("\r\n") != std::string::npos ? "\r\n" : "\n";
    std::string out;
    for (std::size_t n = 0; n < s.lines.size(); ++n) {
        if (n == disc_at)
            for (auto& l : disc_lines) out += l + eol;
        if (!ours(n)) out += s.lines[n] + eol;
        if (s.kinds[n] == line_kind::track && s.owner[n] == track)
            for (auto& l : track_lines) out += l + eol;
    }
    return out;
}

} // namespace linux_cue
