import QtQuick
import Brimwatch

// A line of small text between settings.
AccessibleLabel {
    width: parent ? parent.width : implicitWidth
    font.pixelSize: 11
    wrapMode: Text.Wrap
}
