import QtQuick
import Brimwatch

// Text that a screen reader reads where it stands.
Label {
    Accessible.role: Accessible.StaticText
    Accessible.name: text
    Accessible.readOnly: true
    Accessible.ignored: !visible
}
