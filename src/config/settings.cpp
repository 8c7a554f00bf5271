#include "config/settings.h"

#include <cstring>

#include <tunehall/config_store.h>
#include <tunehall/core.h>

#include "config/le_bytes.h"

const char* const default_email = "user@tessellon.invalid";

// {BE42B066-3DE5-4164-9A13-158C0DFB7E27}
cfg_string cfg_email({0xbe42b066, 0x3de5, 0x4164, {0x9a, 0x13, 0x15, 0x8c, 0x0d, 0xfb, 0x7e, 0x27}}, default_email);
// {BFC5FBB1-FFBD-4BBE-8BBB-AADE0F5FAD8A}
cfg_int cfg_wipe_existing_tags({0xbfc5fbb1, 0xffbd, 0x4bbe, {0x8b, 0xbb, 0xaa, 0xde, 0x0f, 0x5f, 0xad, 0x8a}}, 1);

namespace {

const char* const server_list_key = "discora.servers";

// Every record is written as version 0; a reader meeting another version stops there, so a
// later release can append records this one does not understand.
constexpr std::uint32_t record_version = 0;

// The five texts of a record in their persisted order.
using field_getter = const char* (server_record::*)() const;
using field_setter = void (server_record::*)(const char*, std::size_t);
constexpr field_getter field_getters[] = {&server_record::get_server, &server_record::get_protocol,
                                          &server_record::get_port, &server_record::get_address,
                                          &server_record::get_description};
constexpr field_setter field_setters[] = {&server_record::set_server, &server_record::set_protocol,
                                          &server_record::set_port, &server_record::set_address,
                                          &server_record::set_description};

server_list default_server_list() {
    server_list list;
    reset_server_list(list);
    return list;
}

server_list read_records(blob_reader& in) {
    server_list list;
    std::uint32_t count = in.u32_le();
    // No reserve(count): a corrupt count must not decide how much memory is taken.
    for (std::uint32_t i = 0; i < count; ++i) {
        if (in.u32_le() != record_version) break;
        server_record record;
        for (field_setter set : field_setters) {
            std::string_view text = in.bytes(in.u32_le());
            (record.*set)(text.data(), text.size());
        }
        list.push_back(std::move(record));
    }
    return list;
}

} // namespace

std::string encode_server_list(const server_list& list) {
    std::string out;
    u32_le_append(out, u32_checked(list.size()));
    for (const server_record& r : list) {
        u32_le_append(out, record_version);
        for (field_getter get : field_getters) {
            const char* text = (r.*get)();
            std::size_t n = std::strlen(text);
            u32_le_append(out, u32_checked(n));
            out.append(text, n);
        }
    }
    return out;
}

server_list decode_server_list(const void* data, std::size_t size) {
    blob_reader in(data, size);
    try {
        return read_records(in);
    } catch (const tunehall_io::exception_io_data&) {
        // A damaged blob is not the user's problem to solve: fall back to the built-in server
        // and leave the store alone until the user saves a list.
        return default_server_list();
    }
}

server_list load_server_list() {
    service_ref<memory_block> blob = host_service<host_config_store>()->get_blob(server_list_key);
    if (!blob) return default_server_list();
    return decode_server_list(blob->data(), blob->size());
}

void save_server_list(const server_list& list) {
    // Encoded in full first, so an overflow leaves the stored list untouched.
    std::string blob = encode_server_list(list);
    host_service<host_config_store>()->set_blob(server_list_key, blob.data(), blob.size());
}
