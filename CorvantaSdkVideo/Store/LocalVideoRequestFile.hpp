#pragma once

#include <platform/URL.hpp>

#include <cstddef>
#include <cstdint>
#include <functional>

namespace corvanta {

/// An input file of a stored request. A plain value.
struct LocalVideoRequestFile {
    URL path;
    /// Its place among the inputs, from 0.
    std::int64_t index = 0;

    friend bool operator==(const LocalVideoRequestFile&, const LocalVideoRequestFile&) = default;
};

} // namespace corvanta

template <>
struct std::hash<corvanta::LocalVideoRequestFile> {
    std::size_t operator()(const corvanta::LocalVideoRequestFile& file) const noexcept;
};
