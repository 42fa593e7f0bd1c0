import QtQuick
import CorvantaSdkVideo.Editor

Item {
    id: trimmer

    required property CorvantaSdkVideoEditorViewModel viewModel

    readonly property real horizontalPadding: 16

    required property Playhead playhead
    required property StripZoom zoom
    readonly property bool isHandleFocused: strip.isHandleFocused

    function moveSelectedEdge(distance, both) { strip.moveSelectedEdge(distance, both) }

    // The range has its place before it shows, or the picture would jump.
    implicitHeight: range.height + 8 + strip.height

    TrimmerRange {
        id: range
        anchors.horizontalCenter: parent.horizontalCenter
        viewModel: trimmer.viewModel
        visible: trimmer.viewModel.isTrimmerRangeVisible
    }
    KeptLength {
        anchors { left: parent.left; right: range.left; verticalCenter: range.verticalCenter }
        anchors { leftMargin: trimmer.horizontalPadding; rightMargin: 8 }
        viewModel: trimmer.viewModel
        visible: range.visible
    }
    ResetButton {
        anchors { right: parent.right; left: range.right; verticalCenter: range.verticalCenter }
        anchors { rightMargin: trimmer.horizontalPadding; leftMargin: 8 }
        height: range.height
        viewModel: trimmer.viewModel
    }
    ThumbnailsListView {
        id: strip
        anchors { horizontalCenter: parent.horizontalCenter; bottom: parent.bottom }
        width: implicitWidth
        height: implicitHeight
        viewModel: trimmer.viewModel
        playhead: trimmer.playhead
        zoom: trimmer.zoom
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
