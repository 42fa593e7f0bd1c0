#pragma once

#include <QPointF>
#include <QRectF>

namespace corvanta {

/// Whether a location is in a rectangle, whose right and lower sides belong to what lies beyond.
inline bool holds(const QRectF& rectangle, const QPointF& location) {
    return rectangle.left() <= location.x() && location.x() < rectangle.right() &&
           rectangle.top() <= location.y() && location.y() < rectangle.bottom();
}

} // namespace corvanta
