#pragma once
// A test host with the component attached, and the e-mail setting put back afterwards: the
// setting caches its value for the life of the process, so a test that changes it must not leave
// it to the next.

#include <optional>
#include <string>

#include <gtest/gtest.h>

#include <hostkit/config_store_file.h>

#include "config/cfg_var.h"
#include "preferences_page_driver.h"
#include "support/test_host.h"

namespace preferences_testing {

class preferences_test : public ::testing::Test {
protected:
    preferences_test() : saved_email_(cfg_email.get()) {}
    ~preferences_test() override { cfg_email.set(saved_email_); }

    // The store as the next session will see it: a second store opened on the same file.
    service_ref<hostkit::config_store_file> reopened_store() const {
        return make_service<hostkit::config_store_file>(host.profile() / hostkit::host::config_file_name);
    }
    // The server list the next session finds stored (std::nullopt: none was stored).
    std::optional<server_list> next_session_servers() const {
        service_ref<memory_block> blob = reopened_store()->get_blob("discora.servers");
        if (!blob) return std::nullopt;
        return decode_server_list(blob->data(), blob->size());
    }
    // The e-mail the next session reads ("<absent>" when none was ever stored).
    std::string next_session_email() const {
        return reopened_store()->get_string(cfg_var_key(cfg_email.guid()).c_str(), "<absent>");
    }

    testing_support::test_host host;

private:
    std::string saved_email_;
};

} // namespace preferences_testing
