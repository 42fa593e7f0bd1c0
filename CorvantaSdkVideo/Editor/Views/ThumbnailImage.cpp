#include <CorvantaSdkVideo/Editor/Views/ThumbnailImage.hpp>

#include <QPainter>

namespace corvanta {

void ThumbnailImage::setViewModel(CorvantaSdkVideoEditorViewModel* viewModel) {
    if (viewModel == viewModel_) {
        return;
    }
    if (viewModel_) {
        viewModel_->disconnect(this);
    }
    viewModel_ = viewModel;
    if (viewModel_) {
        connect(viewModel_, &CorvantaSdkVideoEditorViewModel::thumbnailsChanged, this,
                &ThumbnailImage::takeImage);
    }
    takeImage();
    Q_EMIT viewModelChanged();
}

void ThumbnailImage::setIndex(int index) {
    if (index != index_) {
        index_ = index;
        takeImage();
        Q_EMIT indexChanged();
    }
}

void ThumbnailImage::takeImage() {
    const QImage image = viewModel_ ? viewModel_->thumbnails().value(index_) : QImage();
    if (image.cacheKey() != image_.cacheKey()) {
        image_ = image;
        update();
    }
}

void ThumbnailImage::paint(QPainter* painter) {
    if (!image_.isNull()) {
        painter->setRenderHint(QPainter::SmoothPixmapTransform);
        painter->drawImage(boundingRect(), image_);
    }
}

} // namespace corvanta
