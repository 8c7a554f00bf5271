#pragma once
// A fresh folder under the system's temporary folder, removed with everything in it at the end.

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace testing_support {

class temp_folder {
public:
    explicit temp_folder(const std::string& tag = "tessellon-test");
    ~temp_folder();
    temp_folder(const temp_folder&) = delete;
    temp_folder& operator=(const temp_folder&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

private:
    std::filesystem::path path_;
};

// Reads a whole file (empty when it cannot be read).
std::string read_file(const std::filesystem::path& path);
// Every file under `folder` (relative name -> bytes), leaving out the profile's log and lock,
// which any run may touch.
std::map<std::string, std::string> folder_bytes(const std::filesystem::path& folder);
// The non-empty lines of `text`, without their line ends (LF or CR LF).
std::vector<std::string> lines_of(const std::string& text);
// Writes a whole file.
void write_file(const std::filesystem::path& path, const std::string& data);
// A fixture file of the shared test data.
std::filesystem::path fixture(const std::string& relative);

// One disc of the fixtures' table of contents (xmcd/cddb-discid-tocs.tsv).
struct fixture_toc {
    std::string disc_id;        // lower-case hex, computed from the offsets
    std::vector<long> offsets;  // frames
    long disc_seconds = 0;
    std::string discid_field;   // the entry's DISCID text
    std::string file;           // the entry, under xmcd/entries/
};
// Every disc of the table, in its order.
std::vector<fixture_toc> read_fixture_tocs();
// Raises std::runtime_error for a disc not in the table.
fixture_toc read_fixture_toc(const std::string& disc_id);

} // namespace testing_support
