// Settings through the host kit's real file-backed store: what reaches the file, under which
// key, and when nothing is written at all.

#include <cstdint>
#include <string>

#include <gtest/gtest.h>

#include "config/settings.h"
#include "support/test_host.h"
#include "unit/config/server_record_maker.h"

namespace {

using testing_support::test_host;

// The store as the next session will see it: a second store opened on the same file.
service_ref<hostkit::config_store_file> reopen_store(const test_host& th) {
    return make_service<hostkit::config_store_file>(th.profile() / hostkit::host::config_file_name);
}

constexpr GUID text_guid = {0x3c1f0d52, 0x7a40, 0x4e1b, {0x9b, 0x6e, 0x0a, 0x5d, 0x22, 0xc4, 0x81, 0x07}};
constexpr GUID number_guid = {0x0000a1b2, 0x00c3, 0x0004, {0x00, 0x05, 0x60, 0x70, 0x80, 0x90, 0xa0, 0xb0}};

TEST(cfg_var_key, is_prefix_and_upper_case_guid_without_braces_keeping_leading_zeros) {
    const std::pair<GUID, const char*> cases[] = {
        {{0x01234567, 0x89ab, 0xcdef, {0x01, 0x23, 0x45, 0x67, 0x89, 0xab, 0xcd, 0xef}},
         "cfg_var.01234567-89AB-CDEF-0123-456789ABCDEF"},
        {number_guid, "cfg_var.0000A1B2-00C3-0004-0005-60708090A0B0"},
        {{0xffffffff, 0xffff, 0xffff, {0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff}},
         "cfg_var.FFFFFFFF-FFFF-FFFF-FFFF-FFFFFFFFFFFF"},
    };
    for (const auto& [guid, key] : cases) EXPECT_EQ(cfg_var_key(guid), key);
}

TEST(cfg_email, is_on_the_component_list_under_its_own_guid) {
    bool email = false, wipe = false;
    for (cfg_var_base* v = cfg_var_base::list_head(); v; v = v->next()) {
        email = email || v == &cfg_email;
        wipe = wipe || v == &cfg_wipe_existing_tags;
    }
    EXPECT_TRUE(email);
    EXPECT_TRUE(wipe);
    EXPECT_FALSE(tunehall::guid_equal(cfg_email.guid(), cfg_wipe_existing_tags.guid()));
}

TEST(cfg_string_store, reads_the_default_or_the_stored_value_once_and_writes_each_change_once) {
    test_host th;
    cfg_var_base* list = nullptr;
    cfg_string email(text_guid, "user@tessellon.invalid", list);
    EXPECT_EQ(email.get(), "user@tessellon.invalid");
    email.set("user@tessellon.invalid");  // the value it has, before any write: nothing to save
    EXPECT_EQ(th.config_saves(), 0u);
    // Another writer of the store is not seen: the value is read once per process.
    th.host().config().set_string(cfg_var_key(text_guid).c_str(), "changed behind its back");
    EXPECT_EQ(email.get(), "user@tessellon.invalid");
    email.set("j\xC3\xBCrgen@example.org");
    email.set("j\xC3\xBCrgen@example.org");
    EXPECT_EQ(th.config_saves(), 2u);  // the write behind its back, then one change
    EXPECT_EQ(email.get(), "j\xC3\xBCrgen@example.org");
    EXPECT_EQ(reopen_store(th)->get_string("cfg_var.3C1F0D52-7A40-4E1B-9B6E-0A5D22C48107", ""),
              "j\xC3\xBCrgen@example.org");
    // The next session reads the stored value instead of the default.
    cfg_var_base* other_list = nullptr;
    EXPECT_EQ(cfg_string(text_guid, "fallback", other_list).get(), "j\xC3\xBCrgen@example.org");
}

TEST(cfg_int_store, default_then_stored_value_then_written_once_per_change) {
    test_host th;
    cfg_var_base* list = nullptr;
    cfg_int wipe(number_guid, 1, list);
    EXPECT_EQ(wipe.get(), 1);
    wipe.set(1);
    EXPECT_EQ(th.config_saves(), 0u);
    wipe.set(0);
    wipe.set(0);
    EXPECT_EQ(th.config_saves(), 1u);
    EXPECT_EQ(wipe.get(), 0);
    EXPECT_EQ(reopen_store(th)->get_int("cfg_var.0000A1B2-00C3-0004-0005-60708090A0B0", 99), 0);

    cfg_var_base* other_list = nullptr;
    cfg_int next_session(number_guid, 1, other_list);
    EXPECT_EQ(next_session.get(), 0);
    // The full 64-bit range is kept.
    wipe.set(INT64_MIN);
    EXPECT_EQ(reopen_store(th)->get_int(cfg_var_key(number_guid).c_str(), 0), INT64_MIN);
}


TEST(server_list_store, saved_list_comes_back_in_order_from_the_file) {
    test_host th;
    server_list list{make_server_record("b.example.org", "http", "8880", "/~cddb/cddb.cgi", "second \xE2\x80\x93 mirror"),
                     make_server_record("a.example.org", "http", "80", "/~cddb/cddb.cgi", ""),
                     make_server_record("", "http", "", "/~cddb/cddb.cgi", "")};
    save_server_list(list);
    EXPECT_EQ(th.config_saves(), 1u);
    EXPECT_EQ(load_server_list(), list);
    service_ref<memory_block> blob = reopen_store(th)->get_blob("discora.servers");
    ASSERT_TRUE(blob);
    EXPECT_EQ(std::string(static_cast<const char*>(blob->data()), blob->size()), encode_server_list(list));
}

TEST(server_list_store, a_missing_or_damaged_blob_loads_the_builtin_server_and_leaves_the_store_alone) {
    server_list builtin;
    reset_server_list(builtin);
    std::string damaged = encode_server_list({make_server_record("a.example.org", "http", "80", "/", "a")});
    damaged.pop_back();
    for (bool stored : {false, true}) {
        SCOPED_TRACE(stored ? "damaged" : "missing");
        test_host th;
        if (stored) th.host().config().set_blob("discora.servers", damaged.data(), damaged.size());
        const std::size_t saves = th.config_saves();
        EXPECT_EQ(load_server_list(), builtin);
        EXPECT_EQ(th.config_saves(), saves);
        service_ref<memory_block> kept = reopen_store(th)->get_blob("discora.servers");
        EXPECT_EQ(kept ? std::string(static_cast<const char*>(kept->data()), kept->size()) : "<absent>",
                  stored ? damaged : "<absent>");
    }
}

} // namespace
