#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditorViewModel.hpp>

#include <CorvantaSdkVideo/Editor/EditorTasks.hpp>
#include <CorvantaSdkVideo/Editor/PictureColors.hpp>
#include <CorvantaSdkVideo/Editor/PictureFile.hpp>
#include <platform/AssetDuration.hpp>

#include <boost/asio/cancellation_signal.hpp>

#include <QCoreApplication>
#include <QStringList>

#include <cmath>
#include <exception>
#include <memory>
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

// The picture is null if there is none that can be read.
Task<QImage> thumbnail(std::shared_ptr<CorvantaSdkVideoEditor> editor, URL video, double position, QSize size,
                       PictureColors colors) {
    const PictureInTheMaking open;
    std::optional<URL> file;
    try {
        file = co_await editor->getThumbnailForVideo(std::move(video), position, size.width(), size.height());
    } catch (const std::exception&) {
        // The strip stays blank from here on.
        co_return QImage();
    }
    QImage image(QString::fromStdString(file->path()));
    removeIfMade(*file);
    co_return withColors(std::move(image), colors);
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
    videoDuration_ = duration;
    videoResolution_ = QSizeF(size.width, size.height);
    videoOrientation_ = information.orientation;
    currentRotation_ = information.rotation();
    frameDuration_ = frameDurationOf(information);
    hasSound_ = !information.audios.empty();
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
    ++thumbnailRound_;
    thumbnailPixels_ = thumbnailPixels();
    if (!std::exchange(isMakingThumbnails_, true)) {
        startOnQtThread(makeThumbnails(this, editor_, videoURL_));
    } else if (stopThumbnail_) {
        stopThumbnail_();
    }
}

void CorvantaSdkVideoEditorViewModel::renewThumbnails() {
    if (isReady() && thumbnailPixels() != thumbnailPixels_) {
        generateThumbnails();
    }
}

QSize CorvantaSdkVideoEditorViewModel::thumbnailPixels() const {
    constexpr int padding =
        totalTrimmerHorizontalPadding() - static_cast<int>(thumbnailListHorizontalPadding);
    const int width = (static_cast<int>(screenWidth_) - padding) / thumbnailCount;
    return {static_cast<int>(std::lround(width * pixelRatio_)),
            static_cast<int>(std::lround(trimmerHeight * pixelRatio_))};
}

// One task makes them all: a new round begins when the picture that is being made has come, or its run has
// ended without it.
Task<> CorvantaSdkVideoEditorViewModel::makeThumbnails(QPointer<ViewModel> model,
                                                       std::shared_ptr<CorvantaSdkVideoEditor> editor,
                                                       URL video) {
    if (!model) {
        co_return;
    }
    int round = model->thumbnailRound_;
    int index = 0;
    while (index < thumbnailCount) {
        const double duration = model->videoDuration_;
        const double position = duration - index * (duration / thumbnailCount);
        const auto stop = std::make_shared<boost::asio::cancellation_signal>();
        model->stopThumbnail_ = [stop] { stop->emit(boost::asio::cancellation_type::terminal); };
        const PictureColors colors =
            model->information_ ? pictureColorsOf(*model->information_) : PictureColors{};
        Task<QImage> making = thumbnail(editor, video, position, model->thumbnailPixels_, colors);
        const QImage image = co_await onEditorWorker(std::move(making), stop);
        if (!model) {
            co_return;
        }
        if (std::exchange(round, model->thumbnailRound_) != model->thumbnailRound_) {
            index = 0;
        } else if (image.isNull()) {
            break;
        } else {
            model->setThumbnail(index++, image);
        }
    }
    model->stopThumbnail_ = {};
    model->isMakingThumbnails_ = false;
}

void CorvantaSdkVideoEditorViewModel::setThumbnail(int index, const QImage& image) {
    QList<QImage> images = thumbnails();
    images[index] = image;
    thumbnails_ = images;
}

} // namespace corvanta
