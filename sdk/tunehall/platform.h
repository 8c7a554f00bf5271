#pragma once
// What the host interface needs from the platform: window and module handles, GUIDs.
// On Windows these are the system's own types; elsewhere they are layout-compatible
// stand-ins, and a window handle is an opaque pointer that only the host interprets.

#include <cstdint>

#ifdef _WIN32
#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
using module_handle = HINSTANCE;
#else
struct HWND__;
using HWND = HWND__*;
struct GUID {
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];
};
using module_handle = void*;
#endif

#if defined(_WIN32)
#define TUNEHALL_EXPORT extern "C" __declspec(dllexport)
#else
#define TUNEHALL_EXPORT extern "C" __attribute__((visibility("default")))
#endif
