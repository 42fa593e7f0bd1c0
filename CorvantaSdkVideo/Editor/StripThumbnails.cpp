#include <CorvantaSdkVideo/Editor/StripThumbnails.hpp>

#include <CorvantaSdkVideo/Editor/EditorTasks.hpp>
#include <CorvantaSdkVideo/Editor/PictureFile.hpp>

#include <boost/asio/cancellation_signal.hpp>

#include <exception>
#include <optional>
#include <utility>

namespace corvanta {

namespace {

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

} // namespace

StripThumbnails::StripThumbnails(std::shared_ptr<CorvantaSdkVideoEditor> editor, URL video, int count)
    : editor_(std::move(editor)), video_(std::move(video)), count_(count) {}

StripThumbnails::~StripThumbnails() {
    if (stop_) {
        stop_();
    }
}

void StripThumbnails::make(double duration, QSize pixels, const PictureColors& colors) {
    ++round_;
    duration_ = duration;
    pixels_ = pixels;
    colors_ = colors;
    if (!std::exchange(isMaking_, true)) {
        startOnQtThread(makeAll(this, editor_, video_));
    } else if (stop_) {
        stop_();
    }
}

// One task makes them all: a new round begins when the picture that is being made has come, or its run has
// ended without it.
Task<> StripThumbnails::makeAll(QPointer<StripThumbnails> strip,
                                std::shared_ptr<CorvantaSdkVideoEditor> editor, URL video) {
    int round = strip ? strip->round_ : 0;
    int index = 0;
    while (strip && index < strip->count_) {
        // Counted from the clip's end.
        const double position = strip->duration_ - index * (strip->duration_ / strip->count_);
        const auto stop = std::make_shared<boost::asio::cancellation_signal>();
        strip->stop_ = [stop] { stop->emit(boost::asio::cancellation_type::terminal); };
        Task<QImage> making = thumbnail(editor, video, position, strip->pixels_, strip->colors_);
        const QImage image = co_await onEditorWorker(std::move(making), stop->slot());
        if (!strip) {
            co_return;
        }
        if (std::exchange(round, strip->round_) != strip->round_) {
            index = 0;
        } else if (image.isNull()) {
            break;
        } else {
            Q_EMIT strip->made(index++, image);
        }
    }
    if (strip) {
        strip->stop_ = {};
        strip->isMaking_ = false;
    }
}

} // namespace corvanta
