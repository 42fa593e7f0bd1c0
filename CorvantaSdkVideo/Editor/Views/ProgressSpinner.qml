import QtQuick
import QtQuick.Shapes

Item {
    id: spinner

    implicitWidth: 24
    implicitHeight: 24

    Accessible.role: Accessible.ProgressBar
    Accessible.name: qsTr("Editing")

    SmoothShape {
        anchors.fill: parent

        ShapePath {
            strokeColor: "#40ffffff"
            strokeWidth: 3
            fillColor: "transparent"
            PathAngleArc {
                centerX: spinner.width / 2
                centerY: spinner.height / 2
                radiusX: spinner.width / 2 - 2
                radiusY: radiusX
                sweepAngle: 360
            }
        }
        ShapePath {
            strokeColor: "white"
            strokeWidth: 3
            fillColor: "transparent"
            capStyle: ShapePath.RoundCap
            PathAngleArc {
                centerX: spinner.width / 2
                centerY: spinner.height / 2
                radiusX: spinner.width / 2 - 2
                radiusY: radiusX
                startAngle: -90
                sweepAngle: 100
            }
        }
        RotationAnimator on rotation {
            from: 0
            to: 360
            duration: 900
            loops: Animation.Infinite
            running: spinner.visible
        }
    }
}
