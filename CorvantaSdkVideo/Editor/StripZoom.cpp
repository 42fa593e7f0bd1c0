#include <CorvantaSdkVideo/Editor/StripZoom.hpp>

#include <CorvantaSdkVideo/Editor/EditorTasks.hpp>
#include <CorvantaSdkVideo/Editor/PictureFile.hpp>

#include <algorithm>
#include <cmath>
#include <exception>
#include <utility>

namespace corvanta {

namespace {

/// What the strip shows when it is zoomed in; shorter clips are fine as they are.
constexpr double shownSeconds = 30;
constexpr double shortestClip = 2 * shownSeconds;

Task<QUrl> pictureOf(std::shared_ptr<CorvantaSdkVideoEditor> editor, URL video, double interval, QSize size) {
    const PictureInTheMaking open;
    const URL file =
        co_await editor->getThumbnailForVideo(std::move(video), interval, size.width(), size.height());
    co_return takePicture(file, "image/jpeg");
}

} // namespace

StripZoom::StripZoom(CorvantaSdkVideoEditorViewModel& viewModel) : viewModel_(viewModel) {
    connect(&viewModel, &CorvantaSdkVideoEditorViewModel::isReadyChanged, this, &StripZoom::changed);
}

bool StripZoom::isPossible() const {
    return viewModel_.isReady() && viewModel_.videoDuration() >= shortestClip;
}

void StripZoom::begin(bool onStart, double position) {
    if (isActive() || !isPossible()) {
        return;
    }
    onStart_ = onStart;
    const double edge = onStart ? viewModel_.trimmerStart() : viewModel_.stopAt();
    from_ = std::clamp(edge - position * shownSeconds, 0.0, viewModel_.videoDuration() - shownSeconds);
    to_ = from_ + shownSeconds;
    isActive_ = true;
    pictures_ = QStringList(CorvantaSdkVideoEditorViewModel::thumbnailCount);
    Q_EMIT picturesChanged();
    Q_EMIT changed();
    startOnQtThread(makePictures(this, viewModel_.editor(), viewModel_.videoURL(), ++round_));
}

void StripZoom::moveTo(double position) {
    if (!isActive()) {
        return;
    }
    const double time = from_ + std::clamp(position, 0.0, 1.0) * (to_ - from_);
    if (onStart_) {
        viewModel_.keep(time, viewModel_.stopAt());
        viewModel_.seekTo(viewModel_.trimmerStart());
    } else {
        viewModel_.keep(viewModel_.trimmerStart(), time);
    }
}

void StripZoom::end() {
    if (std::exchange(isActive_, false)) {
        ++round_;
        Q_EMIT changed();
    }
}

// One after the other, and no longer than they are looked at.
Task<> StripZoom::makePictures(QPointer<StripZoom> zoom, std::shared_ptr<CorvantaSdkVideoEditor> editor,
                               URL video, int round) {
    for (qsizetype index = 0; zoom && zoom->round_ == round && index < zoom->pictures_.size(); ++index) {
        const double width = (zoom->to_ - zoom->from_) / static_cast<double>(zoom->pictures_.size());
        const double time = zoom->from_ + width * static_cast<double>(index);
        const double interval = zoom->viewModel_.videoDuration() - time;
        const QSize size = zoom->viewModel_.thumbnailPixels();
        QUrl picture;
        try {
            picture = co_await onEditorWorker(pictureOf(editor, video, interval, size));
        } catch (const std::exception&) {
            // It stays blank.
        }
        if (zoom && zoom->round_ == round) {
            zoom->pictures_[index] = picture.toString();
            Q_EMIT zoom->picturesChanged();
        }
    }
}

} // namespace corvanta
