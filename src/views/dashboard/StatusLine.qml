import QtQuick
import Brimwatch

// The connection in a dot and words. A long error takes two lines, the rest of it is in the tool tip.
Item {
    id: root

    required property PopoverModel model
    required property ToolTipBubble toolTip

    implicitHeight: label.height

    Accessible.role: Accessible.StaticText
    Accessible.name: root.model.statusText
    Accessible.ignored: !visible

    Capsule {
        objectName: "statusDot"
        // Beside the first line's middle.
        y: Math.round((metrics.height - height) / 2)
        width: 6
        height: 6
        color: root.model.statusColor
    }

    FontMetrics {
        id: metrics

        font: label.font
    }

    ElidingLabel {
        id: label

        objectName: "statusText"
        toolTip: root.toolTip
        x: 11
        width: root.width - x
        text: root.model.statusText
        color: Theme.secondaryLabel
        font.pixelSize: 10
        font.weight: Font.Medium
        wrapMode: Text.Wrap
        maximumLineCount: 2
    }
}
