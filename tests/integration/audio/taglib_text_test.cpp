// TagLib's strings as the host's UTF-8: byte for byte what TagLib's own conversion gives, for text
// beyond ASCII too, and for strings that are not valid UTF-16.

#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <taglib/tstring.h>

#include "audio/taglib_text.h"

using linux_audio::utf8_of;

namespace {

struct valid_case {
    const char* what;
    std::string utf8;
};

// Each one-, two-, three- and four-byte form, their edges, and ASCII before and after the others
// (the conversion takes ASCII a faster way until the first character beyond it).
const valid_case valid_cases[] = {
    {"empty", ""},
    {"ASCII", "Track 01 / Side A"},
    {"two bytes", "\xc3\x9cn\xc3\xaf" "code"},                    // Ünïcode
    {"ASCII, then two bytes", "Caf\xc3\xa9"},                     // Café
    {"three bytes", "\xe6\x97\xa5\xe6\x9c\xac\xe8\xaa\x9e"},      // 日本語
    {"four bytes (a surrogate pair)", "\xf0\x9f\x8e\xb5 Song"},  // U+1F3B5, then ASCII
    {"edges of each length", "\x7f\xc2\x80\xdf\xbf\xe0\xa0\x80\xef\xbf\xbd\xf0\x90\x80\x80\xf4\x8f\xbf\xbf"},
};

} // namespace

TEST(utf8_of, valid_text_comes_back_as_the_utf8_it_was_made_from) {
    for (const valid_case& c : valid_cases) {
        SCOPED_TRACE(c.what);
        const TagLib::String text(c.utf8, TagLib::String::UTF8);
        EXPECT_EQ(utf8_of(text), c.utf8);
        EXPECT_EQ(utf8_of(text), text.to8Bit(true));
    }
}

TEST(utf8_of, units_that_are_not_utf16_give_what_taglib_gives) {
    struct unit_case {
        const char* what;
        std::vector<wchar_t> units;
    };
    const unit_case cases[] = {
        {"a high surrogate alone", {L'a', static_cast<wchar_t>(0xd83c), L'b'}},
        {"a high surrogate at the end", {L'a', static_cast<wchar_t>(0xd83c)}},
        {"a low surrogate alone", {static_cast<wchar_t>(0xdfb5), L'b'}},
        {"a pair in the wrong order", {static_cast<wchar_t>(0xdfb5), static_cast<wchar_t>(0xd83c)}},
    };
    for (const unit_case& c : cases) {
        SCOPED_TRACE(c.what);
        const TagLib::String text(std::wstring(c.units.begin(), c.units.end()));
        // The case is only one if TagLib kept the units as given.
        ASSERT_EQ(text.size(), c.units.size());
        ASSERT_EQ(std::wstring(text.toCWString(), text.size()), std::wstring(c.units.begin(), c.units.end()));
        EXPECT_EQ(utf8_of(text), text.to8Bit(true));
    }
}
