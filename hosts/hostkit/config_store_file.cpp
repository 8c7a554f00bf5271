#include "config_store_file.h"

#include <cstring>
#include <ctime>
#include <optional>
#include <string_view>

#include <tunehall/exceptions.h>

#include "file_util.h"
#include "profile_lock.h"

namespace hostkit {

namespace {

// "TSLNCFG1", entry count (u32), entries, then the end mark: a cut file never decodes.
constexpr char magic[8] = {'T', 'S', 'L', 'N', 'C', 'F', 'G', '1'};
constexpr char end_mark[4] = {'E', 'N', 'D', '.'};

void put_u32(std::string& out, std::uint32_t v) {
    for (int i = 0; i < 4; ++i) out += static_cast<char>((v >> (8 * i)) & 0xFF);
}

void put_u64(std::string& out, std::uint64_t v) {
    for (int i = 0; i < 8; ++i) out += static_cast<char>((v >> (8 * i)) & 0xFF);
}

// Reads the file's parts as views into the data: nothing is copied until a value is kept.
class reader {
public:
    explicit reader(std::string_view d) : d_(d) {}
    bool bytes(std::size_t n, std::string_view& out) {
        if (d_.size() - pos_ < n) return false;
        out = d_.substr(pos_, n);
        pos_ += n;
        return true;
    }
    template <typename T>
    bool little_endian(T& v) {
        std::string_view b;
        if (!bytes(sizeof(T), b)) return false;
        v = 0;
        for (std::size_t i = sizeof(T); i-- > 0;) v = static_cast<T>((v << 8) | static_cast<unsigned char>(b[i]));
        return true;
    }
    bool text(std::string& out) {
        std::uint32_t n;
        std::string_view b;
        if (!little_endian(n) || !bytes(n, b)) return false;
        out.assign(b.data(), b.size());
        return true;
    }
    bool at_end() const { return pos_ == d_.size(); }

private:
    std::string_view d_;
    std::size_t pos_ = 0;
};

std::string utc_timestamp() {
    const std::time_t now = std::time(nullptr);
    std::tm utc{};
#ifdef _WIN32
    gmtime_s(&utc, &now);
#else
    gmtime_r(&now, &utc);
#endif
    char text[32];
    std::strftime(text, sizeof text, "%Y%m%dT%H%M%SZ", &utc);
    return text;
}

// `base` + `suffix`, with "-2", "-3", ... added while that name is taken.
std::filesystem::path unused_name(const std::filesystem::path& base, const std::string& suffix) {
    for (int n = 1;; ++n) {
        std::filesystem::path candidate = base;
        candidate += suffix + (n == 1 ? "" : "-" + std::to_string(n));
        std::error_code ec;
        if (!std::filesystem::exists(candidate, ec)) return candidate;
    }
}

class block : public memory_block {
public:
    explicit block(std::string data) : data_(std::move(data)) {}
    std::size_t size() const override { return data_.size(); }
    const void* data() const override { return data_.data(); }

private:
    std::string data_;
};

} // namespace

service_ref<memory_block> make_memory_block(std::string bytes) { return make_service<block>(std::move(bytes)); }

std::string config_store_file::encode(const map& values) {
    std::string out(magic, sizeof magic);
    put_u32(out, static_cast<std::uint32_t>(values.size()));
    for (auto& [key, v] : values) {
        out += static_cast<char>(v.type);
        put_u32(out, static_cast<std::uint32_t>(key.size()));
        out += key;
        if (v.type == value::kind::integer) {
            put_u64(out, static_cast<std::uint64_t>(v.number));
        } else {
            put_u32(out, static_cast<std::uint32_t>(v.bytes.size()));
            out += v.bytes;
        }
    }
    out.append(end_mark, sizeof end_mark);
    return out;
}

bool config_store_file::decode(const std::string& data, map& out) {
    out.clear();
    reader r(data);
    std::string_view head;
    std::uint32_t count;
    if (!r.bytes(sizeof magic, head) || head != std::string_view(magic, sizeof magic) || !r.little_endian(count))
        return false;
    for (std::uint32_t i = 0; i < count; ++i) {
        std::string_view kind;
        std::string key;
        if (!r.bytes(1, kind) || !r.text(key)) return false;
        value v{static_cast<value::kind>(kind[0]), 0, {}};
        if (v.type == value::kind::integer) {
            std::uint64_t n;
            if (!r.little_endian(n)) return false;
            v.number = static_cast<std::int64_t>(n);
        } else if (v.type == value::kind::text || v.type == value::kind::blob) {
            if (!r.text(v.bytes)) return false;
        } else {
            return false;
        }
        out[key] = std::move(v);
    }
    std::string_view tail;
    return r.bytes(sizeof end_mark, tail) && tail == std::string_view(end_mark, sizeof end_mark) && r.at_end();
}

bool config_store_file::load() {
    std::FILE* f = open_file(file_, "rb");
    if (!f) return true;
    std::string data;
    char chunk[65536];
    for (std::size_t n; (n = std::fread(chunk, 1, sizeof chunk, f)) > 0;) data.append(chunk, n);
    std::fclose(f);
    return decode(data, values_);
}

config_store_file::config_store_file(std::filesystem::path file, bool profile_locked) : file_(std::move(file)) {
    if (load()) return;
    std::optional<profile_lock> lock;
    if (!profile_locked) lock.emplace(file_.parent_path());
    if (load()) return;
    values_.clear();
    damaged_copy_ = unused_name(file_, ".damaged-" + utc_timestamp());
    std::error_code ec;
    std::filesystem::rename(file_, damaged_copy_, ec);
    if (ec) throw tunehall_io::exception_io("The settings file " + path_utf8(file_) + " is damaged and cannot be set aside as " +
                                            path_utf8(damaged_copy_) + ": " + ec.message());
}

void config_store_file::set(const char* key, value v) {
    std::lock_guard lock(lock_);
    values_[key] = std::move(v);
    replace_file_atomically(file_, encode(values_));
    ++saves_;
}

std::int64_t config_store_file::get_int(const char* key, std::int64_t fallback) {
    std::lock_guard lock(lock_);
    auto it = values_.find(key);
    return it != values_.end() && it->second.type == value::kind::integer ? it->second.number : fallback;
}

void config_store_file::set_int(const char* key, std::int64_t v) { set(key, value{value::kind::integer, v, {}}); }

std::string config_store_file::get_string(const char* key, const char* fallback) {
    std::lock_guard lock(lock_);
    auto it = values_.find(key);
    return it != values_.end() && it->second.type == value::kind::text ? it->second.bytes : std::string(fallback);
}

void config_store_file::set_string(const char* key, const char* v) { set(key, value{value::kind::text, 0, v}); }

service_ref<memory_block> config_store_file::get_blob(const char* key) {
    std::lock_guard lock(lock_);
    auto it = values_.find(key);
    if (it == values_.end() || it->second.type != value::kind::blob) return {};
    return make_memory_block(it->second.bytes);
}

void config_store_file::set_blob(const char* key, const void* data, std::size_t size) {
    set(key, value{value::kind::blob, 0, std::string(static_cast<const char*>(data), size)});
}

} // namespace hostkit
