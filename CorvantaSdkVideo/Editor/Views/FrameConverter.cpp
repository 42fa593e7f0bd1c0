#include <CorvantaSdkVideo/Editor/Views/FrameConverter.hpp>

#include <QTransform>

#include <array>
#include <utility>

extern "C" {
#include <libavutil/pixfmt.h>
#include <libswscale/swscale.h>
}

namespace corvanta {

namespace {

// What players give out of memory; others are left to Qt.
AVPixelFormat formatOf(QVideoFrameFormat::PixelFormat format) {
    switch (format) {
    case QVideoFrameFormat::Format_YUV420P:
        return AV_PIX_FMT_YUV420P;
    case QVideoFrameFormat::Format_YUV422P:
        return AV_PIX_FMT_YUV422P;
    case QVideoFrameFormat::Format_UYVY:
        return AV_PIX_FMT_UYVY422;
    case QVideoFrameFormat::Format_YUYV:
        return AV_PIX_FMT_YUYV422;
    case QVideoFrameFormat::Format_NV12:
        return AV_PIX_FMT_NV12;
    case QVideoFrameFormat::Format_NV21:
        return AV_PIX_FMT_NV21;
    case QVideoFrameFormat::Format_P010:
        return AV_PIX_FMT_P010LE;
    case QVideoFrameFormat::Format_P016:
        return AV_PIX_FMT_P016LE;
    case QVideoFrameFormat::Format_YUV420P10:
        return AV_PIX_FMT_YUV420P10LE;
    default:
        return AV_PIX_FMT_NONE;
    }
}

const int* coefficientsOf(PictureColors::Matrix matrix) {
    switch (matrix) {
    case PictureColors::Matrix::bt709:
        return sws_getCoefficients(SWS_CS_ITU709);
    case PictureColors::Matrix::bt2020:
        return sws_getCoefficients(SWS_CS_BT2020);
    case PictureColors::Matrix::bt601:
    case PictureColors::Matrix::rgb:
        break;
    }
    return sws_getCoefficients(SWS_CS_ITU601);
}

// In memory while this object lives.
class MappedFrame {
  public:
    explicit MappedFrame(QVideoFrame frame) : frame_(std::move(frame)) {
        isMapped_ = frame_.map(QVideoFrame::ReadOnly);
    }
    MappedFrame(const MappedFrame&) = delete;
    MappedFrame& operator=(const MappedFrame&) = delete;
    ~MappedFrame() {
        if (isMapped_) {
            frame_.unmap();
        }
    }

    explicit operator bool() const { return isMapped_; }
    const QVideoFrame& frame() const { return frame_; }

  private:
    QVideoFrame frame_;
    bool isMapped_ = false;
};

} // namespace

void FrameConverter::Free::operator()(SwsContext* context) const { sws_freeContext(context); }

QImage FrameConverter::image(const QVideoFrame& frame, const QSize& most, const PictureColors& colors) {
    const bool isReadable = formatOf(frame.pixelFormat()) != AV_PIX_FMT_NONE && !frame.mirrored();
    const bool isOnItsSide = frame.rotationAngle() % 180 != 0;
    const QSize room = isOnItsSide ? most.transposed() : most;
    QSize size = frame.size();
    if (room.width() < size.width() || room.height() < size.height()) {
        size = size.scaled(room, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
    }
    const QImage image = isReadable ? scaled(frame, size, colors) : QImage();
    if (image.isNull()) {
        const QImage converted = frame.toImage();
        const QSize shown = isOnItsSide ? size.transposed() : size;
        return converted.isNull() || converted.size() == shown
                   ? converted
                   : converted.scaled(shown, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    }
    return image.transformed(QTransform().rotate(frame.rotationAngle()));
}

QImage FrameConverter::scaled(QVideoFrame frame, const QSize& size, const PictureColors& colors) {
    const MappedFrame mapped(std::move(frame));
    QImage image(size, QImage::Format_RGB32);
    if (!mapped || image.isNull()) {
        return {};
    }
    context_.reset(sws_getCachedContext(context_.release(), mapped.frame().width(), mapped.frame().height(),
                                        formatOf(mapped.frame().pixelFormat()), size.width(), size.height(),
                                        AV_PIX_FMT_BGR0, SWS_AREA | SWS_ACCURATE_RND, nullptr, nullptr,
                                        nullptr));
    if (!context_) {
        return {};
    }
    constexpr int neutral = 1 << 16;
    sws_setColorspaceDetails(context_.get(), coefficientsOf(colors.matrix), colors.isFullRange ? 1 : 0,
                             sws_getCoefficients(SWS_CS_DEFAULT), 1, 0, neutral, neutral);
    std::array<const std::uint8_t*, 4> planes{};
    std::array<int, 4> strides{};
    for (int plane = 0; plane < mapped.frame().planeCount(); ++plane) {
        planes[static_cast<std::size_t>(plane)] = mapped.frame().bits(plane);
        strides[static_cast<std::size_t>(plane)] = mapped.frame().bytesPerLine(plane);
    }
    std::uint8_t* const lines = image.bits();
    const int stride = static_cast<int>(image.bytesPerLine());
    const int height =
        sws_scale(context_.get(), planes.data(), strides.data(), 0, mapped.frame().height(), &lines, &stride);
    return height == size.height() ? image : QImage();
}

} // namespace corvanta
