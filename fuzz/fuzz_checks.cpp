#include "fuzz_checks.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace {

bool is_word(std::string_view text) { return !text.empty() && text.find(' ') == std::string_view::npos; }

// strcmp reads each text to its end, so a text left dangling shows up under AddressSanitizer.
bool same_text(const char* a, const char* b) { return std::strcmp(a, b) == 0; }

} // namespace

void require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "fuzz check failed: %s\n", what);
    std::abort();
}

void check_entry(const disc_record& record) {
    disc_record copy(record);
    for (unsigned f = 0; f < disc_record::field_count; ++f)
        require(same_text(copy.get_field(f), record.get_field(f)), "a copied entry keeps its texts");
    require(copy.get_track_count() == record.get_track_count(), "a copied entry keeps its track count");
    for (std::size_t t = 0; t < record.get_track_count(); ++t) {
        for (unsigned f = 0; f < disc_record::track_field_count; ++f)
            require(same_text(copy.get_track_field(t, f), record.get_track_field(t, f)),
                    "a copied entry keeps its track texts");
        require(copy.get_track_offset(t) == disc_record::unknown, "a copy does not carry the server's offsets");
    }
    require(copy.get_various_artists() == record.get_various_artists(), "a copy keeps the various-artists flag");
}

void check_match(const disc_record& record) {
    require(is_word(record.get_field(disc_record::category)), "a match names one category");
    require(is_word(record.get_field(disc_record::discid)), "a match names one disc id");
    require(record.get_track_count() == 0, "a match has no tracks");
}

void check_site(const server_record& site) {
    require(is_word(site.get_server()), "a site names one server");
    require(is_word(site.get_protocol()), "a site names one protocol");
    require(is_word(site.get_port()), "a site names one port");
    require(is_word(site.get_address()), "a site names one address");
    std::string_view description = site.get_description();
    require(!description.empty() && description.front() != ' ', "a site has a description");
}
