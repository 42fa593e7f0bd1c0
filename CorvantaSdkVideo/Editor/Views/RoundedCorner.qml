import QtQuick
import QtQuick.Shapes

/// A rectangle that rounds some of its corners only.
Shape {
    id: shape

    enum Corner { TopLeft = 1, TopRight = 2, BottomLeft = 4, BottomRight = 8 }

    property real radius: 0
    /// Of the corners above, joined by "|".
    property int corners: 0
    property color color: "black"

    function radiusOf(corner) {
        return corners & corner ? Math.min(radius, width / 2, height / 2) : 0
    }
    readonly property real topLeft: radiusOf(RoundedCorner.TopLeft)
    readonly property real topRight: radiusOf(RoundedCorner.TopRight)
    readonly property real bottomLeft: radiusOf(RoundedCorner.BottomLeft)
    readonly property real bottomRight: radiusOf(RoundedCorner.BottomRight)

    layer.enabled: GraphicsInfo.api !== GraphicsInfo.Software
    layer.samples: 4

    ShapePath {
        strokeColor: "transparent"
        fillColor: shape.color
        startX: shape.topLeft
        startY: 0

        PathLine { x: shape.width - shape.topRight; y: 0 }
        PathArc { x: shape.width; y: shape.topRight; radiusX: shape.topRight; radiusY: radiusX }
        PathLine { x: shape.width; y: shape.height - shape.bottomRight }
        PathArc {
            x: shape.width - shape.bottomRight
            y: shape.height
            radiusX: shape.bottomRight
            radiusY: radiusX
        }
        PathLine { x: shape.bottomLeft; y: shape.height }
        PathArc { x: 0; y: shape.height - shape.bottomLeft; radiusX: shape.bottomLeft; radiusY: radiusX }
        PathLine { x: 0; y: shape.topLeft }
        PathArc { x: shape.topLeft; y: 0; radiusX: shape.topLeft; radiusY: radiusX }
    }
}
