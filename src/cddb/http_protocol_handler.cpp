// The CDDB connection over HTTP: each exchange is one GET through the host's file-system layer,
// which performs the request and hands back the answer as a byte stream.

#include <string>

#include <tunehall/console.h>
#include <tunehall/exceptions.h>
#include <tunehall/shared.h>
#include <tunehall/stream.h>

#include "cddb/line_reader.h"
#include "cddb/protocol_handler.h"
#include "cddb/request_url.h"
#include "config/settings.h"
#include "host/registration.h"

namespace {

// The hello used when the user's e-mail cannot be split into a user and a host.
constexpr const char* default_hello_user = "user";
constexpr const char* default_hello_host = "tessellon.invalid";

} // namespace

class http_protocol_handler : public protocol_handler {
public:
    bool supports(const char* protocol) override { return stricmp_utf8(protocol, "http") == 0; }

    void open(const server_record& server) override {
        std::string email = cfg_email.get();
        std::size_t at = email.find('@');
        if (at != std::string::npos && email.find(' ') == std::string::npos) {
            hello_user_ = email.substr(0, at);
            hello_host_ = email.substr(at + 1);
        } else {
            console_print("discora: invalid email address, using default");
            hello_user_ = default_hello_user;
            hello_host_ = default_hello_host;
        }
        server_ = server;
    }

    void send(std::string_view command, response_handler& handler, abort_source& abort) override {
        std::string url = cddb_request_url(server_, command, hello_user_, hello_host_);
        try {
            file_ptr answer = filesystem::g_open(url.c_str(), filesystem::open_mode::read, abort);
            read_answer_lines(*answer, handler, abort);
        } catch (const tunehall_io::exception_io&) {
            console_print("CDDB query failed");
            throw;
        }
    }

    service_ref<protocol_handler> create_instance() override { return make_service<http_protocol_handler>(); }

private:
    server_record server_;
    std::string hello_user_;
    std::string hello_host_;
};

static sonatag2::service_factory_t<http_protocol_handler, protocol_handler> g_factory(sonatag2::g_service_list);
