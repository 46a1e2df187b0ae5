import QtQuick
import Brimwatch

// A button with the accent colour as its background.
ButtonBase {
    id: root

    property string symbol: ""

    margin: 2

    RoundedRectangle {
        width: label.x + label.width + 12
        height: label.height + 8
        radius: 6
        color: Theme.accentFill

        RoundedRectangle {
            anchors.fill: parent
            radius: 6
            color: "black"
            opacity: root.down ? 0.2 : 0.08
            visible: root.enabled && root.ready && (root.down || root.hovered)
        }

        SymbolImage {
            id: mark

            anchors.verticalCenter: parent.verticalCenter
            x: 12
            visible: root.symbol !== ""
            name: root.symbol
            pointSize: 11
            color: Theme.onAccent
        }

        Label {
            id: label

            x: root.symbol === "" ? 12 : mark.x + mark.width + 5
            y: 4
            text: root.text
            color: Theme.onAccent
            font.pixelSize: 11
            font.weight: Font.Medium
        }
    }
}
