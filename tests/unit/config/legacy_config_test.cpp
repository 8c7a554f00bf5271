// The old-style configuration stream through real files: what the export writes, what the
// import gives each variable, and where either stops.

#include <cstdint>
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include <tunehall/stream.h>

#include "config/legacy_config.h"
#include "config/settings.h"
#include "support/test_host.h"

using namespace std::string_literals;

namespace {

using testing_support::test_host;

constexpr GUID email_guid = {0x5d0e8c31, 0x2b7f, 0x4a96, {0x8d, 0x11, 0x3e, 0x60, 0xf4, 0x9a, 0x02, 0xc5}};
constexpr GUID wipe_guid = {0x9f4a6b20, 0x61d3, 0x47c8, {0xa2, 0x5b, 0x7c, 0x19, 0xe0, 0x34, 0xd8, 0x6f}};
constexpr GUID unknown_guid = {0x11223344, 0x5566, 0x7788, {0x99, 0xaa, 0xbb, 0xcc, 0xdd, 0xee, 0xff, 0x00}};

// A legacy record whose value is a fixed byte string.
class bytes_record final : public cfg_legacy_record {
public:
    bytes_record(const GUID& guid, std::string value, cfg_legacy_record*& list)
        : cfg_legacy_record(guid, list), value_(std::move(value)) {}
    std::uint64_t value_size() const override { return value_.size(); }
    void write_value(stream_writer& out, abort_source& abort) const override {
        out.write(value_.data(), value_.size(), abort);
    }

private:
    std::string value_;
};

// A record claiming a value longer than a u32 can count; its bytes must never be asked for.
class oversized_record final : public cfg_legacy_record {
public:
    oversized_record(const GUID& guid, cfg_legacy_record*& list) : cfg_legacy_record(guid, list) {}
    std::uint64_t value_size() const override { return 0x100000000ull; }
    void write_value(stream_writer&, abort_source&) const override { ADD_FAILURE() << "value of an oversized record written"; }
};

std::string guid_bytes(const GUID& g) {
    std::string out(16, '\0');
    std::memcpy(out.data(), &g, 16);
    return out;
}

std::string u32(std::uint32_t v) {
    return {static_cast<char>(v & 0xFF), static_cast<char>((v >> 8) & 0xFF), static_cast<char>((v >> 16) & 0xFF),
            static_cast<char>((v >> 24) & 0xFF)};
}

std::string entry(const GUID& g, const std::string& value) {
    return guid_bytes(g) + u32(static_cast<std::uint32_t>(value.size())) + value;
}

void export_to(const std::filesystem::path& path, const cfg_legacy_record* records) {
    abort_source_dummy abort;
    file_ptr out = filesystem::g_open(path.string().c_str(), filesystem::open_mode::write_new, abort);
    legacy_config_export(records, *out, abort);
}

void import_from(const std::filesystem::path& path, cfg_var_base* variables) {
    abort_source_dummy abort;
    legacy_config_import(variables, *filesystem::g_open(path.string().c_str(), filesystem::open_mode::read, abort), abort);
}

// The two kinds of variable the component has, on a list of the test's own.
struct variables {
    cfg_var_base* list = nullptr;
    cfg_string email{email_guid, "user@tessellon.invalid", list};
    cfg_int wipe{wipe_guid, 1, list};
};

TEST(legacy_config, export_then_import_round_trips_through_a_file) {
    test_host th;
    auto path = th.profile() / "legacy.cfg";
    cfg_legacy_record* records = nullptr;
    bytes_record wipe_record(wipe_guid, "\0\0\0\0"s, records);
    bytes_record stranger(unknown_guid, "not ours", records);
    bytes_record email_record(email_guid, "old.address@example.org", records);
    export_to(path, records);

    // Records go out in list order: the last constructed first.
    EXPECT_EQ(testing_support::read_file(path), entry(email_guid, "old.address@example.org") +
                                                    entry(unknown_guid, "not ours") + entry(wipe_guid, "\0\0\0\0"s));

    variables v;
    import_from(path, v.list);
    EXPECT_EQ(v.email.get(), "old.address@example.org");
    EXPECT_EQ(v.wipe.get(), 0);

    // The imported values are the settings now, for the next session too.
    auto reopened = make_service<hostkit::config_store_file>(th.profile() / hostkit::host::config_file_name);
    EXPECT_EQ(reopened->get_string(cfg_var_key(email_guid).c_str(), ""), "old.address@example.org");
    EXPECT_EQ(reopened->get_int(cfg_var_key(wipe_guid).c_str(), 1), 0);
}

TEST(legacy_config, oversized_value_raises_overflow_before_any_byte_of_its_record) {
    test_host th;
    auto path = th.profile() / "overflow.cfg";
    cfg_legacy_record* records = nullptr;
    oversized_record huge(unknown_guid, records);
    bytes_record first(email_guid, "a@example.org", records);
    EXPECT_THROW(export_to(path, records), vexa::exception_overflow);
    EXPECT_EQ(testing_support::read_file(path), entry(email_guid, "a@example.org"));
}

const char* const fallback_email = "user@tessellon.invalid";

TEST(legacy_config, import_gives_each_variable_its_value) {
    const struct {
        std::string stream;
        std::string email;
        std::int64_t wipe;
    } cases[] = {
        {"", fallback_email, 1},
        {entry(unknown_guid, "x@y") + entry(email_guid, "a@b"), "a@b", 1},  // an unknown guid is skipped
        {entry(unknown_guid, "") + entry(wipe_guid, "\0"s), fallback_email, 0},
        {entry(email_guid, "a@b") + guid_bytes(wipe_guid).substr(0, 15), "a@b", 1},  // stops at a partial guid
        {entry(email_guid, "a@b") + entry(email_guid, "c@d"), "c@d", 1},
        {entry(email_guid, "a@b\0"s), "a@b", 1},  // a text ends at a stored NUL
        {entry(wipe_guid, "\x02\x01\x00\x00"s), fallback_email, 0x102},
        {entry(wipe_guid, "\xFE\xFF\xFF\xFF"s), fallback_email, -2},
        {entry(wipe_guid, "\x01\x02\x03\x04\x05\x06\x07\x08"s), fallback_email, 0x0807060504030201},
        {entry(wipe_guid, "\0\0\0\0\0\0\0\0\0"s), fallback_email, 1},  // nine bytes: ignored
        {entry(wipe_guid, "") + entry(email_guid, "a@b"), "a@b", 1},
    };
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        SCOPED_TRACE(i);
        test_host th;
        auto path = th.profile() / "legacy.cfg";
        testing_support::write_file(path, cases[i].stream);
        variables v;
        import_from(path, v.list);
        EXPECT_EQ(v.email.get(), cases[i].email);
        EXPECT_EQ(v.wipe.get(), cases[i].wipe);
    }
}

// A value cut short, or a length without its value, is malformed; an abort stops the import.
// Either way no variable changes.
TEST(legacy_config, a_cut_value_or_an_abort_stops_the_import_changing_nothing) {
    const std::string whole = entry(email_guid, "a@example.org");
    const struct {
        std::string stream;
        bool aborted;
    } cases[] = {{whole.substr(0, whole.size() - 3), false},
                 {guid_bytes(email_guid) + u32(0xFFFFFFF0) + "short", false},
                 {whole, true}};
    for (const auto& c : cases) {
        test_host th;
        auto path = th.profile() / "cut.cfg";
        testing_support::write_file(path, c.stream);
        variables v;
        abort_source_impl abort;
        if (c.aborted) abort.abort();
        abort_source_dummy open_abort;
        file_ptr in = filesystem::g_open(path.string().c_str(), filesystem::open_mode::read, open_abort);
        if (c.aborted) EXPECT_THROW(legacy_config_import(v.list, *in, abort), tunehall_io::exception_aborted);
        else EXPECT_THROW(legacy_config_import(v.list, *in, abort), tunehall_io::exception_io_data);
        EXPECT_EQ(v.email.get(), fallback_email);
    }
}

} // namespace
