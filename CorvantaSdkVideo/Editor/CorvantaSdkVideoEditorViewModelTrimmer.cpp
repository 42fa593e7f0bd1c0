#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditorViewModel.hpp>

#include <CorvantaSdkVideo/Editor/EditorTasks.hpp>
#include <CorvantaSdkVideo/Editor/Gestures.hpp>
#include <CorvantaSdkVideo/Shared/CorvantaSdkVideoUtils.hpp>
#include <platform/AssetReader.hpp>
#include <platform/Directories.hpp>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <utility>

namespace corvanta {

namespace {

/// From the frame's outer side to the centre of its grab handle.
constexpr double handleInset = 12;
/// Between the two edge positions.
constexpr double minimumEdgeDistance = 64;
constexpr double centerTouchDistance = 16;
constexpr double edgeTouchDistance = 48;

// Minutes keep counting past the hour; fractions are cut off.
QString durationText(double seconds) {
    if (!std::isfinite(seconds) || seconds < 0 || seconds >= 1e15) {
        return QStringLiteral("00:00");
    }
    const auto whole = static_cast<qint64>(seconds);
    return QStringLiteral("%1:%2")
        .arg(whole / 60, 2, 10, QLatin1Char('0'))
        .arg(whole % 60, 2, 10, QLatin1Char('0'));
}

Task<std::vector<CorvantaSdkVideoInformation>> probed(VideosInformationGenerator generator, URL video) {
    std::vector<URL> videos{std::move(video)};
    co_return co_await generator.getVideosInformation(std::move(videos));
}

Task<double> durationOf(URL video) { co_return AssetReader(video).duration(); }

// An editor of the host's own may hand out files from elsewhere, which aren't ours to remove.
void removeIfMade(const URL& thumbnail) {
    const std::filesystem::path path = thumbnail.path();
    if (path.parent_path() == Directories::documents().path()) {
        CorvantaSdkVideoUtils::deleteFileIfExists(thumbnail);
    }
}

// The picture is null if the file can't be read.
Task<QImage> thumbnail(std::shared_ptr<CorvantaSdkVideoEditor> editor, URL video, double position,
                       std::int64_t width, std::int64_t height) {
    const URL file = co_await editor->getThumbnailForVideo(std::move(video), position, width, height);
    QImage image(QString::fromStdString(file.path()));
    removeIfMade(file);
    co_return image;
}

} // namespace

void CorvantaSdkVideoEditorViewModel::setupTrimmer(const QSizeF& forScreenSize) {
    screenWidth_ = forScreenSize.width();
    screenHeight_ = forScreenSize.height();
    setupInitialUI();
    startOnQtThread(readVideo(this, videosInformationGenerator_, videoURL_));
}

void CorvantaSdkVideoEditorViewModel::setupInitialUI() {
    const double width = trimmerInitialWidth();
    trimmerSize_ = QSizeF(width, trimmerHeight);
    thumbnailSize_ = QSizeF((width - totalThumbnailListHorizontalPadding()) / thumbnailCount, trimmerHeight);
    setLeftEdgePosition(handleInset);
    setRightEdgePosition(width - handleInset);
}

Task<> CorvantaSdkVideoEditorViewModel::readVideo(QPointer<ViewModel> model,
                                                  VideosInformationGenerator generator, URL video) {
    const auto videos = co_await onEditorWorker(probed(std::move(generator), video));
    if (!model || videos.empty()) {
        co_return;
    }
    const CorvantaSdkVideoInformation& information = videos.front();
    const VideoSize size = information.videoSize;
    // A file without a picture has no aspect.
    if (size.width > 0 && size.height > 0) {
        model->videoAspectRatio_ = size.width / size.height;
    }
    const double duration = co_await onEditorWorker(durationOf(video));
    if (!model) {
        co_return;
    }
    model->videoDuration_ = duration;
    model->videoResolution_ = QSizeF(size.width, size.height);
    model->videoOrientation_ = information.orientation;
    model->currentRotation_ = information.rotation();
    model->setStopAt(duration);
    model->generateThumbnails();
}

void CorvantaSdkVideoEditorViewModel::generateThumbnails() {
    constexpr int padding =
        totalTrimmerHorizontalPadding() - static_cast<int>(thumbnailListHorizontalPadding);
    const auto width = (static_cast<std::int64_t>(screenWidth_) - padding) / thumbnailCount;
    startOnQtThread(makeThumbnails(this, editor_, videoURL_, videoDuration_, width));
}

Task<> CorvantaSdkVideoEditorViewModel::makeThumbnails(QPointer<ViewModel> model,
                                                       std::shared_ptr<CorvantaSdkVideoEditor> editor,
                                                       URL video, double duration, std::int64_t width) {
    const double step = duration / thumbnailCount;
    for (int index = 0; index < thumbnailCount; ++index) {
        const double position = duration - index * step;
        const QImage image =
            co_await onEditorWorker(thumbnail(editor, video, position, width, trimmerHeight));
        if (!model || image.isNull()) {
            co_return;
        }
        model->setThumbnail(index, image);
    }
}

void CorvantaSdkVideoEditorViewModel::setThumbnail(int index, const QImage& image) {
    QList<QImage> images = thumbnails();
    images[index] = image;
    thumbnails_ = images;
}

void CorvantaSdkVideoEditorViewModel::applyTrimming(const QPointF& location, const QRectF& strip) {
    if (!holds(strip, location)) {
        return;
    }
    updateUIforTrimmingIfNeeded();
    switch (getTrimEdge(location)) {
    case TrimEdge::right:
        moveRightEdge(location.x());
        break;
    case TrimEdge::left:
        moveLeftEdge(location.x());
        break;
    case TrimEdge::center:
        moveTrimmerCenter(location.x());
        break;
    case TrimEdge::none:
        break;
    }
}

void CorvantaSdkVideoEditorViewModel::updateUIforTrimmingIfNeeded() {
    if (trimmerBorderColor() == CorvantaColor::gray) {
        trimmerBorderColor_ = CorvantaColor::ambar;
        isTrimmerRangeVisible_ = true;
    }
}

// The order decides where zones overlap: a narrow frame is moved, not resized.
TrimEdge CorvantaSdkVideoEditorViewModel::getTrimEdge(const QPointF& location) const {
    const double x = location.x();
    if (std::abs(x - trimmerCenter()) <= centerTouchDistance) {
        return TrimEdge::center;
    }
    if (std::abs(x - rightEdgePosition_) <= edgeTouchDistance) {
        return TrimEdge::right;
    }
    if (std::abs(x - leftEdgePosition_) <= edgeTouchDistance) {
        return TrimEdge::left;
    }
    return TrimEdge::none;
}

void CorvantaSdkVideoEditorViewModel::moveRightEdge(double position) {
    if (!(position - leftEdgePosition_ > minimumEdgeDistance &&
          trimmerInitialWidth() - handleInset > position)) {
        return;
    }
    setRightSpaceSize(calculateRightSpaceSize(position));
    setRightEdgePosition(position);
    trimmerSize_ = QSizeF(trimmerRightEdgePosition_ - trimmerXOffset(), trimmerSize().height());
    setStopAt(secondsAt(trimmerRightEdgePosition_));
}

void CorvantaSdkVideoEditorViewModel::moveLeftEdge(double position) {
    if (!(rightEdgePosition_ - position > minimumEdgeDistance && position > handleInset)) {
        return;
    }
    leftSpaceSize_ = calculateLeftSpaceSize(position);
    setLeftEdgePosition(position);
    trimmerSize_ = QSizeF(trimmerRightEdgePosition_ - trimmerXOffset(), trimmerSize().height());
    setTrimmerStart(secondsAt(trimmerXOffset()));
    seek(trimmerStart());
}

void CorvantaSdkVideoEditorViewModel::moveTrimmerCenter(double position) {
    const double delta = position - trimmerCenter();
    const double left = leftEdgePosition_ + delta;
    const double right = rightEdgePosition_ + delta;
    // Tested on the very numbers that are stored, so that rounding can't put the end past the duration.
    if (!(left >= handleInset && right + handleInset <= trimmerInitialWidth())) {
        return;
    }
    setLeftEdgePosition(left);
    // The spaces are functions of the touch, not of the edges.
    leftSpaceSize_ = calculateLeftSpaceSize(position);
    setRightSpaceSize(calculateRightSpaceSize(position));
    setTrimmerStart(secondsAt(trimmerXOffset()));
    seek(trimmerStart());
    setRightEdgePosition(right);
    setStopAt(secondsAt(trimmerRightEdgePosition_));
}

double CorvantaSdkVideoEditorViewModel::calculateLeftSpaceSize(double position) const {
    return std::min(position, thumbnailHorizontalPadding);
}

double CorvantaSdkVideoEditorViewModel::calculateRightSpaceSize(double position) const {
    return std::min(trimmerInitialWidth() - position, thumbnailHorizontalPadding);
}

void CorvantaSdkVideoEditorViewModel::setLeftEdgePosition(double position) {
    leftEdgePosition_ = position;
    trimmerXOffset_ = position - handleInset;
}

void CorvantaSdkVideoEditorViewModel::setRightEdgePosition(double position) {
    rightEdgePosition_ = position;
    trimmerRightEdgePosition_ = position + handleInset;
}

void CorvantaSdkVideoEditorViewModel::setRightSpaceSize(double size) {
    rightSpaceSize_ = size;
    showRightWhiteSpace_ = size == thumbnailHorizontalPadding;
}

void CorvantaSdkVideoEditorViewModel::setTrimmerStart(double seconds) {
    trimmerStart_ = seconds;
    updateRange();
}

void CorvantaSdkVideoEditorViewModel::setStopAt(double seconds) {
    stopAt_ = seconds;
    updateRange();
}

void CorvantaSdkVideoEditorViewModel::updateRange() {
    trimmerRange_ = durationText(trimmerStart()) + QStringLiteral(" - ") + durationText(stopAt());
}

double CorvantaSdkVideoEditorViewModel::secondsAt(double position) const {
    return videoDuration_ * (position / trimmerInitialWidth());
}

} // namespace corvanta
