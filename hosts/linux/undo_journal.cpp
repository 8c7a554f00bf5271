#include "undo_journal.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <fstream>
#include <sstream>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <tunehall/exceptions.h>

#include "audio/audio_file.h"

namespace fs = std::filesystem;
using linux_audio::content_layout;
using linux_audio::file_identity;

namespace linux_host {

namespace {

[[noreturn]] void fail(const fs::path& path, const std::string& what) {
    throw tunehall_io::exception_io("Undo journal " + path.string() + ": " + what);
}

void sync_folder(const fs::path& folder) {
    const int fd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        ::fsync(fd);
        ::close(fd);
    }
}

// Writes `text` to `path` so that after a crash the file is either missing or whole.
void write_durably(const fs::path& path, const std::string& text) {
    const fs::path temp = path.string() + ".part";
    const int fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (fd < 0) fail(path, std::strerror(errno));
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t put = ::write(fd, text.data() + done, text.size() - done);
        if (put < 0 && errno == EINTR) continue;
        if (put <= 0) {
            const int error = put < 0 ? errno : ENOSPC;
            ::close(fd);
            ::unlink(temp.c_str());
            fail(path, std::strerror(error));
        }
        done += static_cast<std::size_t>(put);
    }
    const bool synced = ::fsync(fd) == 0;
    ::close(fd);
    if (!synced || ::rename(temp.c_str(), path.c_str()) != 0) {
        ::unlink(temp.c_str());
        fail(path, std::strerror(errno));
    }
    sync_folder(path.parent_path());
}

std::string read_whole(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) fail(path, "cannot be read");
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

std::string identity_text(const file_identity& id) {
    return std::to_string(id.device) + " " + std::to_string(id.inode) + " " + std::to_string(id.size) + " " +
           std::to_string(id.modified_ns);
}

file_identity parse_identity(std::istream& in) {
    file_identity id;
    in >> id.device >> id.inode >> id.size >> id.modified_ns;
    return id;
}

struct undo_record {
    std::string path;
    file_identity old;
    std::int64_t new_size = 0;
    content_layout layout;
};

std::string undo_text(const std::string& path, const file_identity& old, std::int64_t new_size, const content_layout& layout) {
    std::string out = path + "\nold " + identity_text(old) + "\nnew_size " + std::to_string(new_size) + "\npieces " +
                      std::to_string(layout.size()) + "\n";
    for (const auto& p : layout) {
        if (p.from >= 0) {
            out += "F " + std::to_string(p.from) + " " + std::to_string(p.length) + "\n";
        } else {
            out += "B " + std::to_string(p.bytes.size()) + "\n";
            out += p.bytes;
        }
    }
    return out;
}

undo_record parse_undo(const fs::path& file) {
    std::istringstream in(read_whole(file));
    undo_record r;
    std::string word;
    std::size_t count = 0;
    std::getline(in, r.path);
    in >> word;
    r.old = parse_identity(in);
    in >> word >> r.new_size >> word >> count;
    for (std::size_t i = 0; i < count && in; ++i) {
        linux_audio::content_piece p;
        in >> word;
        if (word == "F") {
            in >> p.from >> p.length;
        } else {
            in >> p.length;
            in.get();
            p.bytes.resize(static_cast<std::size_t>(p.length));
            in.read(p.bytes.data(), p.length);
        }
        r.layout.push_back(std::move(p));
    }
    if (!in || r.layout.size() != count) fail(file, "damaged");
    return r;
}

std::string now_text() {
    const std::time_t now = std::time(nullptr);
    std::tm utc{};
    ::gmtime_r(&now, &utc);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &utc);
    return text;
}

std::string numbered(std::size_t file, const char* suffix) { return std::to_string(file + 1) + suffix; }

std::vector<int> run_numbers(const fs::path& folder) {
    std::vector<int> out;
    std::error_code ec;
    for (const auto& entry : fs::directory_iterator(folder, ec)) {
        const std::string name = entry.path().filename().string();
        if (name.rfind("run-", 0) == 0 && fs::exists(entry.path() / "run")) out.push_back(std::atoi(name.c_str() + 4));
    }
    std::sort(out.begin(), out.end());
    return out;
}

} // namespace

undo_journal::~undo_journal() { unlock(); }

fs::path undo_journal::run_folder(int number) const {
    char name[32];
    std::snprintf(name, sizeof name, "run-%06d", number);
    return folder_ / name;
}

