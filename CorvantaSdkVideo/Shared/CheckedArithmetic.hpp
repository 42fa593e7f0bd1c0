#pragma once

#include <platform/Errors.hpp>

#include <cmath>
#include <cstdint>

/// Integer arithmetic whose overflow ends the process with a clear text instead of giving a wrong number.
namespace corvanta {

/// Cuts the fraction off. Fatal for a value that is infinite, not a number or out of range.
inline std::int64_t truncatedToInteger(double value) {
    if (!std::isfinite(value)) {
        fatalError("Double value cannot be converted to Int64 because it is either infinite or NaN");
    }
    if (value <= -9223372036854777856.0) {
        fatalError(
            "Double value cannot be converted to Int64 because the result would be less than Int64.min");
    }
    if (value >= 9223372036854775808.0) {
        fatalError(
            "Double value cannot be converted to Int64 because the result would be greater than Int64.max");
    }
    return static_cast<std::int64_t>(value);
}

inline std::int64_t checkedDifference(std::int64_t left, std::int64_t right) {
    std::int64_t difference = 0;
    if (__builtin_sub_overflow(left, right, &difference)) {
        fatalError("Arithmetic overflow in a subtraction");
    }
    return difference;
}

inline std::int64_t checkedProduct(std::int64_t left, std::int64_t right) {
    std::int64_t product = 0;
    if (__builtin_mul_overflow(left, right, &product)) {
        fatalError("Arithmetic overflow in a multiplication");
    }
    return product;
}

/// Rounds toward zero.
inline std::int64_t checkedQuotient(std::int64_t dividend, std::int64_t divisor) {
    if (divisor == 0) {
        fatalError("Division by zero");
    }
    if (dividend == INT64_MIN && divisor == -1) {
        fatalError("Arithmetic overflow in a division");
    }
    return dividend / divisor;
}

} // namespace corvanta
