import QtQuick
import Brimwatch

// A line of small text between settings.
Label {
    width: parent ? parent.width : implicitWidth
    font.pixelSize: 11
    wrapMode: Text.Wrap

    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
