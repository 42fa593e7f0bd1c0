#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditorViewModel.hpp>

#include <CorvantaSdkVideo/Editor/EditorTasks.hpp>
#include <CorvantaSdkVideo/Editor/Gestures.hpp>

#include <cmath>

namespace corvanta {

namespace {

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

} // namespace

void CorvantaSdkVideoEditorViewModel::setupTrimmer(const QSizeF& forScreenSize) {
    screenWidth_ = forScreenSize.width();
    screenHeight_ = forScreenSize.height();
    setupInitialUI();
    startOnQtThread(readVideo(this, videosInformationGenerator_, videoURL_));
}

void CorvantaSdkVideoEditorViewModel::setupInitialUI() {
    const double width = trimmerInitialWidth();
    geometry_.layOut(width);
    trimmerSize_ = QSizeF(width, trimmerHeight);
    thumbnailSize_ = QSizeF((width - totalThumbnailListHorizontalPadding()) / thumbnailCount, trimmerHeight);
    trimmerXOffset_ = geometry_.leftSide();
}

void CorvantaSdkVideoEditorViewModel::applyTrimming(const QPointF& location, const QRectF& strip) {
    if (!holds(strip, location)) {
        return;
    }
    updateUIforTrimmingIfNeeded();
    const double position = location.x();
    switch (geometry_.getTrimEdge(position)) {
    case TrimEdge::right:
        moveRightEdge(position);
        break;
    case TrimEdge::left:
        moveLeftEdge(position);
        break;
    case TrimEdge::center:
        moveTrimmerCenter(position);
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

void CorvantaSdkVideoEditorViewModel::moveRightEdge(double position) {
    if (geometry_.moveRightEdge(position)) {
        setRightSpaceSize(geometry_.rightSpace());
        trimmerSize_ = QSizeF(geometry_.frameWidth(), trimmerSize().height());
        setStopAt(geometry_.range().end);
    }
}

void CorvantaSdkVideoEditorViewModel::moveLeftEdge(double position) {
    if (geometry_.moveLeftEdge(position)) {
        leftSpaceSize_ = geometry_.leftSpace();
        trimmerXOffset_ = geometry_.leftSide();
        trimmerSize_ = QSizeF(geometry_.frameWidth(), trimmerSize().height());
        setTrimmerStart(geometry_.range().start);
        seek(trimmerStart());
    }
}

void CorvantaSdkVideoEditorViewModel::moveTrimmerCenter(double position) {
    if (geometry_.moveTrimmerCenter(position)) {
        trimmerXOffset_ = geometry_.leftSide();
        leftSpaceSize_ = geometry_.leftSpace();
        setRightSpaceSize(geometry_.rightSpace());
        setTrimmerStart(geometry_.range().start);
        seek(trimmerStart());
        setStopAt(geometry_.range().end);
    }
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
    keepsAll_ = geometry_.isWhole({trimmerStart(), stopAt()});
    keptLength_ = stopAt() - trimmerStart();
    trimmerRange_ = durationText(trimmerStart()) + QStringLiteral(" - ") + durationText(stopAt());
}

} // namespace corvanta