void undo_journal::lock() {
    if (lock_fd_ >= 0) return;
    std::error_code ec;
    fs::create_directories(folder_, ec);
    if (ec) fail(folder_, ec.message());
    lock_fd_ = ::open((folder_ / "lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (lock_fd_ < 0 || ::flock(lock_fd_, LOCK_EX) != 0) fail(folder_, std::strerror(errno));
}

void undo_journal::unlock() {
    if (lock_fd_ >= 0) ::close(lock_fd_);
    lock_fd_ = -1;
}

void undo_journal::begin(const std::string& command, const std::string& album, const std::vector<std::string>& files) {
    lock();
    const std::vector<int> numbers = run_numbers(folder_);
    current_ = numbers.empty() ? 1 : numbers.back() + 1;
    files_ = files;
    const fs::path run = run_folder(current_);
    std::error_code ec;
    fs::create_directory(run, ec);
    if (ec) fail(run, ec.message());
    std::string text = "time\t" + now_text() + "\ncommand\t" + command + "\nalbum\t" + album + "\n";
    for (const std::string& f : files) text += "file\t" + f + "\n";
    write_durably(run / "run", text);
    for (int old : numbers)
        if (old <= current_ - kept_runs) fs::remove_all(run_folder(old), ec);
}

void undo_journal::record_before(std::size_t file, const file_identity& old, std::int64_t new_size, const content_layout& undo) {
    write_durably(run_folder(current_) / numbered(file, ".undo"), undo_text(files_.at(file), old, new_size, undo));
}

void undo_journal::record_written(std::size_t file, const file_identity& now) {
    write_durably(run_folder(current_) / numbered(file, ".done"), identity_text(now) + "\n");
}

void undo_journal::end(bool complete) {
    if (complete) write_durably(run_folder(current_) / "complete", "");
    unlock();
}

void undo_journal::restore_from_current(std::size_t file) {
    undo_report report;
    if (!restore_file(run_folder(current_), file, /*force=*/false, report))
        throw tunehall_io::exception_io(report.left_alone.empty() ? report.failed.back() : report.left_alone.back());
}

std::vector<journal_run> undo_journal::runs() const {
    std::vector<journal_run> out;
    for (int number : run_numbers(folder_)) {
        const fs::path run = run_folder(number);
        journal_run r;
        r.number = number;
        std::istringstream in(read_whole(run / "run"));
        for (std::string line; std::getline(in, line);) {
            const std::size_t tab = line.find('\t');
            if (tab == std::string::npos) continue;
            const std::string key = line.substr(0, tab), value = line.substr(tab + 1);
            if (key == "time") r.time = value;
            else if (key == "command") r.command = value;
            else if (key == "album") r.album = value;
            else if (key == "file") r.files.push_back(value);
        }
        r.complete = fs::exists(run / "complete");
        r.undone = fs::exists(run / "undone");
        out.push_back(std::move(r));
    }
    return out;
}

bool undo_journal::restore_file(const fs::path& run, std::size_t file, bool force, undo_report& report) {
    const fs::path undo_file = run / numbered(file, ".undo");
    if (!fs::exists(undo_file)) return true;  // the run stopped before this file, or it is back
    try {
        const undo_record r = parse_undo(undo_file);
        const file_identity now = linux_audio::identity_of(r.path);
        bool written_by_run = false;
        if (fs::exists(run / numbered(file, ".done"))) {
            std::istringstream in(read_whole(run / numbered(file, ".done")));
            const file_identity written = parse_identity(in);
            written_by_run = written.size == now.size && written.modified_ns == now.modified_ns;
        } else {
            // Killed between journaling the file and recording its write: the file is either
            // still the old one or the whole new one.
            if (now == r.old) return true;
            written_by_run = now.size == r.new_size;
        }
        if (!written_by_run && !force) {
            report.left_alone.push_back(r.path + ": changed since the run wrote it; left alone (--force restores it anyway)");
            return false;
        }
        restore_content(r.path, r.layout);
        // Put back once: a later undo of the run (one forced for the files left alone) skips it.
        fs::rename(undo_file, run / numbered(file, ".restored"));
        report.restored.push_back(r.path);
        return true;
    } catch (const std::exception& e) {
        report.failed.emplace_back(e.what());
        return false;
    }
}

undo_report undo_journal::undo(int number, bool force) {
    lock();
    const std::vector<journal_run> all = runs();
    const journal_run* chosen = nullptr;
    for (const journal_run& r : all)
        if (number == 0 ? !r.undone : r.number == number) chosen = &r;
    if (!chosen) {
        unlock();
        throw tunehall_io::exception_io_not_found(number == 0 ? "No run left to undo" : "No run " + std::to_string(number) + " in the undo journal");
    }
    undo_report report;
    const fs::path run = run_folder(chosen->number);
    bool whole = true;
    for (std::size_t i = chosen->files.size(); i-- > 0;) whole = restore_file(run, i, force, report) && whole;
    if (whole) write_durably(run / "undone", "");
    unlock();
    return report;
}

} // namespace linux_host
