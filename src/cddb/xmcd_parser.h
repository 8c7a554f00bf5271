#pragma once
// Reads an xmcd database entry line by line into a disc_record: "#" comment lines carry the
// signature, the frame offsets, the disc length, the revision and the submitting program;
// keyword lines carry the texts, a repeated keyword continuing its value.

#include <string_view>

#include "cddb/disc_record.h"

class xmcd_parser {
public:
    explicit xmcd_parser(disc_record& record) : record_(record) {}

    // One line without its terminator; an empty line is ignored. Raises
    // tunehall_io::exception_io_data "CDDB: Signature mismatch" or "CDDB: Unrecognized keyword '...'".
    void feed_line(std::string_view line);

private:
    enum class state { before_signature, frame_offsets, header, after_submitted };

    void comment_line(std::string_view line);
    void header_comment(std::string_view text);
    void keyword_line(std::string_view line);

    disc_record& record_;
    state state_ = state::before_signature;
};

// The parts of a DTITLE around its first " / "; without one, both are the whole title.
struct artist_and_album {
    std::string_view artist;
    std::string_view album;
};
artist_and_album split_dtitle(std::string_view dtitle);

// Completes a parsed entry: the various-artists flag is set when the artist is "various" or
// "various artists" (any case), or else when any track title names its own artist with " / ".
void finish_disc_record(disc_record& record);
