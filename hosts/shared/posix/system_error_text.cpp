// A system error code as the system words it.

#include <cstring>
#include <string>

#include <tunehall/shared.h>

TUNEHALL_SHARED_API void uFormatSystemErrorMessage(std::string* out, std::uint32_t code) {
    *out = std::strerror(static_cast<int>(code));
}
