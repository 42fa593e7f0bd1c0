#include <CorvantaSdkVideo/Editor/Views/CorvantaSdkVideoPlayer.hpp>

#include <QPainter>
#include <QPainterPath>
#include <QtMath>

#include <algorithm>

namespace corvanta {

CorvantaSdkVideoPlayer::CorvantaSdkVideoPlayer(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setAntialiasing(true);
    connect(&sink_, &QVideoSink::videoFrameChanged, this, &CorvantaSdkVideoPlayer::takeFrame);
    connect(this, &CorvantaSdkVideoPlayer::radiusChanged, this, [this] { update(); });
}

CorvantaSdkVideoPlayer::~CorvantaSdkVideoPlayer() { detach(); }

void CorvantaSdkVideoPlayer::setViewModel(CorvantaSdkVideoEditorViewModel* viewModel) {
    if (viewModel == viewModel_) {
        return;
    }
    detach();
    viewModel_ = viewModel;
    if (viewModel != nullptr) {
        player_ = &viewModel->videoPlayer();
        player_->setVideoSink(&sink_);
        // What the frames' colours are is known then.
        connect(viewModel, &CorvantaSdkVideoEditorViewModel::isReadyChanged, this, [this] { update(); });
    }
    Q_EMIT viewModelChanged();
}

void CorvantaSdkVideoPlayer::detach() {
    if (viewModel_) {
        viewModel_->disconnect(this);
    }
    if (player_) {
        player_->setVideoSink(nullptr);
    }
}

void CorvantaSdkVideoPlayer::takeFrame(const QVideoFrame& frame) {
    // An empty one comes when the player stops: the last picture stays.
    if (!frame.isValid()) {
        return;
    }
    frame_ = frame;
    QSizeF size = frame.size();
    if (frame.rotationAngle() % 180 != 0) {
        size.transpose();
    }
    const double aspectRatio = size.height() > 0 ? size.width() / size.height() : 0;
    if (aspectRatio != frameAspectRatio_) {
        frameAspectRatio_ = aspectRatio;
        Q_EMIT frameAspectRatioChanged();
    }
    update();
}

QSGNode* CorvantaSdkVideoPlayer::updatePaintNode(QSGNode* node, UpdatePaintNodeData* data) {
    if (frame_.isValid()) {
        paintedFrame_ = std::exchange(frame_, {});
        paintedImage_ = {};
    }
    const PictureColors colors = viewModel_ && viewModel_->information()
                                     ? pictureColorsOf(*viewModel_->information())
                                     : PictureColors{};
    if (colors != paintedColors_) {
        paintedColors_ = colors;
        paintedImage_ = {};
    }
    return QQuickPaintedItem::updatePaintNode(node, data);
}

void CorvantaSdkVideoPlayer::paint(QPainter* painter) {
    const QRectF bounds = boundingRect();
    const QTransform toDevice = painter->transform();
    const QSize room(qCeil(bounds.width() * toDevice.m11()), qCeil(bounds.height() * toDevice.m22()));
    if (paintedFrame_.isValid() && (paintedImage_.isNull() || room != paintedRoom_)) {
        paintedImage_ = converter_.image(paintedFrame_, room, paintedColors_);
        paintedRoom_ = room;
    }
    painter->setPen(Qt::NoPen);
    painter->setBrush(Qt::black);
    painter->drawRoundedRect(bounds, radius_, radius_);
    if (paintedImage_.isNull()) {
        return;
    }
    const QSizeF fitted = QSizeF(paintedImage_.size()).scaled(bounds.size(), Qt::KeepAspectRatio);
    const QRectF place(
        QPointF((bounds.width() - fitted.width()) / 2, (bounds.height() - fitted.height()) / 2), fitted);
    // A brush, since a clip's border is not smooth. A brush begins anew beyond its picture, which is
    // therefore taken from the middle of its first pixels to that of its last.
    QBrush brush(paintedImage_);
    const double xScale = fitted.width() / std::max(1, paintedImage_.width() - 1);
    const double yScale = fitted.height() / std::max(1, paintedImage_.height() - 1);
    brush.setTransform(
        QTransform::fromTranslate(place.x() - xScale / 2, place.y() - yScale / 2).scale(xScale, yScale));
    QPainterPath corners;
    corners.addRoundedRect(bounds, radius_, radius_);
    QPainterPath area;
    area.addRect(place);
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    painter->fillPath(area.contains(bounds.adjusted(1, 1, -1, -1)) ? corners : corners.intersected(area),
                      brush);
}

} // namespace corvanta
