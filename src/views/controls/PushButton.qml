import QtQuick
import Brimwatch

// An ordinary button with an outline.
ButtonBase {
    id: root

    cornerRadius: 5

    RoundedRectangle {
        width: label.width + 16
        height: label.height + 8
        radius: 5
        color: root.down ? Theme.pressed : root.hovered ? Theme.hovered : Theme.controlBackground
        outlineColor: Theme.controlOutline
        outlineWidth: 1

        Label {
            id: label

            x: 8
            y: 4
            text: root.text
            font.pixelSize: 11
        }
    }
}
