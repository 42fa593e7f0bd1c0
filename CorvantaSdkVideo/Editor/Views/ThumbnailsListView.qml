import QtQuick
import CorvantaSdkVideo.Editor

/// The trimmer's strip: thumbnails, and over them the frame around what is kept.
Item {
    id: strip

    enum Edge { LeftEdge, CenterEdge, RightEdge }

    /// Whose thumbnails these are.
    required property CorvantaSdkVideoEditorViewModel viewModel
    required property Playhead playhead
    required property StripZoom zoom
    required property size trimmerSize
    required property real trimmerXOffset
    required property real leftSpaceSize
    required property real rightSpaceSize
    required property size thumbnailSize
    required property real totalHorizontalPadding
    required property color trimmerBorderColor
    required property bool showRightWhiteSpace

    /// A drag's location, and the strip in the same coordinates.
    signal applyTrimming(point location, rect frame)

    readonly property real edgesSize: 8
    readonly property real edgesAdditionalHeight: 6
    readonly property real edgesAdditionalPadding: 16
    readonly property real edgesCornerRadius: 5
    readonly property real trimmerBorderSize: 4
    readonly property real accessibleStep: 2

    readonly property int thumbnailCount: viewModel.thumbnailCount
    /// What lies beyond the thumbnails at each end.
    readonly property real sidePadding: totalHorizontalPadding - edgesSize
    readonly property real frameEnd: trimmerXOffset + trimmerSize.width

    /// The one that the keyboard moves: the last one that was touched.
    property int selectedEdge: ThumbnailsListView.LeftEdge
    readonly property bool isHandleFocused: leftHandle.activeFocus || rightHandle.activeFocus

    function centerOf(edge) {
        const grip = edgesSize / 2 + edgesAdditionalPadding / 2
        return edge === ThumbnailsListView.LeftEdge ? trimmerXOffset + grip
             : edge === ThumbnailsListView.RightEdge ? frameEnd - grip : trimmerXOffset + trimmerSize.width / 2
    }
    function moveSelectedEdge(distance, both) {
        leftHandle.isFocusedByPointer = false
        rightHandle.isFocusedByPointer = false
        moveEdge(both ? ThumbnailsListView.CenterEdge : selectedEdge, distance)
    }
    function moveEdge(edge, distance) {
        playhead.beginMovingEdge()
        if (edge === ThumbnailsListView.CenterEdge) {
            viewModel.moveRangeBy(distance)
        } else if (edge === ThumbnailsListView.LeftEdge) {
            viewModel.moveStartBy(distance)
        } else {
            viewModel.moveEndBy(distance)
        }
        endLook.restart()
    }
    function selectEdgeAt(x) {
        const distance = edge => Math.abs(x - centerOf(edge))
        selectedEdge = [ThumbnailsListView.LeftEdge, ThumbnailsListView.CenterEdge, ThumbnailsListView.RightEdge].reduce(
            (nearest, edge) => distance(edge) < distance(nearest) ? edge : nearest)
        const handle = selectedEdge === ThumbnailsListView.LeftEdge ? leftHandle : rightHandle
        const isNone = selectedEdge === ThumbnailsListView.CenterEdge || viewModel.isFreeAt(x)
        for (const other of [leftHandle, rightHandle]) {
            other.focus = false
        }
        if (!isNone) {
            handle.isFocusedByPointer = true
            handle.forceActiveFocus(Qt.MouseFocusReason)
        }
    }

    /// How long the end's picture stays after a key.
    Timer {
        id: endLook
        interval: 800
        onTriggered: strip.playhead.endMovingEdge()
    }

    implicitWidth: 2 * sidePadding + thumbnailCount * thumbnailSize.width
    implicitHeight: trimmerSize.height

    Repeater {
        model: strip.thumbnailCount

        ThumbnailImage {
            required property int modelData

            function onPixel(index) {
                const position = strip.sidePadding + index * strip.thumbnailSize.width
                return Math.round(position * Screen.devicePixelRatio) / Screen.devicePixelRatio
            }

            // On whole pixels, or seams show between them.
            x: onPixel(modelData)
            width: onPixel(modelData + 1) - x
            height: strip.thumbnailSize.height
            viewModel: strip.viewModel
            index: modelData
        }
    }

    // What is cut off.
    Rectangle {
        x: strip.leftSpaceSize
        width: Math.max(0, strip.trimmerXOffset - x)
        height: parent.height
        color: CorvantaColor.gray
        opacity: 0.8
    }
    Rectangle {
        x: strip.frameEnd
        width: Math.max(0, strip.width - x - (strip.showRightWhiteSpace ? strip.rightSpaceSize : 0))
        height: parent.height
        color: CorvantaColor.gray
        opacity: 0.8
    }

    Item {
        id: frame
        x: strip.trimmerXOffset
        width: strip.trimmerSize.width
        height: strip.trimmerSize.height

        Rectangle {
            x: strip.edgesSize
            width: Math.max(0, parent.width - 2 * strip.edgesSize)
            height: strip.trimmerBorderSize
            color: strip.trimmerBorderColor
        }
        Rectangle {
            anchors.bottom: parent.bottom
            x: strip.edgesSize
            width: Math.max(0, parent.width - 2 * strip.edgesSize)
            height: strip.trimmerBorderSize
            color: strip.trimmerBorderColor
        }
        TrimHandle {
            id: leftHandle
            anchors { left: parent.left; verticalCenter: parent.verticalCenter }
            width: strip.edgesSize
            height: parent.height + strip.edgesAdditionalHeight
            isLeft: true
            value: strip.viewModel.trimmerStart
            maximumValue: strip.viewModel.videoDuration
            onMoved: steps => strip.moveEdge(ThumbnailsListView.LeftEdge, steps * strip.accessibleStep)
            color: strip.trimmerBorderColor
            cornerRadius: strip.edgesCornerRadius
            outerPadding: strip.edgesAdditionalPadding
            onActiveFocusChanged: if (activeFocus) strip.selectedEdge = ThumbnailsListView.LeftEdge
        }
        TrimHandle {
            id: rightHandle
            anchors { right: parent.right; verticalCenter: parent.verticalCenter }
            width: strip.edgesSize
            height: parent.height + strip.edgesAdditionalHeight
            isLeft: false
            value: strip.viewModel.stopAt
            maximumValue: strip.viewModel.videoDuration
            onMoved: steps => strip.moveEdge(ThumbnailsListView.RightEdge, steps * strip.accessibleStep)
            color: strip.trimmerBorderColor
            cornerRadius: strip.edgesCornerRadius
            outerPadding: strip.edgesAdditionalPadding
            onActiveFocusChanged: if (activeFocus) strip.selectedEdge = ThumbnailsListView.RightEdge
        }
    }

    PlayheadLine {
        anchors { top: parent.top; bottom: parent.bottom; topMargin: strip.trimmerBorderSize; bottomMargin: strip.trimmerBorderSize }
        viewModel: strip.viewModel
        playhead: strip.playhead
        // Beside the symbols of the handles.
        first: strip.trimmerXOffset + strip.edgesSize + strip.edgesAdditionalPadding
        last: strip.frameEnd - strip.edgesSize - strip.edgesAdditionalPadding
        stripWidth: strip.width
    }

    ZoomedStrip {
        anchors.fill: parent
        viewModel: strip.viewModel
        zoom: strip.zoom
    }

    MouseArea {
        id: hand

        /// Where the drag has been followed to.
        property point last
        property bool isDragging: false
        /// It began beside all parts of the frame, and moves the playhead.
        property bool isSeeking: false

        readonly property real longestStep: 1
        readonly property real handleInset: strip.edgesSize / 2 + strip.edgesAdditionalPadding / 2

        /// From the pointer to the edge in the zoomed strip, as a share of its width.
        property real zoomOffset: 0

        readonly property Timer rest: Timer {
            interval: 500
            onTriggered: hand.zoomIn()
        }
        property real restsAt: 0

        // An edge that is held still comes nearer.
        function waitForRest(x) {
            const isOnEdge = strip.selectedEdge !== ThumbnailsListView.CenterEdge && !isSeeking
            if (isOnEdge && strip.zoom.isPossible && !strip.zoom.isActive) {
                restsAt = x
                rest.restart()
            }
        }
        function zoomIn() {
            const onStart = strip.selectedEdge === ThumbnailsListView.LeftEdge
            const edge = onStart ? strip.trimmerXOffset : strip.frameEnd
            strip.playhead.beginMovingEdge()
            strip.zoom.begin(onStart, edge / strip.width)
            const time = onStart ? strip.viewModel.trimmerStart : strip.viewModel.stopAt
            zoomOffset = (time - strip.zoom.from) / (strip.zoom.to - strip.zoom.from) - restsAt / strip.width
            isDragging = true
        }

        // A fast pointer would leap over the parts of the frame: they are fed the way between two events too. Where
        // an edge can't go, it goes as near as it can.
        function follow(mouse) {
            if (strip.zoom.isActive) {
                strip.zoom.moveTo(mouse.x / strip.width + zoomOffset)
                last = Qt.point(mouse.x, mouse.y)
                return
            }
            if (isSeeking) {
                strip.playhead.seek(strip.viewModel.secondsAt(mouse.x))
                return
            }
            const way = Qt.point(mouse.x - last.x, mouse.y - last.y)
            const steps = Math.ceil(Math.max(Math.abs(way.x), Math.abs(way.y)) / longestStep)
            const frame = Qt.rect(0, 0, strip.width, strip.height)
            for (let step = 1; step <= steps; ++step) {
                const x = last.x + way.x * step / steps
                const nearest = Math.max(handleInset + 0.01, Math.min(x, strip.width - handleInset - 0.01))
                strip.applyTrimming(Qt.point(x >= 0 && x < strip.width ? nearest : x, last.y + way.y * step / steps), frame)
            }
            last = Qt.point(mouse.x, mouse.y)
        }

        anchors.fill: parent
        preventStealing: true
        onPressed: mouse => {
            last = Qt.point(mouse.x, mouse.y)
            isDragging = false
            isSeeking = strip.viewModel.isFreeAt(mouse.x)
            endLook.stop()
            strip.playhead.endMovingEdge()
            strip.selectEdgeAt(mouse.x)
            waitForRest(mouse.x)
        }
        onPositionChanged: mouse => {
            if (Math.abs(mouse.x - restsAt) > 2) {
                waitForRest(mouse.x)
            }
            const wasDragging = isDragging
            const distance = Math.max(Math.abs(mouse.x - last.x), Math.abs(mouse.y - last.y))
            isDragging = strip.viewModel.isReady && (isDragging || distance >= Qt.styleHints.startDragDistance)
            if (isDragging && !wasDragging) {
                strip.playhead.beginMovingEdge()
            }
            if (isDragging) {
                follow(mouse)
            }
        }
        onCanceled: {
            rest.stop()
            strip.zoom.end()
            strip.playhead.endMovingEdge()
        }
        onReleased: mouse => {
            rest.stop()
            if (isDragging) {
                follow(mouse)
                strip.zoom.end()
                strip.playhead.endMovingEdge()
            } else if (strip.viewModel.isBetweenHandlesAt(mouse.x)) {
                strip.playhead.seek(strip.viewModel.secondsAt(mouse.x))
            }
        }
    }
}
