import QtQuick
import Brimwatch

// The popover's root. Larger text enlarges all of it, so that everything keeps its proportions.
Item {
    id: root

    required property PopoverModel model

    focus: true
    Keys.onPressed: event => dashboard.handleScrollKey(event)

    Item {
        width: root.width / Theme.textScale
        height: root.height / Theme.textScale
        scale: Theme.textScale
        transformOrigin: Item.TopLeft

        QuotaDashboard {
            id: dashboard

            anchors.fill: parent
            model: root.model
            toolTip: bubble
        }

        Rectangle {
            anchors.fill: parent
            color: "transparent"
            border.color: Theme.frame
            border.width: 1
        }

        ToolTipBubble {
            id: bubble

            allowed: root.model.isShown
        }
    }
}
