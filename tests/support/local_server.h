#pragma once
// One of the project's Python test servers, running on 127.0.0.1 for the life of this object.
//
// A test server takes `--port 0`, `--log FILE` and `--stop-with-stdin`, prints "PORT <n>" as
// its first line on stdout, writes each request's path and query to the log (one per line),
// answers `GET /control?fault=...` and `GET /control?last-headers`, and stops on SIGTERM or
// when its standard input closes (so a crashed test leaves no server behind).

#include <string>
#include <sys/types.h>
#include <vector>

#include "support/temp_folder.h"

namespace testing_support {

class local_server {
public:
    // Starts `python3 <source dir>/<script> --port 0 --log <temp file> --stop-with-stdin <args...>`
    // in the source
    // folder (so relative arguments name files of the checkout) and waits for its port.
    // Raises std::runtime_error when the server does not come up.
    explicit local_server(const std::string& script, const std::vector<std::string>& args = {});
    // Stops the server (SIGTERM, then waits for it).
    ~local_server();

    local_server(const local_server&) = delete;
    local_server& operator=(const local_server&) = delete;

    int port() const { return port_; }
    // "http://127.0.0.1:<port>"
    std::string base_url() const;
    // The requests received so far, each as its path and query exactly as sent.
    std::vector<std::string> requests() const;
    // Switches the server's faults (for example "slow:0.5" or "cut"; "none" clears).
    void set_fault(const std::string& fault) const;
    // The header lines of the most recent logged request, as the server received them.
    std::vector<std::string> last_request_headers() const;
    // The seconds, on the server's own clock, at which each logged request arrived, in order
    // (the MusicBrainz test server only).
    std::vector<double> arrival_times() const;

private:
    // GET `target` from the server over a plain socket (not through the code under test);
    // returns the body, raises unless the status is 200.
    std::string control_get(const std::string& target) const;

    pid_t pid_ = -1;
    int stdout_fd_ = -1;
    int stdin_fd_ = -1;  // held open for the server's life; closes with this process
    int port_ = 0;
    temp_folder folder_{"tessellon-server"};
    std::string log_path_;
};

} // namespace testing_support
