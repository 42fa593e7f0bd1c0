#pragma once

namespace corvanta {

/// From the frame's outer side to the centre of its grab handle, in points.
constexpr double handleInset = 12;
/// Between the two edge positions.
constexpr double minimumEdgeDistance = 64;

} // namespace corvanta
