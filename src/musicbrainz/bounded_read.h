#pragma once
// Reading a web-service answer (or a cached one) whole, with a ceiling: one disc's releases take
// a few hundred kilobytes at most, so anything far larger is not an answer worth parsing.

#include <cstddef>
#include <string>

#include <tunehall/stream.h>

inline constexpr std::size_t max_answer_bytes = 8 * 1024 * 1024;

// The rest of `f`; more than max_answer_bytes raises tunehall_io::exception_io_data.
std::string read_bounded(file& f, abort_source& abort);
