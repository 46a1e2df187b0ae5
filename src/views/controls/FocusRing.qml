import QtQuick
import Brimwatch

// The ring around the control that has the keyboard focus, which is its parent. Shown where `visible` is bound to that.
Rectangle {
    // How far beyond the control it is drawn; negative within.
    property real margin: 2

    objectName: "focusRing"
    anchors.fill: parent
    anchors.margins: -margin
    color: "transparent"
    border.color: Theme.accent
    border.width: 2
}
