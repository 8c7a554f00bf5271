#pragma once
// Reads one CDDB answer: a status line with a three-digit code, then, when the code announces
// one, body lines up to a line holding only ".". Each command supplies the three steps that
// differ (status, body line, end); the dispatch around them is shared.

#include <string_view>

class response_handler {
public:
    enum state_t { awaiting_status = 0, reading_body = 1, done = 2 };

    virtual ~response_handler() = default;

    // One line of the answer, without its terminator. Raises tunehall_io::exception_io_data
    // "Malformed status code: " + the first three characters when the status line is not a
    // three-digit code and a space.
    virtual void on_line(std::string_view line) final;
    // After the last line. A body that was announced but never began is malformed (the default
    // data-error text); a body cut off later is taken as complete.
    virtual void on_finish() final;

    state_t state() const { return state_; }
    bool body_pending() const { return body_pending_; }

protected:
    // Returns whether a body follows.
    virtual bool on_status(unsigned code, std::string_view rest) = 0;
    virtual void on_body_line(std::string_view line) = 0;
    virtual void on_end() = 0;

    // Answers that several commands share: 403 and 409.
    [[noreturn]] static void fail_entry_corrupt();
    [[noreturn]] static void fail_no_handshake();

private:
    state_t state_ = awaiting_status;
    bool body_pending_ = false;
};
