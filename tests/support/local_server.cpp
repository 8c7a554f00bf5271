#include "support/local_server.h"

#include <arpa/inet.h>
#include <cctype>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <netinet/in.h>
#include <poll.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace testing_support {
namespace {

// Generous: only a server that is broken takes this long, and then the test should fail
// with a message instead of hanging.
constexpr int start_limit_ms = 30000;
constexpr int stop_limit_ms = 10000;

// One line from `fd`, without its line end; empty when the stream ends or stays silent.
std::string read_line(int fd, int limit_ms) {
    std::string line;
    for (;;) {
        pollfd p{fd, POLLIN, 0};
        if (poll(&p, 1, limit_ms) <= 0) return {};
        char c;
        ssize_t n = ::read(fd, &c, 1);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return {};
        if (c == '\n') return line;
        line += c;
    }
}

std::string escape_query_value(const std::string& text) {
    static const char hex[] = "0123456789ABCDEF";
    std::string out;
    for (unsigned char c : text) {
        if (std::isalnum(c) || std::strchr("-._~:,", c)) {
            out += static_cast<char>(c);
        } else {
            out += '%';
            out += hex[c >> 4];
            out += hex[c & 15];
        }
    }
    return out;
}

void stop_process(pid_t pid) {
    if (pid <= 0) return;
    ::kill(pid, SIGTERM);
    for (int waited = 0; waited < stop_limit_ms; waited += 20) {
        pid_t r = ::waitpid(pid, nullptr, WNOHANG);
        if (r == pid || (r < 0 && errno != EINTR)) return;
        ::usleep(20000);
    }
    std::fprintf(stderr, "test server %d ignored SIGTERM; killing it\n", static_cast<int>(pid));
    ::kill(pid, SIGKILL);
    ::waitpid(pid, nullptr, 0);
}

} // namespace

local_server::local_server(const std::string& script, const std::vector<std::string>& args) {
    log_path_ = (folder_ / "requests.log").string();
    const std::string script_path = std::string(TESSELLON_SOURCE_DIR) + "/" + script;

    std::vector<std::string> words = {"python3", script_path, "--port", "0", "--log", log_path_, "--stop-with-stdin"};
    words.insert(words.end(), args.begin(), args.end());
    std::vector<char*> argv;
    for (auto& w : words) argv.push_back(w.data());
    argv.push_back(nullptr);

    // Close-on-exec: other servers started later must not hold these pipes open.
    int out[2], in[2];
    if (::pipe2(out, O_CLOEXEC) != 0) throw std::runtime_error("pipe: " + std::string(std::strerror(errno)));
    if (::pipe2(in, O_CLOEXEC) != 0) {
        ::close(out[0]);
        ::close(out[1]);
        throw std::runtime_error("pipe: " + std::string(std::strerror(errno)));
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, in[0], STDIN_FILENO);
    posix_spawn_file_actions_addchdir_np(&actions, TESSELLON_SOURCE_DIR);
    int rc = ::posix_spawnp(&pid_, "python3", &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(out[1]);
    ::close(in[0]);
    stdout_fd_ = out[0];
    stdin_fd_ = in[1];
    if (rc != 0) {
        pid_ = -1;
        ::close(stdout_fd_);
        ::close(stdin_fd_);
        throw std::runtime_error("cannot start python3: " + std::string(std::strerror(rc)));
    }

    const std::string first = read_line(stdout_fd_, start_limit_ms);
    if (first.rfind("PORT ", 0) == 0) port_ = std::atoi(first.c_str() + 5);
    if (port_ <= 0) {
        stop_process(pid_);
        ::close(stdout_fd_);
        ::close(stdin_fd_);
        throw std::runtime_error("test server " + script + " did not report its port (first line: \"" + first + "\")");
    }
}

local_server::~local_server() {
    stop_process(pid_);
    ::close(stdout_fd_);
    ::close(stdin_fd_);
}

std::string local_server::base_url() const {
    return "http://127.0.0.1:" + std::to_string(port_);
}

std::vector<std::string> local_server::requests() const {
    std::vector<std::string> lines;
    std::ifstream in(log_path_, std::ios::binary);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

void local_server::set_fault(const std::string& fault) const {
    control_get("/control?fault=" + escape_query_value(fault));
}

std::vector<std::string> local_server::last_request_headers() const {
    return lines_of(control_get("/control?last-headers"));
}

std::vector<double> local_server::arrival_times() const {
    std::vector<double> times;
    for (const std::string& line : lines_of(control_get("/control?arrivals"))) times.push_back(std::strtod(line.c_str(), nullptr));
    return times;
}

std::string local_server::control_get(const std::string& target) const {
    int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0) throw std::runtime_error("socket: " + std::string(std::strerror(errno)));
    timeval limit{start_limit_ms / 1000, 0};
    ::setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port_));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);

    std::string answer;
    const std::string request = "GET " + target + " HTTP/1.0\r\nHost: 127.0.0.1\r\n\r\n";
    bool ok = ::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
              ::send(fd, request.data(), request.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(request.size());
    for (char chunk[4096]; ok;) {
        ssize_t n = ::recv(fd, chunk, sizeof chunk, 0);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) ok = false;
        if (n <= 0) break;
        answer.append(chunk, static_cast<std::size_t>(n));
    }
    ::close(fd);

    const std::size_t body = answer.find("\r\n\r\n");
    const std::size_t space = answer.find(' ');
    if (!ok || body == std::string::npos || space == std::string::npos || answer.compare(space + 1, 3, "200") != 0)
        throw std::runtime_error("test server refused " + target + ": " + answer.substr(0, answer.find("\r\n")) +
                                 (body == std::string::npos ? "" : " " + answer.substr(body + 4)));
    return answer.substr(body + 4);
}

} // namespace testing_support
