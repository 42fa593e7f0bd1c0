import QtQuick
import QtQuick.Shapes

/// A rectangle that rounds some of its corners only.
SmoothShape {
    id: shape

    // Every item has a TopLeft and so on, with other values.
    enum Corner { TopLeftCorner = 1, TopRightCorner = 2, BottomLeftCorner = 4, BottomRightCorner = 8 }

    property real radius: 0
    /// Of the corners above, joined by "|".
    property int corners: 0
    property color color: "black"

    function radiusOf(corner) {
        return corners & corner ? Math.min(radius, width, height) : 0
    }
    function arc(radius, x, y) {
        return radius > 0 ? `A${radius} ${radius} 0 0 1 ${x} ${y}` : ""
    }
    readonly property real topLeft: radiusOf(RoundedCorner.TopLeftCorner)
    readonly property real topRight: radiusOf(RoundedCorner.TopRightCorner)
    readonly property real bottomLeft: radiusOf(RoundedCorner.BottomLeftCorner)
    readonly property real bottomRight: radiusOf(RoundedCorner.BottomRightCorner)

    ShapePath {
        strokeColor: "transparent"
        fillColor: shape.color

        PathSvg {
            path: `M${shape.topLeft} 0H${shape.width - shape.topRight}`
                  + shape.arc(shape.topRight, shape.width, shape.topRight)
                  + `V${shape.height - shape.bottomRight}`
                  + shape.arc(shape.bottomRight, shape.width - shape.bottomRight, shape.height)
                  + `H${shape.bottomLeft}` + shape.arc(shape.bottomLeft, 0, shape.height - shape.bottomLeft)
                  + `V${shape.topLeft}` + shape.arc(shape.topLeft, shape.topLeft, 0) + "Z"
        }
    }
}
