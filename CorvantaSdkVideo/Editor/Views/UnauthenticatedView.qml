import QtQuick

Alert {
    title: "Error"
    message: "Authentication required"
}
