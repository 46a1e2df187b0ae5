import QtQuick
import Brimwatch

// The ring around the control with the keyboard focus, its parent, which binds `visible` to that.
Rectangle {
    // How far outside of the control it is drawn; negative for inside.
    property real margin: 2

    objectName: "focusRing"
    anchors.fill: parent
    anchors.margins: -margin
    color: "transparent"
    border.color: Theme.accent
    border.width: 2
}
