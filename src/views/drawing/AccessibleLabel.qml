import QtQuick
import Brimwatch

// Text that screen readers read by itself. Other labels are part of an item that has an accessible name.
Label {
    Accessible.role: Accessible.StaticText
    Accessible.name: text
    Accessible.readOnly: true
    Accessible.ignored: !visible
}
