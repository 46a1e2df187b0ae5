import QtQuick
import Brimwatch

// What stands at the lower end of a face, on a ground of its own, with a line above. As high as it is told.
Item {
    id: root

    y: parent.height - height
    width: parent.width

    Item {
        width: parent.width
        height: parent.height
        clip: Theme.cornerRadius > 0

        // Round below alone: its upper corners are cut off.
        Rectangle {
            y: -radius
            width: parent.width
            height: parent.height + radius
            radius: Theme.cornerRadius
            color: Theme.footerBackground
        }
    }

    Divider {
        y: -1
    }
}
