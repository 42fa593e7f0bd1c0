import QtQuick
import CorvantaSdkVideo.Editor
import CorvantaSdkVideo.Editor as Editor

FocusScope {
    id: screen

    required property EditorRoot view
    readonly property CorvantaSdkVideoEditorViewModel viewModel: view.viewModel

    readonly property int spacing: 8
    /// How far an arrow key moves an edge.
    readonly property int keyDistance: 2

    property bool isLaidOut: false
    readonly property bool isAsked: cutQuestion.isOpen || leaveQuestion.isOpen

    function layOut() {
        if (width <= 0 || height <= 0) {
            return
        }
        viewModel.pixelRatio = Screen.devicePixelRatio
        if (isLaidOut) {
            viewModel.resizeTrimmer(Qt.size(width, height))
            newSize.restart()
        } else {
            isLaidOut = true
            viewModel.setupTrimmer(Qt.size(width, height))
        }
    }
    onWidthChanged: layOut()
    onHeightChanged: layOut()
    Component.onCompleted: if (!isLaidOut) layOut()

    // A window that is being resized has many sizes.
    Timer {
        id: newSize
        interval: 200
        onTriggered: screen.viewModel.renewThumbnails()
    }

    // Shift goes by frames, and Control moves both edges. Without a handle in focus it is the playhead that moves.
    function moveByKey(direction, modifiers) {
        const step = modifiers & Qt.ShiftModifier ? viewModel.frameDistance : keyDistance
        if (trimmer.isHandleFocused || modifiers & Qt.ControlModifier) {
            trimmer.moveSelectedEdge(direction * step, modifiers & Qt.ControlModifier)
        } else {
            view.playhead.moveBy(direction * step)
        }
    }
    function moveToEnd(direction) {
        if (trimmer.isHandleFocused) {
            trimmer.moveSelectedEdge(direction * width, false)
        } else if (direction < 0) {
            view.playhead.seekToStart()
        } else {
            view.playhead.seekToEnd()
        }
    }

    Keys.onSpacePressed: viewModel.handleAction()
    Keys.onEscapePressed: view.requestClose()
    Keys.onLeftPressed: event => moveByKey(-1, event.modifiers)
    Keys.onRightPressed: event => moveByKey(1, event.modifiers)
    Keys.onPressed: event => {
        if (event.key === Qt.Key_Home || event.key === Qt.Key_End) {
            moveToEnd(event.key === Qt.Key_Home ? -1 : 1)
            event.accepted = true
        }
    }
    Keys.onUpPressed: if (viewModel.isSoundVisible) player.stepVolume(true)
    Keys.onDownPressed: if (viewModel.isSoundVisible) player.stepVolume(false)

    Rectangle {
        anchors.fill: parent
        color: "black"
    }

    ControlButtons {
        id: controls
        anchors { left: parent.left; right: parent.right; top: parent.top }
        anchors { leftMargin: 16; rightMargin: 16; topMargin: screen.spacing }
        view: screen.view
        enabled: !screen.isAsked
    }

    VideoPlayer {
        id: player
        anchors { left: parent.left; right: parent.right; top: controls.bottom; bottom: tools.top }
        anchors { topMargin: screen.spacing; bottomMargin: screen.spacing }
        viewModel: screen.viewModel
        waveform: screen.view.waveform
        enabled: !screen.isAsked
    }

    // What stands in here keeps its place while it fades: the software renderer would leave traces of what moves.
    Item {
        id: tools

        readonly property Item tool: screen.viewModel.isTrimmerVisible ? trimmer
                                   : screen.viewModel.isRotationVisible ? rotation : null

        anchors { left: parent.left; right: parent.right; bottom: edition.top }
        height: tool ? tool.implicitHeight + screen.spacing : 0
        enabled: !screen.isAsked

        Behavior on height {
            enabled: screen.isLaidOut
            NumberAnimation { duration: 200; easing.type: Easing.InOutQuad }
        }

        Trimmer {
            id: trimmer
            anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
            anchors.bottomMargin: screen.spacing
            height: implicitHeight
            viewModel: screen.viewModel
            playhead: screen.view.playhead
            zoom: screen.view.stripZoom
            opacity: viewModel.isTrimmerVisible ? 1 : 0
            visible: opacity > 0
            enabled: viewModel.isTrimmerVisible

            Behavior on opacity {
                NumberAnimation { duration: 200 }
            }
        }
        Editor.Rotation {
            id: rotation
            anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
            anchors.bottomMargin: screen.spacing
            height: implicitHeight
            viewModel: screen.viewModel
            opacity: viewModel.isRotationVisible ? 1 : 0
            visible: opacity > 0
            enabled: viewModel.isRotationVisible

            Behavior on opacity {
                NumberAnimation { duration: 200 }
            }
        }
    }

    EditionButtons {
        id: edition
        anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
        viewModel: screen.viewModel
        enabled: !screen.isAsked
    }

    EditProgress {
        anchors { horizontalCenter: parent.horizontalCenter; verticalCenter: player.verticalCenter }
        width: Math.min(280, parent.width - 2 * 24)
        height: implicitHeight
        viewModel: screen.viewModel
    }
    CutQuestion {
        id: cutQuestion
        anchors.fill: parent
        cutChoice: screen.view.cutChoice
    }
    LeaveQuestion {
        id: leaveQuestion
        anchors.fill: parent
        view: screen.view
    }
}
