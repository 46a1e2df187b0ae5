import QtQuick
import Brimwatch

// Text from anywhere, shown as typed.
Text {
    textFormat: Text.PlainText
    horizontalAlignment: Text.AlignLeft
    font.family: Theme.fontFamily
    color: Theme.label
}
