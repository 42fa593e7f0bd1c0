#pragma once

#include <boost/container_hash/hash.hpp>

#include <cstddef>
#include <functional>

namespace corvanta {

/// A size in pixels.
struct VideoSize {
    double width = 0;
    double height = 0;

    friend bool operator==(const VideoSize&, const VideoSize&) = default;
};

} // namespace corvanta

template <>
struct std::hash<corvanta::VideoSize> {
    std::size_t operator()(const corvanta::VideoSize& size) const noexcept {
        std::size_t seed = 0;
        boost::hash_combine(seed, size.width);
        boost::hash_combine(seed, size.height);
        return seed;
    }
};
