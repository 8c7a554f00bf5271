#pragma once
// Pages of the host's preferences window.

#include <cstdint>
#include <string>

#include "platform.h"
#include "service.h"

// What the page tells the host.
class preferences_page_callback : public service_base {
    TUNEHALL_SERVICE_CLASS(service_base, {0x32bf4139, 0x6cf9, 0x40e8, {0x8f, 0x4b, 0x58, 0x9e, 0x83, 0x92, 0xbe, 0x7c}})
public:
    // The page's state changed (it became changed, or was applied).
    virtual void on_state_changed() = 0;
};

// One open page.
class preferences_page_instance : public service_base {
    TUNEHALL_SERVICE_CLASS(service_base, {0x1a6ee451, 0x4d84, 0x488f, {0xb9, 0x0d, 0xec, 0xaa, 0xbc, 0xd3, 0x03, 0x68}})
public:
    // State bits: changed, has apply, and the host's "needs nothing else".
    enum : std::uint32_t { state_changed = 0x1, state_resettable = 0x8, state_dark_mode_supported = 0x10000 };
    virtual std::uint32_t get_state() = 0;
    // The page window.
    virtual HWND get_wnd() = 0;
    // Stores what the page shows.
    virtual void apply() = 0;
    // Puts the defaults into the page (nothing is stored).
    virtual void reset() = 0;
};

class preferences_page : public service_base {
    TUNEHALL_SERVICE_CLASS(service_base, {0x276d3f30, 0x302c, 0x48c3, {0xa4, 0x7a, 0xd5, 0x6b, 0xa5, 0xac, 0x2d, 0xfe}})
public:
    virtual const char* get_name() = 0;
    virtual GUID get_guid() = 0;
    // GUID of the branch of the preferences tree the page sits under.
    virtual GUID get_parent_guid() = 0;
    // Help address for the page; false when it has none.
    virtual bool get_help_url(std::string& out) = 0;
    // Creates the page inside `parent`.
    virtual service_ref<preferences_page_instance> instantiate(HWND parent, service_ref<preferences_page_callback> callback) = 0;
};

// The host's well-known branch for tagging pages.
inline constexpr GUID preferences_branch_tagging = {0xa3ff9398, 0xbc7e, 0x48c3, {0xbc, 0xde, 0x12, 0x0f, 0x6c, 0x75, 0xf9, 0x38}};

// Opens the host's preferences window on the page `page`.
class preferences_window : public service_base {
    TUNEHALL_SERVICE_CLASS(service_base, {0xf5cf8a7b, 0xfa95, 0x4697, {0xaa, 0x14, 0x97, 0x22, 0x03, 0xa8, 0xcd, 0x30}})
public:
    virtual void show_page(const GUID& page) = 0;
};
