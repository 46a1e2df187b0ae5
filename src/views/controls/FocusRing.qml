import QtQuick
import QtQuick.Templates as T
import Brimwatch

// The ring around what the keyboard is at. It lies around its parent.
Rectangle {
    required property T.Control target
    property real reach: 2

    objectName: "focusRing"
    anchors.fill: parent
    anchors.margins: -reach
    color: "transparent"
    border.color: Theme.accent
    border.width: 2
    visible: target.visualFocus
}
