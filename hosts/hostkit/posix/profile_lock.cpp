#include "hostkit/profile_lock.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <tunehall/exceptions.h>

#include "hostkit/file_util.h"

namespace hostkit {

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

} // namespace hostkit
