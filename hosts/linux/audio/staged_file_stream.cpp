#include "staged_file_stream.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <tunehall/exceptions.h>

namespace linux_audio {

namespace {

constexpr std::int64_t page_size = 4096;
constexpr std::size_t copy_chunk = 1 << 20;

[[noreturn]] void fail(const std::string& what, const std::string& path, int error) {
    if (error == EACCES || error == EPERM || error == EROFS)
        throw tunehall_io::exception_io_denied("Access denied: " + what + " " + path + ": " + std::strerror(error));
    if (error == ENOSPC || error == EDQUOT)
        throw tunehall_io::exception_io("Disk full: " + what + " " + path);
    throw tunehall_io::exception_io("Cannot " + what + " " + path + ": " + std::strerror(error));
}

void write_all(int fd, const char* data, std::size_t size, std::int64_t at, const std::string& path) {
    while (size > 0) {
        const ssize_t put = ::pwrite(fd, data, size, at);
        if (put < 0 && errno == EINTR) continue;
        if (put <= 0) fail("write", path, put < 0 ? errno : ENOSPC);
        data += put;
        size -= static_cast<std::size_t>(put);
        at += put;
    }
}

struct fd_closer {
    int fd;
    ~fd_closer() {
        if (fd >= 0) ::close(fd);
    }
};

std::string folder_of(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

// Removes what a killed earlier write of the same file left: its new copies never renamed.
void remove_stale_copies(const std::string& folder, const std::string& prefix) {
    DIR* dir = ::opendir(folder.c_str());
    if (!dir) return;
    while (const dirent* entry = ::readdir(dir))
        if (std::strncmp(entry->d_name, prefix.c_str(), prefix.size()) == 0 && std::strlen(entry->d_name) == prefix.size() + 6)
            ::unlinkat(::dirfd(dir), entry->d_name, 0);
    ::closedir(dir);
}

} // namespace

file_identity identity_of(const std::string& path) {
    struct stat st {};
    if (::stat(path.c_str(), &st) != 0) throw tunehall_io::exception_io_not_found("File not found: " + path);
    return {static_cast<std::uint64_t>(st.st_dev), static_cast<std::uint64_t>(st.st_ino), st.st_size,
            static_cast<std::int64_t>(st.st_mtim.tv_sec) * 1000000000 + st.st_mtim.tv_nsec};
}

staged_file_stream::staged_file_stream(const std::string& path) : path_(path), file_(path) {
    original_size_ = file_.isOpen() ? file_.length() : 0;
    if (original_size_ > 0) pieces_.push_back({0, original_size_, nullptr});
    total_ = original_size_;
}

std::string staged_file_stream::read_file_range(std::int64_t at, std::int64_t length) {
    std::string out;
    out.reserve(static_cast<std::size_t>(length));
    file_.seek(static_cast<long>(at));
    while (length > 0) {
        const TagLib::ByteVector got = file_.readBlock(static_cast<unsigned long>(std::min<std::int64_t>(length, copy_chunk)));
        if (got.isEmpty()) throw tunehall_io::exception_io("Cannot read " + path_ + ": the file became shorter");
        out.append(got.data(), got.size());
        length -= got.size();
    }
    return out;
}

TagLib::ByteVector staged_file_stream::readBlock(unsigned long length) {
    const std::int64_t count = std::min<std::int64_t>(static_cast<std::int64_t>(length), std::max<std::int64_t>(total_ - position_, 0));
    std::string out;
    std::int64_t at = 0;
    for (const piece& p : pieces_) {
        if (out.size() == static_cast<std::size_t>(count)) break;
        const std::int64_t want = position_ + static_cast<std::int64_t>(out.size());
        if (want < at + p.length) {
            const std::int64_t within = want - at;
            const std::int64_t n = std::min(p.length - within, count - static_cast<std::int64_t>(out.size()));
            if (p.from >= 0) out += read_file_range(p.from + within, n);
            else out.append(*p.bytes, static_cast<std::size_t>(p.skip + within), static_cast<std::size_t>(n));
        }
        at += p.length;
    }
    position_ += static_cast<std::int64_t>(out.size());
    return TagLib::ByteVector(out.data(), static_cast<unsigned int>(out.size()));
}

std::size_t staged_file_stream::split_at(std::int64_t at) {
    std::int64_t start = 0;
    for (std::size_t i = 0; i < pieces_.size(); ++i) {
        piece& p = pieces_[i];
        if (at == start) return i;
        if (at < start + p.length) {
            piece tail = p;
            const std::int64_t head = at - start;
            p.length = head;
            tail.length -= head;
            if (tail.from >= 0) tail.from += head;
            else tail.skip += head;
            pieces_.insert(pieces_.begin() + static_cast<long>(i) + 1, tail);
            return i + 1;
        }
        start += p.length;
    }
    return pieces_.size();
}

void staged_file_stream::replace(std::int64_t start, std::int64_t length, const TagLib::ByteVector& data) {
    // Writing past the end fills the gap with zeros, as a file does.
    if (start > total_) {
        pieces_.push_back({-1, start - total_, std::make_shared<const std::string>(start - total_, '\0')});
        total_ = start;
    }
    length = std::min(length, total_ - start);
    const std::size_t first = split_at(start);
    const std::size_t last = split_at(start + length);
    pieces_.erase(pieces_.begin() + static_cast<long>(first), pieces_.begin() + static_cast<long>(last));
    if (!data.isEmpty())
        pieces_.insert(pieces_.begin() + static_cast<long>(first),
                       {-1, data.size(), std::make_shared<const std::string>(data.data(), data.size())});
    total_ += static_cast<std::int64_t>(data.size()) - length;
}

void staged_file_stream::writeBlock(const TagLib::ByteVector& data) {
    replace(position_, static_cast<std::int64_t>(data.size()), data);
    position_ += data.size();
}

void staged_file_stream::insert(const TagLib::ByteVector& data, unsigned long start, unsigned long replace_length) {
    replace(static_cast<std::int64_t>(start), static_cast<std::int64_t>(replace_length), data);
    position_ = static_cast<std::int64_t>(start + data.size());
}

void staged_file_stream::removeBlock(unsigned long start, unsigned long length) {
    replace(static_cast<std::int64_t>(start), static_cast<std::int64_t>(length), {});
}

void staged_file_stream::truncate(long length) {
    if (length < total_) replace(length, total_ - length, {});
    else if (length > total_) replace(length, 0, {});
}

void staged_file_stream::seek(long offset, Position p) {
    std::int64_t to = offset;
    if (p == Current) to = position_ + offset;
    else if (p == End) to = total_ + offset;
    if (to >= 0) position_ = to;
}

void staged_file_stream::set_layout(const content_layout& layout) {
    pieces_.clear();
    total_ = 0;
    for (const content_piece& c : layout) {
        if (c.from >= 0) pieces_.push_back({c.from, c.length, nullptr});
        else pieces_.push_back({-1, static_cast<std::int64_t>(c.bytes.size()), std::make_shared<const std::string>(c.bytes)});
        total_ += pieces_.back().length;
    }
}

content_layout staged_file_stream::undo_layout() {
    // Where each range of the old file lies in the new one; the rest of the old file is kept as
    // bytes.
    struct mapping {
        std::int64_t old_at, new_at, length;
    };
    std::vector<mapping> kept;
    std::int64_t at = 0;
    for (const piece& p : pieces_) {
        if (p.from >= 0) kept.push_back({p.from, at, p.length});
        at += p.length;
    }
    std::sort(kept.begin(), kept.end(), [](const mapping& a, const mapping& b) { return a.old_at < b.old_at; });
    content_layout out;
    std::int64_t old_at = 0;
    for (const mapping& m : kept) {
        if (m.old_at + m.length <= old_at) continue;
        if (m.old_at > old_at) out.push_back({-1, m.old_at - old_at, read_file_range(old_at, m.old_at - old_at)});
        const std::int64_t skip = std::max<std::int64_t>(old_at - m.old_at, 0);
        out.push_back({m.new_at + skip, m.length - skip, {}});
        old_at = m.old_at + m.length;
    }
    if (old_at < original_size_) out.push_back({-1, original_size_ - old_at, read_file_range(old_at, original_size_ - old_at)});
    for (content_piece& c : out)
        if (c.from < 0) c.length = static_cast<std::int64_t>(c.bytes.size());
    return out;
}

bool staged_file_stream::changed_span(std::int64_t& first, std::int64_t& end) {
    first = total_;
    end = 0;
    std::int64_t at = 0;
    for (const piece& p : pieces_) {
        if (p.from != at) {
            const std::string now = p.from >= 0 ? read_file_range(p.from, p.length)
                                                : p.bytes->substr(static_cast<std::size_t>(p.skip), static_cast<std::size_t>(p.length));
            const std::string before = read_file_range(at, p.length);
            std::int64_t lo = 0, hi = p.length;
            while (lo < hi && now[static_cast<std::size_t>(lo)] == before[static_cast<std::size_t>(lo)]) ++lo;
            while (hi > lo && now[static_cast<std::size_t>(hi - 1)] == before[static_cast<std::size_t>(hi - 1)]) --hi;
            if (lo < hi) {
                first = std::min(first, at + lo);
                end = std::max(end, at + hi);
            }
        }
        at += p.length;
    }
    return first < end;
}

bool staged_file_stream::unchanged() {
    if (total_ != original_size_) return false;
    std::int64_t first = 0, end = 0;
    return !changed_span(first, end);
}

void staged_file_stream::commit() {
    if (total_ == original_size_) {
        std::int64_t first = 0, end = 0;
        if (!changed_span(first, end)) return;
        if (first / page_size == (end - 1) / page_size) return write_in_place(first, end);
    }
    write_beside();
}

void staged_file_stream::write_in_place(std::int64_t first, std::int64_t end) {
    const std::int64_t keep = position_;
    position_ = first;
    const TagLib::ByteVector bytes = readBlock(static_cast<unsigned long>(end - first));
    position_ = keep;
    fd_closer out{::open(path_.c_str(), O_WRONLY | O_CLOEXEC)};
    if (out.fd < 0) fail("open for writing", path_, errno);
    // One call, within one page: see commit().
    const ssize_t put = ::pwrite(out.fd, bytes.data(), bytes.size(), first);
    if (put != static_cast<ssize_t>(bytes.size())) {
        const int error = put < 0 ? errno : EIO;
        // A short write within a page does not happen on a regular file; if it did, the
        // old bytes go back rather than leave a mix.
        if (put > 0) ::pwrite(out.fd, read_file_range(first, end - first).data(), static_cast<std::size_t>(end - first), first);
        fail("write", path_, error);
    }
}

void staged_file_stream::write_beside() {
    struct stat st {};
    if (::stat(path_.c_str(), &st) != 0) fail("examine", path_, errno);
    const std::string folder = folder_of(path_);
    const std::string prefix = "." + path_.substr(path_.rfind('/') + 1) + ".tessellon-";
    remove_stale_copies(folder, prefix);
    std::string temp = folder + "/" + prefix + "XXXXXX";
    fd_closer out{::mkstemp(temp.data())};
    if (out.fd < 0) fail("write a new copy of", path_, errno);
    try {
        std::int64_t at = 0;
        for (const piece& p : pieces_) {
            if (p.from < 0) {
                write_all(out.fd, p.bytes->data() + p.skip, static_cast<std::size_t>(p.length), at, path_);
            } else {
                for (std::int64_t done = 0; done < p.length; done += copy_chunk) {
                    const std::string chunk = read_file_range(p.from + done, std::min<std::int64_t>(copy_chunk, p.length - done));
                    write_all(out.fd, chunk.data(), chunk.size(), at + done, path_);
                }
            }
            at += p.length;
        }
        ::fchmod(out.fd, st.st_mode & 07777);
        // Keeping the owner needs privileges; without them the file is the writer's, as any
        // editor's save would make it.
        if (::fchown(out.fd, st.st_uid, st.st_gid) != 0) (void)::fchown(out.fd, static_cast<uid_t>(-1), st.st_gid);
        if (::fsync(out.fd) != 0) fail("write", path_, errno);
        if (::rename(temp.c_str(), path_.c_str()) != 0) fail("replace", path_, errno);
    } catch (...) {
        ::unlink(temp.c_str());
        throw;
    }
    fd_closer dir{::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
    if (dir.fd >= 0) ::fsync(dir.fd);
}

} // namespace linux_audio
