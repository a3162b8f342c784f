#pragma once
// Broken internal preconditions (a size below 1, a value beyond the 32-bit
// range the image libraries take) are programming errors, not user errors:
// they stop the process at once, in every build type, instead of running into
// undefined behaviour.

#include <cmath>
#include <cstdint>
#include <limits>

namespace plakard {

[[noreturn]] inline void preconditionFailure() { __builtin_trap(); }

inline void require(bool condition) {
    if (!condition) [[unlikely]] preconditionFailure();
}

// The value as a signed 32-bit int, or a trap.
inline int toInt32(std::int64_t value) {
    require(value >= std::numeric_limits<int>::min() && value <= std::numeric_limits<int>::max());
    return static_cast<int>(value);
}

// A real rounded to the nearest integer, halves away from zero (std::round's
// rule), as a signed 64-bit integer; not finite or out of range is a trap.
inline std::int64_t roundToInt64(double value) {
    double rounded = std::round(value);
    require(std::isfinite(rounded) && rounded >= -9223372036854775808.0 && rounded < 9223372036854775808.0);
    return static_cast<std::int64_t>(rounded);
}

}  // namespace plakard
