#pragma once
// Functions of the host's shared library, imported by name by every component: UTF-8 window
// texts, UTF-8 comparison, system error texts, fatal errors, crash information and the
// registry of open modal dialogs.

#include <cstddef>
#include <cstdint>
#include <string>

#include "platform.h"

#if defined(_WIN32)
#ifdef TUNEHALL_SHARED_BUILD
#define TUNEHALL_SHARED_API extern "C" __declspec(dllexport)
#else
#define TUNEHALL_SHARED_API extern "C" __declspec(dllimport)
#endif
#else
#define TUNEHALL_SHARED_API extern "C" __attribute__((visibility("default")))
#endif

// Length meaning "up to the terminating NUL".
#define TUNEHALL_NUL_TERMINATED (~static_cast<std::size_t>(0))

#ifdef _WIN32
// Window texts in UTF-8.
TUNEHALL_SHARED_API bool uSetDlgItemText(HWND dialog, int id, const char* text);
// The control's text in UTF-8; false when the control does not exist.
TUNEHALL_SHARED_API bool uGetDlgItemText(HWND dialog, int id, std::string* out);
TUNEHALL_SHARED_API bool uSetWindowText(HWND window, const char* text);
TUNEHALL_SHARED_API bool uGetWindowText(HWND window, std::string* out);
#endif

// Case-insensitive comparison of two UTF-8 texts (simple case folding); <0, 0 or >0.
TUNEHALL_SHARED_API int stricmp_utf8(const char* a, const char* b);
// The same on at most `len_a` and `len_b` bytes (TUNEHALL_NUL_TERMINATED: up to the NUL).
TUNEHALL_SHARED_API int stricmp_utf8_ex(const char* a, std::size_t len_a, const char* b, std::size_t len_b);
// Text of a system error code, UTF-8.
TUNEHALL_SHARED_API void uFormatSystemErrorMessage(std::string* out, std::uint32_t code);
// Fatal internal error: logs `text` and ends the process.
TUNEHALL_SHARED_API void uBugCheck [[noreturn]] (const char* text);
// Records an event for the crash report (`length` may be TUNEHALL_NUL_TERMINATED).
TUNEHALL_SHARED_API void uPrintCrashInfo_OnEvent(const char* text, std::size_t length);
// The events recorded so far, one per line, for the host's diagnostics.
TUNEHALL_SHARED_API void uCrashInfo_Events(std::string* out);

// The registry of open modal dialogs. May a new modal dialog open now?
TUNEHALL_SHARED_API bool ModalDialog_CanCreateNew();
// Brings the open modal dialog forward.
TUNEHALL_SHARED_API void ModalDialog_PokeExisting();
// Registers (`open` true) or unregisters a modal dialog window.
TUNEHALL_SHARED_API void ModalDialog_Switch(HWND window, bool open);
// The modal dialog open now, or null.
TUNEHALL_SHARED_API HWND ModalDialog_Current();
// How many times PokeExisting brought a dialog forward (diagnostics and tests).
TUNEHALL_SHARED_API unsigned ModalDialog_PokeCount();

// Registers a modal dialog for its lifetime.
class modal_dialog_scope {
public:
    modal_dialog_scope() = default;
    explicit modal_dialog_scope(HWND window) { initialize(window); }
    ~modal_dialog_scope() { deinitialize(); }
    modal_dialog_scope(const modal_dialog_scope&) = delete;
    modal_dialog_scope& operator=(const modal_dialog_scope&) = delete;
    // Called from the dialog's initialisation.
    void initialize(HWND window) { deinitialize(); window_ = window; ModalDialog_Switch(window_, true); }
    void deinitialize() { if (window_) ModalDialog_Switch(window_, false); window_ = nullptr; }

private:
    HWND window_ = nullptr;
};
