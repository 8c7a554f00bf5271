// The parser of one line of a "sites" answer, on arbitrary bytes (the transport's line reader
// is left out so that CR, LF and non-UTF-8 bytes reach it too).

#include <cstddef>
#include <cstdint>
#include <exception>
#include <string_view>

#include "cddb/sites_handler.h"
#include "fuzz_checks.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    server_record site;
    try {
        site = parse_site_line(std::string_view(reinterpret_cast<const char*>(data), size));
    } catch (const std::exception&) {
        return 0;
    }
    check_site(site);
    return 0;
}
