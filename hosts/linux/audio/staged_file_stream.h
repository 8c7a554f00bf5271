#pragma once
// A TagLib stream that never changes the file while TagLib saves: every write, insert, removal
// and truncation is recorded as an edit of the file's content (a list of pieces, each either a
// range of the file as it is or bytes in memory), and reads see the edited content. The edits
// are then put into the file in one step that a killed process cannot leave half done (see
// commit()), and the bytes they replace are handed out first, so the old file can be rebuilt.

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <taglib/tiostream.h>

#include "cached_file_stream.h"

namespace linux_audio {

// A file's content described from another file's: ranges copied from it and bytes of its own.
// What rebuilds the old file from the new one (and, with the pieces, the new from the old).
struct content_piece {
    std::int64_t from = -1;  // offset in the other file; -1: `bytes`
    std::int64_t length = 0;
    std::string bytes;
};
using content_layout = std::vector<content_piece>;

// Who a file is: what tells it from a file put in its place or changed since.
struct file_identity {
    std::uint64_t device = 0, inode = 0;
    std::int64_t size = 0, modified_ns = 0;
    bool operator==(const file_identity&) const = default;
};
// Raises exception_io_not_found naming the file when it cannot be examined.
file_identity identity_of(const std::string& path);

class staged_file_stream final : public TagLib::IOStream {
public:
    explicit staged_file_stream(const std::string& path);

    TagLib::FileName name() const override { return file_.name(); }
    TagLib::ByteVector readBlock(unsigned long length) override;
    void writeBlock(const TagLib::ByteVector& data) override;
    void insert(const TagLib::ByteVector& data, unsigned long start = 0, unsigned long replace = 0) override;
    void removeBlock(unsigned long start = 0, unsigned long length = 0) override;
    bool readOnly() const override { return file_.readOnly(); }
    bool isOpen() const override { return file_.isOpen(); }
    void seek(long offset, Position p = Beginning) override;
    void clear() override {}
    long tell() const override { return position_; }
    long length() override { return total_; }
    void truncate(long length) override;

    // Whether the edits leave the content as it was.
    bool unchanged();
    // Replaces the whole content by `layout` (pieces taken from the file as it is now).
    void set_layout(const content_layout& layout);
    // The old content described from the edited one: what commit() replaces.
    content_layout undo_layout();

    // Puts the edits into the file. When they change bytes within one 4 KiB page only and keep
    // the size, they go in with one pwrite: the kernel copies a write into the page cache page
    // by page and checks for a fatal signal only between pages, so a killed process leaves that
    // page wholly old or wholly new (not synced: like any in-place save, a power cut may lose
    // it, and the file is then as it was). Otherwise the new content is written to a temporary file
    // beside the old one, synced, given the old one's mode (and owner, where permitted) and
    // renamed over it, and the folder is synced: the name points at the old file or the new one,
    // never at a part. Failures raise the i/o family naming the file, which is then as it was.
    void commit();

private:
    struct piece {
        std::int64_t from;  // offset in the file; -1: `bytes`
        std::int64_t length;
        std::shared_ptr<const std::string> bytes;
        std::int64_t skip = 0;  // of `bytes`
    };
    void replace(std::int64_t start, std::int64_t length, const TagLib::ByteVector& data);
    std::size_t split_at(std::int64_t at);
    std::string read_file_range(std::int64_t at, std::int64_t length);
    // The first and one past the last byte that differ from the file, when the size is kept.
    bool changed_span(std::int64_t& first, std::int64_t& end);
    void write_in_place(std::int64_t first, std::int64_t end);
    void write_beside();

    std::string path_;
    cached_file_stream file_;
    std::int64_t original_size_;
    std::vector<piece> pieces_;
    std::int64_t total_;
    std::int64_t position_ = 0;
};

} // namespace linux_audio
