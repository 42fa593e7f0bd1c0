import QtQuick
import CorvantaSdkVideo.Editor

Alert {
    title: "Error"
    message: "Authentication required"
}
