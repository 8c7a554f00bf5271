// The xmcd parser on arbitrary bytes, fed as a read answer's body reaches it: cut into lines,
// then the entry finished. Most inputs are rejected with the parser's own failures; a crash, a
// leak, a sanitizer report or a broken property of the finished entry is a fault.

#include <cstddef>
#include <cstdint>
#include <exception>
#include <string_view>

#include "answer_lines.h"
#include "cddb/disc_record.h"
#include "cddb/xmcd_parser.h"
#include "fuzz_checks.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    disc_record record;
    xmcd_parser parser(record);
    try {
        for_each_answer_line(std::string_view(reinterpret_cast<const char*>(data), size),
                             [&parser](std::string_view line) { parser.feed_line(line); });
        finish_disc_record(record);
    } catch (const std::exception&) {
        return 0;
    }
    check_entry(record);
    return 0;
}
