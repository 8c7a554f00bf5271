#include "local_filesystem.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "file_util.h"

namespace hostkit {

namespace {

std::string strip_scheme(const char* path) {
    if (std::strncmp(path, "file://", 7) == 0) return path + 7;
    return path;
}

class local_file : public file {
public:
    local_file(std::FILE* f, std::string path) : f_(f), path_(std::move(path)) {}
    ~local_file() override { std::fclose(f_); }

    std::size_t read(void* buffer, std::size_t size, abort_source& abort) override {
        abort.check();
        std::size_t n = std::fread(buffer, 1, size, f_);
        if (n < size && std::ferror(f_)) throw tunehall_io::exception_io("Cannot read " + path_);
        return n;
    }
    void write(const void* buffer, std::size_t size, abort_source& abort) override {
        abort.check();
        if (std::fwrite(buffer, 1, size, f_) != size) throw tunehall_io::exception_io("Cannot write " + path_);
    }
    std::uint64_t size(abort_source&) override {
        std::error_code ec;
        auto n = std::filesystem::file_size(utf8_path(path_), ec);
        return ec ? UINT64_MAX : static_cast<std::uint64_t>(n);
    }

private:
    std::FILE* f_;
    std::string path_;
};

[[noreturn]] void raise_open_failure(int err, const std::string& path) {
    if (err == ENOENT) throw tunehall_io::exception_io_not_found("File not found: " + path);
    if (err == EACCES || err == EPERM || err == EROFS) throw tunehall_io::exception_io_denied("Access denied: " + path);
    throw tunehall_io::exception_io("Cannot open " + path + ": " + std::strerror(err));
}

} // namespace

bool local_filesystem::is_our_path(const char* path) {
    return std::strncmp(path, "file://", 7) == 0 || std::strstr(path, "://") == nullptr;
}

file_ptr local_filesystem::open(const char* path, open_mode mode, abort_source& abort) {
    abort.check();
    std::string local = strip_scheme(path);
    std::FILE* f = open_file(utf8_path(local), mode == open_mode::read ? "rb" : "wb");
    if (!f) raise_open_failure(errno, local);
    return make_service<local_file>(f, local);
}

void local_filesystem::create_directory(const char* path, abort_source& abort) {
    abort.check();
    std::string local = strip_scheme(path);
    std::error_code ec;
    if (std::filesystem::create_directory(utf8_path(local), ec)) return;
    if (!ec) throw tunehall_io::exception_io_already_exists("Folder already exists: " + local);
    throw tunehall_io::exception_io("Cannot create folder " + local + ": " + ec.message());
}

} // namespace hostkit
