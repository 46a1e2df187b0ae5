import QtQuick
import Brimwatch

// A button on the accent colour.
ButtonBase {
    id: root

    overhang: 2

    Rectangle {
        width: label.width + 24
        height: label.height + 8
        radius: 6
        color: Theme.accent

        Rectangle {
            anchors.fill: parent
            radius: 6
            color: "black"
            opacity: root.down ? 0.2 : 0.08
            visible: root.enabled && (root.down || root.hovered)
        }

        Label {
            id: label

            x: 12
            y: 4
            text: root.text
            color: Theme.onAccent
            font.pixelSize: 11
            font.weight: Font.Medium
        }
    }
}
