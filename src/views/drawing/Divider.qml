import QtQuick
import Brimwatch

// A line across its parent.
Rectangle {
    width: parent ? parent.width : 0
    height: 1
    color: Theme.divider
}
