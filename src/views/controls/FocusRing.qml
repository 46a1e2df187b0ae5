import QtQuick
import Brimwatch

// The ring around the control with the keyboard focus, its parent, which binds `visible` to that.
RoundedRectangle {
    // How far outside of the control it is drawn; negative for inside.
    property real margin: 2

    objectName: "focusRing"
    anchors.fill: parent
    anchors.margins: -margin
    color: "transparent"
    outlineColor: Theme.accent
    outlineWidth: 2
}
