import QtQuick
import Brimwatch

// A button without a background.
ButtonBase {
    id: root

    property color color: Theme.label

    margin: 4

    Label {
        color: root.color
        text: root.text
        font.pixelSize: 11
    }
}
