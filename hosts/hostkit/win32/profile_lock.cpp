#include "hostkit/profile_lock.h"

#include <windows.h>

#include <tunehall/exceptions.h>

#include "hostkit/file_util.h"

namespace hostkit {

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

} // namespace hostkit
