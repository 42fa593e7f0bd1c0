#pragma once

namespace corvanta {

/// The linear part of a track's display matrix: a point (x, y) goes to (a x + c y, b x + d y).
struct AffineTransform {
    double a = 1;
    double b = 0;
    double c = 0;
    double d = 1;

    friend bool operator==(const AffineTransform&, const AffineTransform&) = default;
};

} // namespace corvanta
