// The host's stream over a file, step for step against TagLib's own stream on an identical file:
// every read, position and length the same, and after changes the same bytes in the file.

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <taglib/tfilestream.h>

#include "audio/cached_file_stream.h"
#include "support/temp_folder.h"

using linux_audio::cached_file_stream;
using testing_support::read_file;
using testing_support::write_file;

namespace {

// Bytes that differ from one position to the next, so that a read from the wrong place shows.
// Longer than the largest read the stream keeps in pages (64 KiB), and not a whole number of
// pages.
std::string file_bytes() {
    std::string bytes(70000 + 123, '\0');
    unsigned state = 12345;
    for (char& c : bytes) {
        state = state * 1103515245u + 12345u;
        c = static_cast<char>(state >> 16);
    }
    return bytes;
}

enum class op { read, seek_set, seek_cur, seek_end, write, insert, remove, truncate };
struct step {
    op what;
    long a = 0;  // length to read, offset to seek to, start, or new length
    long b = 0;  // bytes to write or insert, bytes replaced or removed
};

void apply(TagLib::IOStream& s, const step& st, std::string& seen) {
    const TagLib::ByteVector data(static_cast<unsigned int>(st.b), 'w');
    switch (st.what) {
    case op::read: {
        const TagLib::ByteVector got = s.readBlock(static_cast<unsigned long>(st.a));
        seen.assign(got.data(), got.size());
        break;
    }
    case op::seek_set: s.seek(st.a, TagLib::IOStream::Beginning); break;
    case op::seek_cur: s.seek(st.a, TagLib::IOStream::Current); break;
    case op::seek_end: s.seek(st.a, TagLib::IOStream::End); break;
    case op::write: s.writeBlock(data); break;
    case op::insert: s.insert(TagLib::ByteVector(static_cast<unsigned int>(st.a), 'i'), static_cast<unsigned long>(st.a * 3), static_cast<unsigned long>(st.b)); break;
    case op::remove: s.removeBlock(static_cast<unsigned long>(st.a), static_cast<unsigned long>(st.b)); break;
    case op::truncate: s.truncate(st.a); break;
    }
}

// Runs `steps` on both streams, each over its own copy of the same file, comparing as it goes;
// then compares the files.
void expect_same_as_taglib(const std::vector<step>& steps) {
    testing_support::temp_folder folder;
    const std::string bytes = file_bytes();
    write_file(folder / "ours.bin", bytes);
    write_file(folder / "taglib.bin", bytes);
    {
        cached_file_stream ours((folder / "ours.bin").string());
        TagLib::FileStream taglib((folder / "taglib.bin").c_str());
        ASSERT_TRUE(ours.isOpen());
        EXPECT_EQ(ours.readOnly(), taglib.readOnly());
        EXPECT_EQ(ours.length(), taglib.length());
        for (std::size_t i = 0; i < steps.size(); ++i) {
            SCOPED_TRACE("step " + std::to_string(i));
            std::string ours_read, taglib_read;
            apply(ours, steps[i], ours_read);
            apply(taglib, steps[i], taglib_read);
            EXPECT_EQ(ours_read, taglib_read);
            EXPECT_EQ(ours.tell(), taglib.tell());
            EXPECT_EQ(ours.length(), taglib.length());
        }
    }
    EXPECT_EQ(read_file(folder / "ours.bin"), read_file(folder / "taglib.bin"));
}

} // namespace

TEST(cached_file_stream, reads_and_seeks_give_what_taglibs_stream_gives) {
    expect_same_as_taglib({
        {op::read, 4},           {op::read, 34},          {op::read, 4096},       // across a page boundary
        {op::seek_set, 4090},    {op::read, 12},          {op::seek_set, 0},      {op::read, 4},
        {op::seek_cur, 100},     {op::read, 1},           {op::seek_end, -10},    {op::read, 100},  // past the end
        {op::read, 5},           {op::seek_end, -128},    {op::read, 128},        {op::seek_set, -5},  // refused
        {op::read, 3},           {op::seek_set, 80000},   {op::read, 10},         {op::seek_set, 100},
        {op::read, 0},           {op::read, 66000},       {op::seek_set, 3},      {op::read, 69000},  // long reads
        {op::seek_set, 8190},    {op::read, 8200},
    });
}

TEST(cached_file_stream, changes_after_reads_leave_the_file_as_taglibs_stream_does) {
    // Each change after reads of the parts it touches, and reads after it.
    expect_same_as_taglib({{op::read, 4096}, {op::seek_set, 10}, {op::write, 0, 20}, {op::read, 50}, {op::seek_set, 0},
                           {op::read, 100}});
    expect_same_as_taglib({{op::read, 64}, {op::seek_end, -4}, {op::read, 4}, {op::insert, 1000, 10}, {op::read, 30},
                           {op::seek_set, 2990}, {op::read, 40}, {op::seek_end, -4}, {op::read, 4}});
    expect_same_as_taglib({{op::read, 64}, {op::insert, 50, 50}, {op::seek_set, 140}, {op::read, 30}});
    expect_same_as_taglib({{op::read, 8192}, {op::remove, 4000, 300}, {op::seek_set, 3990}, {op::read, 30},
                           {op::seek_end, 0}, {op::read, 1}});
    expect_same_as_taglib({{op::seek_end, -100}, {op::read, 50}, {op::truncate, 5000}, {op::seek_end, -10}, {op::read, 20}});
    expect_same_as_taglib({{op::seek_end, 0}, {op::write, 0, 4100}, {op::seek_set, 70000}, {op::read, 500}});
}

TEST(cached_file_stream, a_missing_file_is_not_open) {
    testing_support::temp_folder folder;
    cached_file_stream ours((folder / "missing.flac").string());
    EXPECT_FALSE(ours.isOpen());
    EXPECT_TRUE(ours.readBlock(10).isEmpty());
}
