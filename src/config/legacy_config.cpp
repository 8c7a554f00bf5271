#include "config/legacy_config.h"

#include <map>
#include <string>

#include <tunehall/guid.h>

#include "config/le_bytes.h"

static_assert(sizeof(GUID) == 16, "the stream holds GUIDs as their 16 stored bytes");

namespace {

// Reads until `size` bytes are in or the stream ends; returns how many arrived.
std::size_t read_up_to(stream_reader& in, void* buffer, std::size_t size, abort_source& abort) {
    auto* p = static_cast<unsigned char*>(buffer);
    std::size_t done = 0;
    while (done < size) {
        std::size_t n = in.read(p + done, size - done, abort);
        if (n == 0) break;
        done += n;
    }
    return done;
}

// Reads `size` bytes in pieces, so a corrupt length cannot demand a huge buffer before the
// stream shows it is shorter. With `out` null the bytes are dropped.
void read_value(stream_reader& in, std::uint32_t size, std::string* out, abort_source& abort) {
    char chunk[4096];
    while (size > 0) {
        std::size_t n = size < sizeof chunk ? size : sizeof chunk;
        in.read_exact(chunk, n, abort);
        if (out) out->append(chunk, n);
        size -= static_cast<std::uint32_t>(n);
    }
}

} // namespace

void legacy_config_import(cfg_var_base* list_head, stream_reader& in, abort_source& abort) {
    std::map<GUID, cfg_var_base*, tunehall::guid_less> by_guid;
    for (cfg_var_base* v = list_head; v; v = v->next()) by_guid.emplace(v->guid(), v);

    for (;;) {
        abort.check();
        GUID guid;
        if (read_up_to(in, &guid, sizeof guid, abort) < sizeof guid) return;
        unsigned char length[4];
        in.read_exact(length, sizeof length, abort);
        auto found = by_guid.find(guid);
        if (found == by_guid.end()) {
            read_value(in, u32_le_decode(length), nullptr, abort);
            continue;
        }
        std::string value;
        read_value(in, u32_le_decode(length), &value, abort);
        found->second->set_legacy_value(value.data(), value.size());
    }
}

void legacy_config_export(const cfg_legacy_record* list_head, stream_writer& out, abort_source& abort) {
    for (const cfg_legacy_record* r = list_head; r; r = r->next()) {
        abort.check();
        std::uint32_t size = u32_checked(r->value_size());
        out.write(&r->guid(), sizeof(GUID), abort);
        out.write_u32_le(size, abort);
        r->write_value(out, abort);
    }
}
