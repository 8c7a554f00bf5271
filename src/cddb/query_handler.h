#pragma once
// The answer to "cddb query": one exact match on the status line (200), a list of exact (210)
// or inexact (211) matches, or none (202).

#include <functional>
#include <string_view>

#include "cddb/disc_record.h"
#include "cddb/response_handler.h"

// Called once per match with a record holding category, disc id and title.
using match_receiver = std::function<void(disc_record&& record, bool exact)>;

class query_handler final : public response_handler {
public:
    explicit query_handler(match_receiver receiver) : receiver_(std::move(receiver)) {}

private:
    bool on_status(unsigned code, std::string_view rest) override;
    void on_body_line(std::string_view line) override;
    void on_end() override {}

    match_receiver receiver_;
    bool exact_ = false;
};

// "category discid title" into a fresh record. Raises tunehall_io::exception_io_data
// "CDDB: No category found in response" or "CDDB: No discid found in response".
disc_record parse_match_line(std::string_view line);
