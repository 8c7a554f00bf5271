#pragma once
// Cuts a CDDB answer into lines for a response handler. CR, LF and CR LF all end a line, and
// empty lines carry nothing, so they are never passed on.

#include <cstddef>
#include <string_view>

#include <tunehall/abort.h>
#include <tunehall/stream.h>

#include "cddb/response_handler.h"

// No line of a real answer comes near this; a longer one means the stream is not an answer.
inline constexpr std::size_t max_answer_line = 16384;

// Reads `in` to its end one byte at a time, checking `abort` before each byte, hands every
// non-empty line to `handler` and then calls its on_finish. Raises tunehall_io::exception_io_data
// (default text) for a line longer than max_answer_line, one that is not UTF-8, or one that
// carries a NUL byte.
void read_answer_lines(stream_reader& in, response_handler& handler, abort_source& abort);

// Well-formed UTF-8: no stray continuation bytes, no over-long forms, no surrogates, nothing
// above U+10FFFF.
bool is_valid_utf8(std::string_view text);
