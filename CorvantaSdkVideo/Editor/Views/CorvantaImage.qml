import QtQuick
import QtQuick.Shapes

/// One of the editor's symbols, by the name of an image or by that of a symbol itself. All are drawn here, on a
/// square of 24, and fitted to the item's size.
Item {
    id: image

    /// "close", "trim", "sound", "rotate", "rotateLeft", "rotateRight" or "play".
    property string name
    property string symbol: symbolNames[name] ?? ""
    property color color: "white"
    /// Around the lines, for a ground as bright as they are.
    property color edgeColor: "transparent"

    readonly property var symbolNames: ({
        close: "xmark",
        trim: "scissors",
        sound: "speaker.wave.3",
        rotate: "rotate.left",
        rotateLeft: "rotate.left.fill",
        rotateRight: "rotate.right.fill",
        play: "play.fill"
    })

    readonly property string turnedPage: "M10 10.6h8.4q2 0 2 2v6.4q0 2-2 2h-8.4q-2 0-2-2v-6.4q0-2 2-2z"
    readonly property string turningArrow: "M17.2 6.2C12.2 2.4 4.6 4 4.3 11.4M1.5 8.4 4.2 11.8 7.6 9.2"

    readonly property var outlines: ({
        "xmark": { stroke: "M5.5 5.5 18.5 18.5M18.5 5.5 5.5 18.5", width: 2.4 },
        "scissors": {
            stroke: "M8.7 7a2.9 2.9 0 1 1-5.8 0a2.9 2.9 0 1 1 5.8 0M8.7 17a2.9 2.9 0 1 1-5.8 0a2.9 2.9 0 1 1 5.8 0"
                    + "M8.2 8.7 21 17.4M8.2 15.3 21 6.6"
        },
        "speaker.wave.3": {
            fill: "M2.4 9.7q0-.9.9-.9h2.9l4.4-3.7q1.4-1 1.4.6v12.6q0 1.6-1.4.6l-4.4-3.7h-2.9q-.9 0-.9-.9z",
            stroke: "M14.5 9.4a3.7 3.7 0 0 1 0 5.2M16.8 7.1a6.9 6.9 0 0 1 0 9.8M19.1 4.8a10.2 10.2 0 0 1 0 14.4"
        },
        "speaker.slash": {
            fill: "M8.6 6.8l2-1.7q1.4-1 1.4.6v4.5z"
                  + "M3.3 8.8h2.6l6.1 6.1v3.4q0 1.6-1.4.6l-4.4-3.7h-2.9q-.9 0-.9-.9v-4.6q0-.9.9-.9z",
            stroke: "M3.8 4.3 20.2 20.7"
        },
        "rotate.left": { stroke: turnedPage + turningArrow },
        "rotate.left.fill": { fill: turnedPage, stroke: turningArrow },
        "rotate.right.fill": { fill: turnedPage, stroke: turningArrow, mirrored: true },
        "play.fill": { fill: "M7 5.6q0-2.2 1.9-1.1l11 6.4q1.8 1.1 0 2.2l-11 6.4q-1.9 1.1-1.9-1.1z" },
        "chevron.left": { stroke: "M15.8 4.5 8.3 12l7.5 7.5", width: 3.2 },
        "chevron.right": { stroke: "M8.2 4.5 15.7 12l-7.5 7.5", width: 3.2 }
    })
    readonly property var outline: outlines[symbol] ?? ({})

    /// Curves are cut into lines before they are scaled: the larger they are then, the smoother.
    readonly property real detail: 4

    implicitWidth: 24
    implicitHeight: 24

    SmoothShape {
        factor: Math.min(image.width, image.height) / width
        anchors.centerIn: parent
        width: 24 * image.detail
        height: width
        scale: factor
        transform: Scale {
            origin.x: image.detail * 12
            xScale: image.outline.mirrored ? -1 : 1
        }

        ShapePath {
            scale: Qt.size(image.detail, image.detail)
            strokeColor: image.outline.stroke ? image.edgeColor : "transparent"
            strokeWidth: ((image.outline.width ?? 1.9) + 3) * image.detail
            fillColor: "transparent"
            capStyle: ShapePath.RoundCap
            joinStyle: ShapePath.RoundJoin
            PathSvg { path: image.outline.stroke ?? "" }
        }
        ShapePath {
            scale: Qt.size(image.detail, image.detail)
            strokeColor: "transparent"
            fillColor: image.outline.fill ? image.color : "transparent"
            PathSvg { path: image.outline.fill ?? "" }
        }
        ShapePath {
            scale: Qt.size(image.detail, image.detail)
            strokeColor: image.outline.stroke ? image.color : "transparent"
            strokeWidth: (image.outline.width ?? 1.9) * image.detail
            fillColor: "transparent"
            capStyle: ShapePath.RoundCap
            joinStyle: ShapePath.RoundJoin
            PathSvg { path: image.outline.stroke ?? "" }
        }
    }
}
