import QtQuick
import CorvantaSdkVideo.Editor

/// How long the kept range is, under a minute in tenths of a second.
Text {
    required property CorvantaSdkVideoEditorViewModel viewModel
    readonly property real length: viewModel.keptLength

    function clockText(seconds) {
        const rest = String(seconds % 60).padStart(2, "0")
        return Math.floor(seconds / 60) + ":" + rest
    }

    verticalAlignment: Text.AlignVCenter
    fontSizeMode: Text.HorizontalFit
    minimumPixelSize: 9
    text: viewModel.videoDuration < 60 ? qsTr("%1 s").arg(length.toLocaleString(Qt.locale(), "f", 1))
                                       : clockText(Math.floor(length))
    color: "white"
    font.pixelSize: 15

    Accessible.role: Accessible.StaticText
    Accessible.name: qsTr("Kept length: %1").arg(text)
}
