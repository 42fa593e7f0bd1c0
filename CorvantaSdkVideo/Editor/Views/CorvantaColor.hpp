#pragma once

#include <QColor>

namespace corvanta {

/// The editor's two colours, sRGB, opaque.
struct CorvantaColor {
    inline static const QColor ambar = QColor::fromRgbF(1.0F, 0.7569F, 0.0275F);
    inline static const QColor gray = QColor::fromRgbF(0.3804F, 0.3804F, 0.3804F);
};

} // namespace corvanta
