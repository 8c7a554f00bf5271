#pragma once
// An exclusive advisory lock on a profile folder, so that commands run at the same time on
// one profile change its settings one after another: each reads the settings, changes them
// and writes them back while the others wait.

#include <filesystem>

namespace hostkit {

class profile_lock {
public:
    // Waits until no other process holds the lock of `profile`, then holds it until destroyed.
    // Raises tunehall_io::exception_io naming the lock file when it cannot be taken.
    explicit profile_lock(const std::filesystem::path& profile);
    ~profile_lock();
    profile_lock(const profile_lock&) = delete;
    profile_lock& operator=(const profile_lock&) = delete;

    // The lock file in the profile; it stays there, empty.
    static constexpr const char* file_name = "lock";

private:
#ifdef _WIN32
    void* handle_ = nullptr;
#else
    int fd_ = -1;
#endif
};

} // namespace hostkit
