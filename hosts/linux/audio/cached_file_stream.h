#pragma once
// A TagLib stream over a file that asks the system for each part of the file it reads once, as a
// rule, rather than on every read.
//
// TagLib's own file stream asks the system for the file's length before every read (a stat, a
// seek to the end, a read there and a seek back) and reads the first blocks of a file again each
// time it seeks to them: about forty system calls to open and save one small FLAC file, and in a
// program with more than one thread (the host runs its tag update on a worker) each one costs
// more. Until the file is first changed, this stream answers from what it has read: the length
// from one stat, the bytes from 4 KiB pages kept in memory. From the first change on, TagLib's
// own stream does everything, so writing behaves exactly as TagLib's does.

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <utility>

#include <taglib/tfilestream.h>
#include <taglib/tiostream.h>

namespace linux_audio {

class cached_file_stream final : public TagLib::IOStream {
public:
    // Opens `path` for reading and writing, or for reading only when it cannot be written, as
    // TagLib's file stream does; isOpen() tells whether it could be opened at all.
    explicit cached_file_stream(const std::string& path);
    ~cached_file_stream() override;

    TagLib::FileName name() const override { return path_.c_str(); }
    TagLib::ByteVector readBlock(unsigned long length) override;
    void writeBlock(const TagLib::ByteVector& data) override;
    void insert(const TagLib::ByteVector& data, unsigned long start = 0, unsigned long replace = 0) override;
    void removeBlock(unsigned long start = 0, unsigned long length = 0) override;
    bool readOnly() const override { return read_only_; }
    bool isOpen() const override { return writer_ ? writer_->isOpen() : fd_ >= 0; }
    void seek(long offset, Position p = Beginning) override;
    void clear() override;
    long tell() const override { return writer_ ? writer_->tell() : position_; }
    long length() override;
    void truncate(long length) override;

private:
    static constexpr long page_size = 4096;
    static constexpr std::size_t kept_pages = 8;
    // Longer reads (pictures, say) go to the file and are not kept.
    static constexpr unsigned long direct_read = 16 * page_size;

    // The bytes of the page starting at `start` (a multiple of the page size), read when not kept
    // yet; `size` is short of a page at the end of the file. Valid until the next call.
    const char* page(long start, std::size_t& size);
    // Hands the file to TagLib's own stream at the current position, before the first change.
    TagLib::FileStream& writer();

    std::string path_;
    int fd_ = -1;
    bool read_only_ = false;
    long size_ = 0;
    long position_ = 0;
    // The kept pages, in one block allocated at the first read; each slot's start (-1: empty)
    // and size. Slots are reused in turn.
    std::unique_ptr<char[]> page_bytes_;
    std::array<std::pair<long, std::size_t>, kept_pages> slots_;
    std::size_t next_slot_ = 0;
    std::unique_ptr<TagLib::FileStream> writer_;
};

} // namespace linux_audio
