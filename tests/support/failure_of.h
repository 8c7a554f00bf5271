#pragma once
// The text of the failure an action raised, when it raised one of the expected kind; a test
// failure (and an empty text) when it raised nothing.

#include <functional>
#include <string>

#include <gtest/gtest.h>

namespace testing_support {

template <typename Exception>
std::string failure_of(const std::function<void()>& action) {
    try {
        action();
    } catch (const Exception& e) {
        return e.what();
    }
    ADD_FAILURE() << "no failure of the expected kind";
    return {};
}

} // namespace testing_support
