#pragma once
// One CDDB database entry, or the part of one that a query answer names (category, disc id and
// title). The tagger edits copies of it.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

class disc_record {
public:
    // Length meaning "up to the terminating NUL".
    static constexpr std::size_t npos = static_cast<std::size_t>(-1);
    // Value of `disc_length` and of a track offset that the entry did not give.
    static constexpr std::uint32_t unknown = 0xFFFFFFFF;

    // Text fields, by index.
    enum field : unsigned { category, discid, dtitle, dyear, dgenre, extd, submitted_via, field_count };
    // Text fields of a track, by index.
    enum track_field : unsigned { ttitle, extt, track_field_count };

    disc_record() = default;
    // A copy keeps the texts, the track count and the various-artists flag only: disc length,
    // revision and offsets describe the server's entry, not what the user edits.
    disc_record(const disc_record& other);
    disc_record& operator=(const disc_record& other);
    disc_record(disc_record&&) noexcept = default;
    disc_record& operator=(disc_record&&) noexcept = default;
    virtual ~disc_record() = default;

    virtual std::uint32_t get_disc_length() const { return disc_length_; }
    virtual void set_disc_length(std::uint32_t seconds) { disc_length_ = seconds; }
    virtual std::uint32_t get_revision() const { return revision_; }
    virtual void set_revision(std::uint32_t revision) { revision_ = revision; }

    // Indices are not range-checked (here and for tracks): callers grow the track list first.
    virtual const char* get_field(unsigned index) const { return fields_[index].c_str(); }
    // `length` bytes of `text`, stopping early at a NUL.
    virtual void set_field(unsigned index, const char* text, std::size_t length = npos);
    // With `unescape`, "\\", "\n" and "\t" become their characters and any other backslash
    // ends the value there.
    virtual void append_field(unsigned index, const char* text, std::size_t length, bool unescape);

    virtual bool get_various_artists() const { return various_artists_; }
    virtual void set_various_artists(bool various) { various_artists_ = various; }

    virtual std::size_t get_track_count() const { return tracks_.size(); }
    // Grows with empty tracks of unknown offset, or drops tracks from the end.
    virtual void set_track_count(std::size_t count);
    virtual std::uint32_t get_track_offset(std::size_t track) const { return tracks_[track].offset; }
    virtual void set_track_offset(std::size_t track, std::uint32_t offset) { tracks_[track].offset = offset; }

    virtual const char* get_track_field(std::size_t track, unsigned which) const {
        return tracks_[track].fields[which].c_str();
    }
    virtual void set_track_field(std::size_t track, unsigned which, const char* text, std::size_t length = npos);
    virtual void append_track_field(std::size_t track, unsigned which, const char* text, std::size_t length,
                                    bool unescape);

private:
    struct track_entry {
        std::uint32_t offset = unknown;
        std::string fields[track_field_count];
    };

    std::string fields_[field_count];
    std::vector<track_entry> tracks_;
    std::uint32_t disc_length_ = unknown;
    std::uint32_t revision_ = 0;
    bool various_artists_ = false;
};

// Appends `text` (up to `length` bytes or the first NUL) to `out`, unescaping as
// disc_record::append_field describes.
void append_unescaped(std::string& out, const char* text, std::size_t length);
