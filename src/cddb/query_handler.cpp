#include "cddb/query_handler.h"

#include <string>

#include <tunehall/exceptions.h>

disc_record parse_match_line(std::string_view line) {
    std::size_t category_end = line.find(' ');
    if (category_end == 0 || category_end == std::string_view::npos)
        throw tunehall_io::exception_io_data("CDDB: No category found in response");
    std::size_t discid_start = category_end + 1;
    std::size_t discid_end = line.find(' ', discid_start);
    // A match without a title is as useless to the user as one without a disc id.
    if (discid_end == discid_start || discid_end == std::string_view::npos)
        throw tunehall_io::exception_io_data("CDDB: No discid found in response");
    disc_record record;
    record.set_field(disc_record::category, line.data(), category_end);
    record.set_field(disc_record::discid, line.data() + discid_start, discid_end - discid_start);
    std::string_view title = line.substr(discid_end + 1);
    record.set_field(disc_record::dtitle, title.data(), title.size());
    return record;
}

bool query_handler::on_status(unsigned code, std::string_view rest) {
    switch (code) {
    case 200:
        exact_ = true;
        receiver_(parse_match_line(rest), exact_);
        return false;
    case 202:
        return false;
    case 210:
        exact_ = true;
        return true;
    case 211:
        exact_ = false;
        return true;
    case 403:
        fail_entry_corrupt();
    case 409:
        fail_no_handshake();
    default:
        throw tunehall_io::exception_io_data(
            "CDDB: Invalid status code. Expected 200, 210, 211, 202, 403, or 409, got " + std::to_string(code));
    }
}

void query_handler::on_body_line(std::string_view line) { receiver_(parse_match_line(line), exact_); }
