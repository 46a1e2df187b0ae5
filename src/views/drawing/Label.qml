import QtQuick
import Brimwatch

// Plain text, whatever its source: markup is shown as typed.
Text {
    textFormat: Text.PlainText
    horizontalAlignment: Text.AlignLeft
    font.family: Theme.fontFamily
    color: Theme.label
}
