#pragma once
// The component's own utility exceptions. Each carries the text the user is shown; callers
// catch them as std::exception.

#include <stdexcept>
#include <string>

namespace ZR {

// Input that does not have the form it must have (a number with a letter in it, say).
class invalid_input : public std::runtime_error {
public:
    invalid_input() : std::runtime_error("invalid input") {}
    explicit invalid_input(const std::string& text) : std::runtime_error(text) {}
};

// A value that does not fit the type it is read into.
class overflow : public std::overflow_error {
public:
    overflow() : std::overflow_error("overflow") {}
};

// The caller's abort flag was set while work was under way.
class user_abort : public std::runtime_error {
public:
    user_abort() : std::runtime_error("user abort") {}
};

} // namespace ZR
