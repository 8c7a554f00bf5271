#pragma once
// Message popups that do not block the caller.

#include <cstdint>
#include <functional>

#include "platform.h"
#include "service.h"

class popup_message_v3 : public service_base {
    TUNEHALL_SERVICE_CLASS(service_base, {0xf9aad33f, 0x6e7c, 0x4d83, {0xa5, 0xc0, 0x8b, 0xee, 0x99, 0x7c, 0xd7, 0xae}})
public:
    // Box flags (the Win32 MB_* values): buttons and icon.
    enum : std::uint32_t { mb_ok = 0x0, mb_icon_error = 0x10, mb_icon_information = 0x40 };
    // Button ids reported to the completion (the Win32 ID* values).
    enum : int { id_ok = 1, id_cancel = 2 };

    // Shows a message box and returns at once; `done` (may be empty) gets the pressed button.
    virtual void messageBoxAsync(HWND parent, const char* message, const char* title,
                                 std::uint32_t flags, std::function<void(int)> done) = 0;
};
