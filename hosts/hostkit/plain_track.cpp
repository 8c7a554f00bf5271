#include "plain_track.h"

namespace hostkit {

namespace {
class plain_track : public track_handle {
public:
    plain_track(std::string path, double seconds, track_info info, std::uint32_t subsong)
        : path_(std::move(path)), subsong_(subsong), info_(std::move(info)) {
        info_.length = seconds;
    }
    const char* path() const override { return path_.c_str(); }
    std::uint32_t subsong() const override { return subsong_; }
    double length() const override { return info_.length; }
    bool get_info(track_info& out) const override {
        out = info_;
        return true;
    }

private:
    std::string path_;
    std::uint32_t subsong_;
    track_info info_;
};
} // namespace

track_ref make_plain_track(const std::string& path, double seconds, track_info info, std::uint32_t subsong) {
    return make_service<plain_track>(path, seconds, std::move(info), subsong);
}

} // namespace hostkit
