#include <CorvantaSdkVideo/Editor/CutChoice.hpp>

#include <CorvantaSdkVideo/Editor/EditorTasks.hpp>

#include <QCoreApplication>
#include <QLocale>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <exception>
#include <thread>
#include <utility>

namespace corvanta {

namespace {

constexpr std::chrono::milliseconds restBeforeLook{150};

// Starting the programs, filtering the sound, and encoding as it was measured, on machines of few cores.
constexpr double startSeconds = 0.6;
constexpr double soundSecondsPerSecond = 0.03;
constexpr double pixelsPerSecondAndCore = 20e6;
constexpr unsigned mostCores = 8;

Task<CorvantaSdkVideoCutInspection> inspectedBy(std::shared_ptr<CorvantaSdkVideoEditor> editor, URL video,
                                                CorvantaSdkVideoTimeRange range) {
    co_return co_await editor->inspectCut(std::move(video), range);
}

QString secondsText(double seconds) { return QLocale().toString(seconds, 'f', seconds < 9.95 ? 1 : 0); }

} // namespace

CutChoice::CutChoice(CorvantaSdkVideoEditorViewModel& viewModel) : viewModel_(viewModel) {
    rest_.setSingleShot(true);
    rest_.setInterval(restBeforeLook);
    connect(&rest_, &QTimer::timeout, this, &CutChoice::inspect);
    using Model = CorvantaSdkVideoEditorViewModel;
    connect(&viewModel, &Model::trimmerStartChanged, this, &CutChoice::forget);
    connect(&viewModel, &Model::stopAtChanged, this, &CutChoice::forget);
    connect(&viewModel, &Model::isReadyChanged, this, &CutChoice::forget);
}

void CutChoice::forget() {
    ++round_;
    isLooking_ = false;
    inspection_.reset();
    Q_EMIT inspected();
    if (viewModel_.isReady()) {
        rest_.start();
    }
}

void CutChoice::inspect() {
    rest_.stop();
    isLooking_ = true;
    const CorvantaSdkVideoTimeRange range{viewModel_.trimmerStart(), viewModel_.stopAt()};
    startOnQtThread(look(this, viewModel_.editor(), viewModel_.videoURL(), range, round_));
}

Task<> CutChoice::look(QPointer<CutChoice> choice, std::shared_ptr<CorvantaSdkVideoEditor> editor, URL video,
                       CorvantaSdkVideoTimeRange range, int round) {
    std::optional<CorvantaSdkVideoCutInspection> inspection;
    try {
        inspection = co_await onEditorWorker(inspectedBy(std::move(editor), std::move(video), range));
    } catch (const std::exception&) {
        // Whatever keeps it from being looked at, the edit will tell.
    }
    if (choice && choice->round_ == round) {
        choice->take(inspection);
    }
}

void CutChoice::take(const std::optional<CorvantaSdkVideoCutInspection>& inspection) {
    isLooking_ = false;
    inspection_ = inspection.value_or(CorvantaSdkVideoCutInspection{viewModel_.trimmerStart()});
    Q_EMIT inspected();
    if (confirmed_) {
        decide();
    }
}

void CutChoice::confirm(CorvantaSdkVideoEditorViewModel::Handler handler) {
    if (viewModel_.isTrimming() || isAsked()) {
        return;
    }
    confirmed_ = std::move(handler);
    if (inspection_) {
        decide();
    } else if (!isLooking_) {
        inspect();
    }
}

void CutChoice::decide() {
    if (inspection_->copyingLoses) {
        setAsked(true);
    } else {
        edit(CorvantaSdkVideoCut::copied);
    }
}

void CutChoice::takeExact() { edit(CorvantaSdkVideoCut::exact); }

void CutChoice::takeFast() { edit(CorvantaSdkVideoCut::copied); }

void CutChoice::takeBack() {
    confirmed_.reset();
    setAsked(false);
}

void CutChoice::edit(CorvantaSdkVideoCut cut) {
    setAsked(false);
    if (auto handler = std::exchange(confirmed_, std::nullopt)) {
        viewModel_.trimVideo(cut, std::move(*handler));
    }
}

void CutChoice::setAsked(bool isAsked) {
    if (std::exchange(isAsked_, isAsked) != isAsked) {
        Q_EMIT isAskedChanged();
    }
}

QString CutChoice::loss() const {
    if (!inspection_ || !inspection_->copyingLoses) {
        return {};
    }
    if (!inspection_->copiedStart) {
        return QCoreApplication::translate("CutChoice", "A fast cut keeps no picture of this range.");
    }
    const double late = std::max(0.0, *inspection_->copiedStart - viewModel_.trimmerStart());
    const bool losesBeginning = viewModel_.trimmerStart() == 0;
    const QString text =
        losesBeginning
            ? QCoreApplication::translate("CutChoice", "A fast cut loses the first %1 s of the picture.")
            : QCoreApplication::translate("CutChoice", "A fast cut starts the picture %1 s late.");
    return text.arg(secondsText(std::max(late, 0.1)));
}

QString CutChoice::exactTime() const {
    if (!inspection_) {
        return {};
    }
    const QSizeF size = viewModel_.videoResolution();
    const double pixels = size.width() * size.height() * inspection_->encodedSeconds /
                          std::max(viewModel_.frameDuration(), 0.001);
    const unsigned cores = std::clamp(std::thread::hardware_concurrency(), 1U, mostCores);
    const double seconds = startSeconds + soundSecondsPerSecond * viewModel_.keptLength() +
                           pixels / (pixelsPerSecondAndCore * cores);
    return seconds < 90 ? QCoreApplication::translate("CutChoice", "about %1 s")
                              .arg(std::max(1, static_cast<int>(std::lround(seconds))))
                        : QCoreApplication::translate("CutChoice", "about %1 min")
                              .arg(static_cast<int>(std::ceil(seconds / 60)));
}

} // namespace corvanta
