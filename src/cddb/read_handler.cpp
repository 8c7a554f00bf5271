#include "cddb/read_handler.h"

#include <string>

#include <tunehall/exceptions.h>

read_handler::read_handler(std::string_view category, record_receiver receiver) : receiver_(std::move(receiver)) {
    // The entry itself does not say which category it was read from.
    record_.set_field(disc_record::category, category.data(), category.size());
}

bool read_handler::on_status(unsigned code, std::string_view) {
    switch (code) {
    case 210:
        return true;
    case 401:
        throw tunehall_io::exception_io_not_found("CDDB: Specified entry not found");
    case 402:
        throw tunehall_io::exception_io("CDDB: Server error");
    case 403:
        fail_entry_corrupt();
    case 409:
        fail_no_handshake();
    default:
        throw tunehall_io::exception_io_data("CDDB: Invalid status code. Expected 210, 401, 402, 403, or 409, got " +
                                             std::to_string(code));
    }
}

void read_handler::on_end() {
    finish_disc_record(record_);
    receiver_(std::move(record_));
}
