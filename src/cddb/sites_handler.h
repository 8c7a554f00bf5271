#pragma once
// The answer to "sites": the servers a CDDB server knows of, one per body line (210), or none
// (401).

#include <functional>
#include <string_view>

#include "cddb/response_handler.h"
#include "config/server_record.h"

// Called once per listed server.
using site_receiver = std::function<void(server_record&& site)>;

class sites_handler final : public response_handler {
public:
    explicit sites_handler(site_receiver receiver) : receiver_(std::move(receiver)) {}

private:
    bool on_status(unsigned code, std::string_view rest) override;
    void on_body_line(std::string_view line) override;
    void on_end() override {}

    site_receiver receiver_;
};

// "server protocol port address latitude longitude description" into a record. Latitude
// ("N037.21") and longitude ("W121.55") are checked and dropped. Raises
// tunehall_io::exception_io_data (default text) for a missing or malformed part.
server_record parse_site_line(std::string_view line);
