import QtQuick
import Brimwatch

// Shows which part of a list is visible. To be hidden if all of it is.
Item {
    id: root

    required property Flickable list

    readonly property real part: root.list.height / Math.max(1, root.list.contentHeight)

    width: 8

    Rectangle {
        y: Math.round(root.list.visibleArea.yPosition * root.height)
        width: 4
        height: Math.max(24, Math.round(root.part * root.height))
        radius: 2
        color: Theme.secondaryLabel
        opacity: root.list.moving ? 0.7 : 0.35
    }
}
