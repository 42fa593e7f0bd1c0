#pragma once

#include <CorvantaSdkVideo/Editor/PictureColors.hpp>

#include <QImage>
#include <QSize>
#include <QVideoFrame>

#include <memory>

struct SwsContext;

namespace corvanta {

/// Makes images of a player's frames. Qt's own conversion reads them by BT.601 or BT.709 as the graphics at
/// hand have it, whatever they were coded by. One thread at a time.
class FrameConverter {
  public:
    /// The frame turned as it is to be shown, and no larger than `most`; null if it can't be read.
    QImage image(const QVideoFrame& frame, const QSize& most, const PictureColors& colors);

  private:
    struct Free {
        void operator()(SwsContext* context) const;
    };

    QImage scaled(QVideoFrame frame, const QSize& size, const PictureColors& colors);

    std::unique_ptr<SwsContext, Free> context_;
};

} // namespace corvanta
