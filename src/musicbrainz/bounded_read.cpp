#include "musicbrainz/bounded_read.h"

#include <cstdint>

namespace {

[[noreturn]] void refuse() { throw tunehall_io::exception_io_data("MusicBrainz answer larger than 8 MiB"); }

} // namespace

std::string read_bounded(file& f, abort_source& abort) {
    // A declared size over the ceiling is refused before any byte is read.
    const std::uint64_t declared = f.size(abort);
    if (declared != UINT64_MAX && declared > max_answer_bytes) refuse();
    std::string out;
    char chunk[16384];
    for (;;) {
        const std::size_t n = f.read(chunk, sizeof chunk, abort);
        if (n == 0) return out;
        if (n > max_answer_bytes - out.size()) refuse();
        out.append(chunk, n);
    }
}
