#include "cached_file_stream.h"

#include <algorithm>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace linux_audio {

namespace {

// Reads up to `size` bytes at `offset`; fewer only at the end of the file or on an error.
std::size_t read_at(int fd, char* into, std::size_t size, long offset) {
    std::size_t done = 0;
    while (done < size) {
        const ssize_t got = ::pread(fd, into + done, size - done, offset + static_cast<long>(done));
        if (got <= 0) break;
        done += static_cast<std::size_t>(got);
    }
    return done;
}

} // namespace

cached_file_stream::cached_file_stream(const std::string& path) : path_(path) {
    fd_ = ::open(path.c_str(), O_RDWR | O_CLOEXEC);
    if (fd_ < 0) {
        fd_ = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
        read_only_ = true;
    }
    struct stat st {};
    if (fd_ >= 0 && ::fstat(fd_, &st) == 0) size_ = static_cast<long>(st.st_size);
}

cached_file_stream::~cached_file_stream() {
    if (fd_ >= 0) ::close(fd_);
}

const char* cached_file_stream::page(long start, std::size_t& size) {
    if (!page_bytes_) {
        page_bytes_ = std::make_unique_for_overwrite<char[]>(kept_pages * page_size);
        slots_.fill({-1, 0});
    }
    for (std::size_t i = 0; i < kept_pages; ++i)
        if (slots_[i].first == start) {
            size = slots_[i].second;
            return page_bytes_.get() + i * page_size;
        }
    const std::size_t i = next_slot_;
    next_slot_ = (next_slot_ + 1) % kept_pages;
    char* bytes = page_bytes_.get() + i * page_size;
    // Up to the end of the file as it was opened: asking past it would cost a call for nothing.
    const auto wanted = static_cast<std::size_t>(std::clamp(size_ - start, 0L, page_size));
    size = read_at(fd_, bytes, wanted, start);
    slots_[i] = {start, size};
    return bytes;
}

TagLib::ByteVector cached_file_stream::readBlock(unsigned long length) {
    if (writer_) return writer_->readBlock(length);
    if (fd_ < 0 || length == 0 || position_ >= size_) return {};
    const unsigned long count = std::min(length, static_cast<unsigned long>(size_ - position_));
    if (count > direct_read) {
        TagLib::ByteVector out(static_cast<unsigned int>(count));
        out.resize(static_cast<unsigned int>(read_at(fd_, out.data(), count, position_)));
        position_ += static_cast<long>(out.size());
        return out;
    }
    // Most reads lie within one page.
    const long first = position_ - position_ % page_size;
    std::size_t size = 0;
    const char* bytes = page(first, size);
    const auto within = static_cast<std::size_t>(position_ - first);
    if (within + count <= size) {
        position_ += static_cast<long>(count);
        return TagLib::ByteVector(bytes + within, static_cast<unsigned int>(count));
    }
    TagLib::ByteVector out(static_cast<unsigned int>(count));
    unsigned long done = 0;
    while (done < count) {
        const long at = position_ + static_cast<long>(done);
        const long start = at - at % page_size;
        bytes = page(start, size);
        const auto offset = static_cast<std::size_t>(at - start);
        if (offset >= size) break;  // the file is shorter than it was
        const unsigned long n = std::min(count - done, static_cast<unsigned long>(size - offset));
        std::memcpy(out.data() + done, bytes + offset, n);
        done += n;
    }
    out.resize(static_cast<unsigned int>(done));
    position_ += static_cast<long>(done);
    return out;
}

void cached_file_stream::seek(long offset, Position p) {
    if (writer_) return writer_->seek(offset, p);
    long to = offset;
    if (p == Current) to = position_ + offset;
    else if (p == End) to = size_ + offset;
    // As with fseek: a position before the start is refused, one past the end is taken.
    if (to >= 0) position_ = to;
}

void cached_file_stream::clear() {
    if (writer_) writer_->clear();
}

long cached_file_stream::length() {
    if (writer_) return writer_->length();
    return fd_ >= 0 ? size_ : -1;
}

TagLib::FileStream& cached_file_stream::writer() {
    if (!writer_) {
        // TagLib's stream takes the descriptor over (and closes it); the pages may be stale
        // from the first change on, so they go.
        writer_ = std::make_unique<TagLib::FileStream>(fd_, read_only_);
        fd_ = -1;
        page_bytes_.reset();
        writer_->seek(position_);
    }
    return *writer_;
}

void cached_file_stream::writeBlock(const TagLib::ByteVector& data) { writer().writeBlock(data); }

void cached_file_stream::insert(const TagLib::ByteVector& data, unsigned long start, unsigned long replace) {
    writer().insert(data, start, replace);
}

void cached_file_stream::removeBlock(unsigned long start, unsigned long length) { writer().removeBlock(start, length); }

void cached_file_stream::truncate(long length) { writer().truncate(length); }

} // namespace linux_audio
