#pragma once
// The answer to "cddb read": one xmcd entry (210), or a failure naming why there is none.

#include <functional>
#include <string_view>

#include "cddb/disc_record.h"
#include "cddb/response_handler.h"
#include "cddb/xmcd_parser.h"

// Called once with the finished entry.
using record_receiver = std::function<void(disc_record&& record)>;

class read_handler final : public response_handler {
public:
    read_handler(std::string_view category, record_receiver receiver);

private:
    bool on_status(unsigned code, std::string_view rest) override;
    void on_body_line(std::string_view line) override { parser_.feed_line(line); }
    void on_end() override;

    record_receiver receiver_;
    disc_record record_;
    xmcd_parser parser_{record_};
};
