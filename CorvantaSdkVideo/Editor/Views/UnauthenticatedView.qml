import QtQuick
import CorvantaSdkVideo.Editor

Alert {
    title: qsTr("Error")
    message: qsTr("Authentication required")
}
