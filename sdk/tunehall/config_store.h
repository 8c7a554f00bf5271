#pragma once
// The host's persistent configuration store: integers, strings and blobs under UTF-8 keys.

#include <cstddef>
#include <cstdint>
#include <string>

#include "service.h"

// A block of bytes handed out by the store.
class memory_block : public service_base {
    TUNEHALL_SERVICE_CLASS(service_base, {0xed7122e9, 0xef0d, 0x42b0, {0x85, 0xc1, 0xe7, 0x48, 0xc5, 0x6a, 0x7a, 0xc8}})
public:
    virtual std::size_t size() const = 0;
    virtual const void* data() const = 0;
};

class host_config_store : public service_base {
    TUNEHALL_SERVICE_CLASS(service_base, {0xd835997f, 0xb297, 0x46c6, {0x94, 0x14, 0x4c, 0xf3, 0xa1, 0x3a, 0xa9, 0x5f}})
public:
    // Integer under `key`, or `fallback` when absent.
    virtual std::int64_t get_int(const char* key, std::int64_t fallback) = 0;
    // Stores an integer under `key`; persisted before returning.
    virtual void set_int(const char* key, std::int64_t value) = 0;
    // Text under `key`, or `fallback` when absent.
    virtual std::string get_string(const char* key, const char* fallback) = 0;
    // Stores a text under `key`; persisted before returning.
    virtual void set_string(const char* key, const char* value) = 0;
    // Blob under `key`, or empty when absent.
    virtual service_ref<memory_block> get_blob(const char* key) = 0;
    // Stores `size` bytes under `key`; persisted before returning.
    virtual void set_blob(const char* key, const void* data, std::size_t size) = 0;
};
