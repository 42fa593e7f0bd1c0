import QtQuick
import QtQuick.Shapes

/// A shape with smooth borders. The software renderer smooths shapes by itself; on a GPU it is drawn twice as large, with
/// as many samples as that has, and scaled down.
Shape {
    /// How large it is shown at last.
    property real factor: 1

    layer.enabled: GraphicsInfo.api !== GraphicsInfo.Software
    layer.samples: 4
    layer.smooth: true
    layer.mipmap: true
    layer.textureSize: Qt.size(Math.ceil(2 * width * factor * Screen.devicePixelRatio),
                               Math.ceil(2 * height * factor * Screen.devicePixelRatio))
}
