#include <CorvantaSdkVideo/Editor/Views/ThumbnailImage.hpp>

#include <QPainter>

namespace corvanta {

void ThumbnailImage::setImages(const QList<QImage>& images) {
    images_ = images;
    choose();
    Q_EMIT imagesChanged();
}

void ThumbnailImage::setIndex(int index) {
    index_ = index;
    choose();
    Q_EMIT indexChanged();
}

void ThumbnailImage::choose() {
    const QImage chosen = images_.value(index_);
    if (chosen.cacheKey() != image_.cacheKey()) {
        image_ = chosen;
        update();
    }
}

void ThumbnailImage::paint(QPainter* painter) {
    if (image_.isNull()) {
        return;
    }
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    painter->drawImage(boundingRect(), image_);
}

} // namespace corvanta
