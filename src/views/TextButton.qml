import QtQuick
import Brimwatch

// A button that is only its text.
ButtonBase {
    id: root

    overhang: 4

    Label {
        text: root.text
        font.pixelSize: 11
    }
}
