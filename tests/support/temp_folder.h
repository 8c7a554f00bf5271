#pragma once
// A fresh folder under the system's temporary folder, removed with everything in it at the end.

#include <filesystem>
#include <string>

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
// Writes a whole file.
void write_file(const std::filesystem::path& path, const std::string& data);
// A fixture file of the shared test data.
std::filesystem::path fixture(const std::string& relative);

} // namespace testing_support
