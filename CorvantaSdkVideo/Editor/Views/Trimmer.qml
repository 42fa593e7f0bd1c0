import QtQuick
import CorvantaSdkVideo.Editor

Item {
    id: trimmer

    required property CorvantaSdkVideoEditorViewModel viewModel

    readonly property real horizontalPadding: 16
    /// The strip keeps the width that it was laid out for; on a screen that has become narrower it shrinks.
    readonly property real stripScale: Math.min(1, (width - 2 * horizontalPadding) / Math.max(1, strip.width))

    function moveSelectedEdge(distance) { strip.moveSelectedEdge(distance) }

    implicitHeight: (range.visible ? range.height + 8 : 0) + strip.height

    TrimmerRange {
        id: range
        anchors.horizontalCenter: parent.horizontalCenter
        viewModel: trimmer.viewModel
        visible: trimmer.viewModel.isTrimmerRangeVisible
    }
    ThumbnailsListView {
        id: strip
        anchors { horizontalCenter: parent.horizontalCenter; bottom: parent.bottom }
        width: implicitWidth
        height: implicitHeight
        scale: trimmer.stripScale
        viewModel: trimmer.viewModel
        trimmerSize: trimmer.viewModel.trimmerSize
        trimmerXOffset: trimmer.viewModel.trimmerXOffset
        leftSpaceSize: trimmer.viewModel.leftSpaceSize
        rightSpaceSize: trimmer.viewModel.rightSpaceSize
        thumbnailSize: trimmer.viewModel.thumbnailSize
        totalHorizontalPadding: trimmer.viewModel.totalTrimmerHorizontalPadding
        trimmerBorderColor: trimmer.viewModel.trimmerBorderColor
        showRightWhiteSpace: trimmer.viewModel.showRightWhiteSpace
        onApplyTrimming: (location, frame) => trimmer.viewModel.applyTrimming(location, frame)
    }
}
