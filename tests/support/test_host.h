#pragma once
// A real host for tests: the host kit's registry, file-backed configuration store, console and
// threaded process in a temporary profile, with the component (linked into the test program)
// attached through its entry, exactly as a host attaches a loaded one.

#include <memory>
#include <string>
#include <vector>

#include <hostkit/host.h>

#include "support/temp_folder.h"

namespace testing_support {

struct test_host_options {
    bool attach_component = true;
    // The path the component is told it was loaded from (its file name decides the
    // installation check).
    std::string component_file_name = "";
};

class test_host {
public:
    explicit test_host(const test_host_options& options = {});
    ~test_host();

    hostkit::host& host() { return *host_; }
    const std::filesystem::path& profile() const { return profile_.path(); }
    // Lines the component printed to the console.
    std::vector<std::string> console_lines() const { return host_->console().lines(); }
    // Popups shown so far.
    std::vector<hostkit::popup_entry> popups() const { return host_->popups().popups(); }
    // Times the configuration store wrote its file.
    std::size_t config_saves() const { return host_->config().save_count(); }
    // Registers a host service for this test (a host double or a real service).
    void add_service(const GUID& cls, service_ptr instance) { host_->services().add_instance(cls, std::move(instance)); }
    // Runs the main-thread queue until `done()` holds.
    void run_until(const std::function<bool()>& done) { host_->queue().run_until(done); }

private:
    temp_folder profile_;
    std::unique_ptr<hostkit::host> host_;
};

} // namespace testing_support
