import QtQuick
import CorvantaSdkVideo.Editor

Alert {
    /// The description of an error.
    required property string error

    title: qsTr("Error")
    message: error
}
