#include "file_util.h"

#include <tunehall/exceptions.h>

#ifdef _WIN32
#include <io.h>
#include <process.h>
#else
#include <unistd.h>
#endif

namespace hostkit {

std::filesystem::path utf8_path(const std::string& text) {
    return std::filesystem::path(std::u8string(text.begin(), text.end()));
}

std::string path_utf8(const std::filesystem::path& path) {
    std::u8string u = path.u8string();
    return std::string(u.begin(), u.end());
}

std::FILE* open_file(const std::filesystem::path& path, const char* mode) {
#ifdef _WIN32
    std::wstring wmode(mode, mode + std::char_traits<char>::length(mode));
    return _wfopen(path.c_str(), wmode.c_str());
#else
    return std::fopen(path.c_str(), mode);
#endif
}

namespace {
bool flush_to_disk(std::FILE* f) {
    if (std::fflush(f) != 0) return false;
#ifdef _WIN32
    return _commit(_fileno(f)) == 0;
#else
    return fsync(fileno(f)) == 0;
#endif
}

int process_id() {
#ifdef _WIN32
    return _getpid();
#else
    return static_cast<int>(getpid());
#endif
}
} // namespace

void replace_file_atomically(const std::filesystem::path& target, const std::string& data) {
    std::filesystem::path temp = target;
    temp += ".tmp-" + std::to_string(process_id());
    std::FILE* f = open_file(temp, "wb");
    if (!f) throw tunehall_io::exception_io("Cannot write " + path_utf8(temp));
    bool ok = std::fwrite(data.data(), 1, data.size(), f) == data.size() && flush_to_disk(f);
    ok = (std::fclose(f) == 0) && ok;
    std::error_code ec;
    if (ok) std::filesystem::rename(temp, target, ec);
    if (!ok || ec) {
        std::filesystem::remove(temp, ec);
        throw tunehall_io::exception_io("Cannot write " + path_utf8(target));
    }
}

} // namespace hostkit
