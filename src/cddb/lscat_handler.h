#pragma once
// The answer to "cddb lscat". Nothing uses the category list, so no body is read and no status
// is a failure.

#include "cddb/response_handler.h"

class lscat_handler final : public response_handler {
private:
    bool on_status(unsigned, std::string_view) override { return false; }
    void on_body_line(std::string_view) override {}
    void on_end() override {}
};
