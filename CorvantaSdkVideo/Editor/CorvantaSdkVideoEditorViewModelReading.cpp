#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditorViewModel.hpp>

#include <CorvantaSdkVideo/Editor/EditorTasks.hpp>
#include <CorvantaSdkVideo/Editor/PictureColors.hpp>
#include <CorvantaSdkVideo/Editor/StripThumbnails.hpp>
#include <platform/AssetDuration.hpp>

#include <QCoreApplication>
#include <QStringList>

#include <cmath>
#include <exception>
#include <utility>

namespace corvanta {

namespace {

QString noticeText(const char* source) {
    return QCoreApplication::translate("CorvantaSdkVideoEditor", source);
}

Task<std::vector<CorvantaSdkVideoInformation>> probed(VideosInformationGenerator generator, URL video) {
    std::vector<URL> videos{std::move(video)};
    co_return co_await generator.getVideosInformation(std::move(videos));
}

// A probe's "30000/1001" as seconds; that of the usual rate where there is none.
double frameDurationOf(const CorvantaSdkVideoInformation& information) {
    const std::string rate = information.videos.empty() ? "" : information.videos.front().frameRate;
    const QStringList parts = QString::fromStdString(rate).split(QLatin1Char('/'));
    const double frames = parts[0].toDouble();
    const double seconds = parts.size() > 1 ? parts[1].toDouble() : 1;
    return frames > 0 && seconds > 0 ? seconds / frames : 1.0 / 30;
}

} // namespace

Task<> CorvantaSdkVideoEditorViewModel::readVideo(QPointer<ViewModel> model,
                                                  VideosInformationGenerator generator, URL video) {
    std::vector<CorvantaSdkVideoInformation> videos;
    double duration = 0;
    try {
        videos = co_await onEditorWorker(probed(std::move(generator), video));
        duration = co_await onEditorWorker(assetDuration(video));
    } catch (const std::exception&) {
        videos.clear();
    }
    if (!model) {
        co_return;
    }
    if (videos.empty()) {
        model->isUnreadable_ = true;
        model->tellWhatIsWrong(noticeText("This file can't be read as a video."), model->playerHasFailed_);
    } else {
        model->takeInformation(videos.front(), duration);
    }
}

void CorvantaSdkVideoEditorViewModel::takeInformation(const CorvantaSdkVideoInformation& information,
                                                      double duration) {
    information_ = information;
    const VideoSize size = information.videoSize;
    // A file without a picture has no aspect.
    if (size.width > 0 && size.height > 0) {
        videoAspectRatio_ = size.width / size.height;
    }
    geometry_.setDuration(duration);
    frameDuration_ = frameDurationOf(information);
    setStopAt(duration);
    isReady_ = duration > 0;
    isUnreadable_ = !isReady();
    QString notice;
    if (isUnreadable()) {
        notice = noticeText("This video has no length.");
    } else if (information.videos.empty()) {
        notice = noticeText("There is no picture in this file.");
    }
    tellWhatIsWrong(notice, playerHasFailed_);
    generateThumbnails();
}

// Why a player fails is often found by reading the file, which may end later.
void CorvantaSdkVideoEditorViewModel::tellWhatIsWrong(const QString& file, bool playerHasFailed) {
    fileNotice_ = file;
    playerHasFailed_ = playerHasFailed;
    const bool isRead = isReady() || isUnreadable();
    notice_ = fileNotice_.isEmpty() && playerHasFailed_ && isRead ? noticeText("The picture can't be shown.")
                                                                  : fileNotice_;
}

void CorvantaSdkVideoEditorViewModel::generateThumbnails() {
    stripThumbnails_->make(videoDuration(), thumbnailPixels(),
                           information_ ? pictureColorsOf(*information_) : PictureColors{});
}

void CorvantaSdkVideoEditorViewModel::renewThumbnails() {
    if (isReady() && thumbnailPixels() != stripThumbnails_->pixels()) {
        generateThumbnails();
    }
}

bool CorvantaSdkVideoEditorViewModel::isMakingThumbnails() const { return stripThumbnails_->isMaking(); }

QSize CorvantaSdkVideoEditorViewModel::thumbnailPixels() const {
    constexpr int padding =
        totalTrimmerHorizontalPadding() - static_cast<int>(thumbnailListHorizontalPadding);
    const int width = (static_cast<int>(screenWidth_) - padding) / thumbnailCount;
    return {static_cast<int>(std::lround(width * pixelRatio_)),
            static_cast<int>(std::lround(trimmerHeight * pixelRatio_))};
}

void CorvantaSdkVideoEditorViewModel::setThumbnail(int index, const QImage& image) {
    QList<QImage> images = thumbnails();
    images[index] = image;
    thumbnails_ = images;
}

QSizeF CorvantaSdkVideoEditorViewModel::videoResolution() const {
    return information_ ? QSizeF(information_->videoSize.width, information_->videoSize.height)
                        : QSizeF(0, 0);
}

std::optional<Orientation> CorvantaSdkVideoEditorViewModel::videoOrientation() const {
    return information_ ? std::optional(information_->orientation) : std::nullopt;
}

} // namespace corvanta
