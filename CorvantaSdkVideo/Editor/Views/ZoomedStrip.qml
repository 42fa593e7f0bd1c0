import QtQuick
import CorvantaSdkVideo.Editor

/// The part of a long clip around the edge that is being moved, in the strip's place.
Item {
    id: zoomed

    required property CorvantaSdkVideoEditorViewModel viewModel
    required property StripZoom zoom

    readonly property real edge: zoom.onStart ? viewModel.trimmerStart : viewModel.stopAt
    readonly property real position: zoom.to > zoom.from ? (edge - zoom.from) / (zoom.to - zoom.from) * width : 0

    function clockText(seconds) {
        const tenths = Math.round(seconds * 10)
        const minutes = String(Math.floor(tenths / 600)).padStart(2, "0")
        return minutes + ":" + (tenths % 600 / 10).toLocaleString(Qt.locale(), "f", 1).padStart(4, "0")
    }

    clip: true
    opacity: zoom.isActive ? 1 : 0
    visible: opacity > 0

    Behavior on opacity {
        NumberAnimation { duration: 150 }
    }

    Rectangle {
        anchors.fill: parent
        color: "black"
    }
    Repeater {
        model: zoomed.viewModel.thumbnailCount

        Image {
            required property int index

            x: Math.round(index * zoomed.width / zoomed.viewModel.thumbnailCount)
            width: Math.round((index + 1) * zoomed.width / zoomed.viewModel.thumbnailCount) - x
            height: zoomed.height
            source: zoomed.zoom.pictures[index] ?? ""
            smooth: true
        }
    }
    Rectangle {
        x: zoomed.zoom.onStart ? 0 : zoomed.position
        width: zoomed.zoom.onStart ? zoomed.position : parent.width - x
        height: parent.height
        color: CorvantaColor.gray
        opacity: 0.8
    }
    Rectangle {
        anchors.fill: parent
        color: "transparent"
        border { width: 4; color: CorvantaColor.ambar }
    }
    Rectangle {
        x: zoomed.position - width / 2
        width: 8
        height: parent.height
        radius: 4
        color: CorvantaColor.ambar
        antialiasing: true
    }
    Rectangle {
        readonly property bool isOnTheRight: zoomed.position < zoomed.width / 2

        anchors.verticalCenter: parent.verticalCenter
        x: isOnTheRight ? zoomed.position + 12 : zoomed.position - 12 - width
        width: time.implicitWidth + 2 * 8
        height: time.implicitHeight + 2 * 4
        radius: 4
        color: "#c0000000"
        antialiasing: true

        Text {
            id: time
            anchors.centerIn: parent
            text: zoomed.clockText(zoomed.edge)
            color: "white"
            font.pixelSize: 15
        }
    }
}
