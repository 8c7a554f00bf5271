#include "cddb/line_reader.h"

#include <cstdint>
#include <string>

#include <tunehall/exceptions.h>

bool is_valid_utf8(std::string_view text) {
    auto p = reinterpret_cast<const unsigned char*>(text.data());
    const unsigned char* end = p + text.size();
    while (p < end) {
        unsigned char lead = *p;
        if (lead < 0x80) {
            ++p;
            continue;
        }
        std::size_t length;
        std::uint32_t cp;
        std::uint32_t smallest;
        if ((lead & 0xE0) == 0xC0) {
            length = 2, cp = lead & 0x1Fu, smallest = 0x80;
        } else if ((lead & 0xF0) == 0xE0) {
            length = 3, cp = lead & 0x0Fu, smallest = 0x800;
        } else if ((lead & 0xF8) == 0xF0) {
            length = 4, cp = lead & 0x07u, smallest = 0x10000;
        } else {
            return false;
        }
        if (static_cast<std::size_t>(end - p) < length) return false;
        for (std::size_t i = 1; i < length; ++i) {
            if ((p[i] & 0xC0) != 0x80) return false;
            cp = (cp << 6) | (p[i] & 0x3Fu);
        }
        if (cp < smallest || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return false;
        p += length;
    }
    return true;
}

void read_answer_lines(stream_reader& in, response_handler& handler, abort_source& abort) {
    std::string line;
    auto deliver = [&] {
        if (line.empty()) return;
        // Servers answer in UTF-8 at this protocol level; anything else would turn into
        // mojibake in the user's tags. A NUL never belongs in a text answer: every field ends at
        // one, so a line carrying it would pass its checks here and arrive cut short.
        if (!is_valid_utf8(line) || line.find('\0') != std::string::npos) throw tunehall_io::exception_io_data();
        handler.on_line(line);
        line.clear();
    };
    for (;;) {
        abort.check();
        if (line.size() > max_answer_line) throw tunehall_io::exception_io_data();
        char c;
        if (in.read(&c, 1, abort) == 0) break;
        if (c == '\r' || c == '\n')
            deliver();
        else
            line += c;
    }
    deliver();
    handler.on_finish();
}
