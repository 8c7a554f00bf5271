#include "musicbrainz/cache.h"

#include <stdexcept>

#include <tunehall/core.h>
#include <tunehall/stream.h>

#include "musicbrainz/bounded_read.h"

namespace {

#ifdef _WIN32
constexpr char separator = '\\';
#else
constexpr char separator = '/';
#endif

// Keys are made from disc ids and hex digests. Anything else would let a name reach outside
// the folder, so it is refused here as well as where the names are made.
bool is_plain_key(std::string_view key) {
    if (key.empty() || key.front() == '.') return false;
    for (char c : key) {
        const bool allowed = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '.' ||
                             c == '_' || c == '-';
        if (!allowed) return false;
    }
    return true;
}

std::string profile_folder() {
    tunehall_core* core = tunehall::core();
    if (!core) tunehall_bug_check("Service not found");
    return core->profile_path();
}

} // namespace

musicbrainz_cache::musicbrainz_cache() : folder_(profile_folder() + separator + "mb-cache") {}

std::string musicbrainz_cache::path_of(std::string_view key) const {
    std::string path = folder_;
    path += separator;
    path += key;
    return path;
}

bool musicbrainz_cache::get(std::string_view key, std::string& out) {
    if (!is_plain_key(key)) return false;
    try {
        file_ptr f = filesystem::g_open(path_of(key).c_str(), filesystem::open_mode::read, no_abort_);
        out = read_bounded(*f, no_abort_);
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

void musicbrainz_cache::put(std::string_view key, const char* data, std::size_t length) {
    if (!is_plain_key(key)) throw std::invalid_argument("invalid argument");
    if (!folder_created_) {
        try {
            filesystem::g_create_directory(folder_.c_str(), no_abort_);
        } catch (const tunehall_io::exception_io_already_exists&) {
        }
        folder_created_ = true;
    }
    file_ptr f = filesystem::g_open(path_of(key).c_str(), filesystem::open_mode::write_new, no_abort_);
    f->write(data, length, no_abort_);
}
