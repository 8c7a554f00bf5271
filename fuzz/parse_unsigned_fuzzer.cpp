// The number reader of MusicBrainz answers on arbitrary bytes, checked against a reference that
// compares digit strings instead of doing arithmetic: the value of the digits before the first
// other byte, whether it exceeds 2^32 - 1, and whether another byte follows. Only the two
// documented failures may leave the reader; anything else ends the run as a crash.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "fuzz_checks.h"
#include "musicbrainz/parse_unsigned.h"
#include "xml/zr_exceptions.h"

namespace {

constexpr std::string_view largest = "4294967295";  // 2^32 - 1

struct reference {
    bool other_byte = false;   // a byte that is not a decimal digit
    bool too_large = false;    // the digits before it exceed 2^32 - 1
    std::uint32_t value = 0;   // their value when they do not
};

reference read_reference(std::string_view text) {
    reference r;
    std::size_t digits = 0;
    while (digits < text.size() && text[digits] >= '0' && text[digits] <= '9') ++digits;
    r.other_byte = digits < text.size();
    std::string_view number = text.substr(0, digits);
    while (!number.empty() && number.front() == '0') number.remove_prefix(1);
    // Without leading zeros, a longer digit string is a larger number, and one of equal length
    // compares as text.
    r.too_large = number.size() > largest.size() || (number.size() == largest.size() && number > largest);
    if (!r.too_large)
        for (char c : number) r.value = r.value * 10 + static_cast<std::uint32_t>(c - '0');
    return r;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const char* text = reinterpret_cast<const char*>(data);
    const reference expected = read_reference(std::string_view(text, size));
    try {
        const std::uint32_t value = parse_unsigned(text, size);
        require(!expected.other_byte, "a text with a non-digit is refused");
        require(!expected.too_large, "a number above 2^32 - 1 is refused");
        require(value == expected.value, "the value is the one the digits spell");
    } catch (const ZR::overflow& e) {
        // Either failure is right for digits out of range followed by another byte; only the
        // digits before that byte can make an overflow.
        require(expected.too_large, "overflow only for a number above 2^32 - 1");
        require(std::strcmp(e.what(), "overflow") == 0, "an overflow says \"overflow\"");
    } catch (const ZR::invalid_input& e) {
        require(expected.other_byte, "invalid input only for a text with a non-digit");
        require(std::strcmp(e.what(), "invalid input") == 0, "a refused text says \"invalid input\"");
    }
    return 0;
}
