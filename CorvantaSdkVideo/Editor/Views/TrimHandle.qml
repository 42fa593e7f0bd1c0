import QtQuick
import CorvantaSdkVideo.Editor

/// One end of the trimmer's frame.
Item {
    id: handle

    required property bool isLeft
    required property color color
    required property real cornerRadius
    required property real outerPadding
    /// Seconds.
    required property real value
    required property real maximumValue
    readonly property real minimumValue: 0

    signal moved(int steps)

    /// Shown by no ring, as long as no key is pressed.
    property bool isFocusedByPointer: false

    Accessible.role: Accessible.Slider
    Accessible.name: isLeft ? qsTr("Start") : qsTr("End")
    Accessible.focusable: true
    Accessible.onIncreaseAction: moved(1)
    Accessible.onDecreaseAction: moved(-1)
    onActiveFocusChanged: if (!activeFocus) isFocusedByPointer = false
    activeFocusOnTab: true

    RoundedCorner {
        anchors.fill: parent
        radius: handle.cornerRadius
        corners: handle.isLeft ? RoundedCorner.TopLeftCorner | RoundedCorner.BottomLeftCorner
                               : RoundedCorner.TopRightCorner | RoundedCorner.BottomRightCorner
        color: handle.color
    }
    // The padding pushes the symbol to the frame's inner side, where its centre is what a drag takes hold of.
    CorvantaImage {
        readonly property real center: (handle.width + handle.outerPadding) / 2

        anchors.verticalCenter: parent.verticalCenter
        x: (handle.isLeft ? center : handle.width - center) - width / 2
        width: 16
        height: 16
        symbol: handle.isLeft ? "chevron.left" : "chevron.right"
        edgeColor: "#b0000000"
    }
    FocusRing {
        target: handle
        visible: handle.activeFocus && !handle.isFocusedByPointer
        radius: 8
    }
}
