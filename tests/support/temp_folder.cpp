#include "support/temp_folder.h"

#include <atomic>
#include <chrono>
#include <fstream>
#include <random>
#include <sstream>
#include <stdexcept>

#ifdef _WIN32
#include <process.h>
#define TESSELLON_PID _getpid()
#else
#include <unistd.h>
#define TESSELLON_PID getpid()
#endif

namespace testing_support {

temp_folder::temp_folder(const std::string& tag) {
    static std::atomic<unsigned> counter{0};
    std::random_device rd;
    std::ostringstream name;
    name << tag << '-' << TESSELLON_PID << '-' << counter++ << '-' << rd();
    path_ = std::filesystem::temp_directory_path() / name.str();
    std::filesystem::create_directories(path_);
}

temp_folder::~temp_folder() {
    std::error_code ec;
    // Read-only files left by tests must not keep the folder alive.
    for (auto& e : std::filesystem::recursive_directory_iterator(path_, ec))
        std::filesystem::permissions(e.path(), std::filesystem::perms::owner_all, std::filesystem::perm_options::add, ec);
    std::filesystem::remove_all(path_, ec);
}

std::string read_file(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream out;
    out << in.rdbuf();
    return out.str();
}

std::vector<std::string> lines_of(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (!line.empty()) lines.push_back(line);
    }
    return lines;
}

std::map<std::string, std::string> folder_bytes(const std::filesystem::path& folder) {
    std::map<std::string, std::string> files;
    if (!std::filesystem::exists(folder)) return files;
    for (auto& e : std::filesystem::recursive_directory_iterator(folder)) {
        const std::string name = e.path().filename().string();
        if (e.is_regular_file() && name != "console.log" && name != "lock")
            files[std::filesystem::relative(e.path(), folder).string()] = read_file(e.path());
    }
    return files;
}

void write_file(const std::filesystem::path& path, const std::string& data) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(data.data(), static_cast<std::streamsize>(data.size()));
}

std::filesystem::path fixture(const std::string& relative) {
    return std::filesystem::path(TESSELLON_FIXTURES) / relative;
}

std::vector<fixture_toc> read_fixture_tocs() {
    std::ifstream in(fixture("xmcd/cddb-discid-tocs.tsv"));
    std::vector<fixture_toc> out;
    std::string line;
    std::getline(in, line);  // column names
    while (std::getline(in, line)) {
        std::istringstream fields(line);
        fixture_toc toc;
        std::string count, offsets, seconds;
        std::getline(fields, toc.disc_id, '\t');
        std::getline(fields, count, '\t');
        std::getline(fields, offsets, '\t');
        std::getline(fields, seconds, '\t');
        std::getline(fields, toc.discid_field, '\t');
        std::getline(fields, toc.file, '\t');
        if (toc.file.empty()) continue;
        std::istringstream numbers(offsets);
        for (long offset; numbers >> offset;) toc.offsets.push_back(offset);
        toc.disc_seconds = std::stol(seconds);
        out.push_back(std::move(toc));
    }
    if (out.empty()) throw std::runtime_error("no discs in xmcd/cddb-discid-tocs.tsv");
    return out;
}

fixture_toc read_fixture_toc(const std::string& disc_id) {
    for (fixture_toc& toc : read_fixture_tocs())
        if (toc.disc_id == disc_id) return toc;
    throw std::runtime_error("no disc " + disc_id + " in xmcd/cddb-discid-tocs.tsv");
}

} // namespace testing_support
