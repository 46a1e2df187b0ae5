import QtQuick
import Brimwatch

// The bar at the lower end of a face, with a background of its own and a line above. Its user sets the height.
Item {
    id: root

    y: parent.height - height
    width: parent.width

    Item {
        width: parent.width
        height: parent.height
        clip: Theme.cornerRadius > 0

        // Round at the bottom only: the upper corners are clipped.
        RoundedRectangle {
            objectName: "footerBackground"
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
