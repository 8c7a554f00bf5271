// A whole CDDB answer read through the transport's line reader into one command's response
// handler. The first byte picks the command (its value modulo 4: query, read, sites, lscat, so
// the digits "0" to "3" name them in a seed file); the remaining bytes are the answer as the
// server sent it.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <exception>
#include <string_view>

#include <tunehall/abort.h>
#include <tunehall/stream.h>

#include "cddb/line_reader.h"
#include "cddb/lscat_handler.h"
#include "cddb/query_handler.h"
#include "cddb/read_handler.h"
#include "cddb/sites_handler.h"
#include "fuzz_checks.h"

namespace {

// The answer's bytes as the stream the host would return for the HTTP GET.
class memory_reader final : public stream_reader {
public:
    explicit memory_reader(std::string_view bytes) : rest_(bytes) {}

    std::size_t read(void* buffer, std::size_t size, abort_source& abort) override {
        abort.check();
        std::size_t n = std::min(size, rest_.size());
        std::memcpy(buffer, rest_.data(), n);
        rest_.remove_prefix(n);
        return n;
    }

private:
    std::string_view rest_;
};

// Returns whether the answer was accepted; a rejected answer is an expected outcome.
bool read_answer(std::string_view answer, response_handler& handler) {
    memory_reader in(answer);
    abort_source_dummy abort;
    try {
        read_answer_lines(in, handler, abort);
    } catch (const std::exception&) {
        return false;
    }
    require(!handler.body_pending(), "an accepted answer has no announced body left unread");
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    std::string_view answer(reinterpret_cast<const char*>(data) + 1, size - 1);
    switch (data[0] % 4) {
    case 0: {
        query_handler handler([](disc_record&& match, bool) { check_match(match); });
        read_answer(answer, handler);
        break;
    }
    case 1: {
        int entries = 0;
        read_handler handler("misc", [&entries](disc_record&& entry) {
            ++entries;
            require(std::string_view(entry.get_field(disc_record::category)) == "misc",
                    "an entry keeps the category it was read from");
            check_entry(entry);
        });
        bool accepted = read_answer(answer, handler);
        require(!accepted || entries == 1, "an accepted read answer delivers exactly one entry");
        break;
    }
    case 2: {
        sites_handler handler([](server_record&& site) { check_site(site); });
        read_answer(answer, handler);
        break;
    }
    case 3: {
        lscat_handler handler;
        read_answer(answer, handler);
        break;
    }
    }
    return 0;
}
