#include "profile_lock.h"

#include <cerrno>
#include <cstring>
#include <string>

#include <tunehall/exceptions.h>

#include "file_util.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#endif

namespace hostkit {

#ifdef _WIN32

profile_lock::profile_lock(const std::filesystem::path& profile) {
    const std::filesystem::path file = profile / file_name;
    HANDLE h = CreateFileW(file.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                           nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (h == INVALID_HANDLE_VALUE) throw tunehall_io::exception_io("Cannot open the profile lock " + path_utf8(file));
    OVERLAPPED whole{};
    if (!LockFileEx(h, LOCKFILE_EXCLUSIVE_LOCK, 0, MAXDWORD, MAXDWORD, &whole)) {
        CloseHandle(h);
        throw tunehall_io::exception_io("Cannot lock the profile " + path_utf8(file));
    }
    handle_ = h;
}

profile_lock::~profile_lock() {
    // Closing the handle releases the lock.
    CloseHandle(static_cast<HANDLE>(handle_));
}

#else

profile_lock::profile_lock(const std::filesystem::path& profile) {
    const std::filesystem::path file = profile / file_name;
    fd_ = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (fd_ < 0) throw tunehall_io::exception_io("Cannot open the profile lock " + path_utf8(file) + ": " + std::strerror(errno));
    int rc;
    while ((rc = ::flock(fd_, LOCK_EX)) != 0 && errno == EINTR) {
    }
    if (rc != 0) {
        const int error = errno;
        ::close(fd_);
        throw tunehall_io::exception_io("Cannot lock the profile " + path_utf8(file) + ": " + std::strerror(error));
    }
}

profile_lock::~profile_lock() {
    // Closing the descriptor releases the lock.
    ::close(fd_);
}

#endif

} // namespace hostkit
