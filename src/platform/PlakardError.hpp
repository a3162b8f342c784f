#pragma once
// The one error type. Every failure a user can cause is thrown as a
// PlakardError carrying its complete message (no "plakard: " prefix, no
// newline); only PlakardCLI::main catches it and turns it into a line on
// standard error and exit status 1.
//
// It lives in platform/ rather than cli/ because every layer throws it and
// dependencies must point downwards.

#include <exception>
#include <string>
#include <utility>

namespace plakard {

struct PlakardError : std::exception {
    std::string description;

    explicit PlakardError(std::string message) : description(std::move(message)) {}
    const char* what() const noexcept override { return description.c_str(); }
};

}  // namespace plakard
