import QtQuick
import Brimwatch

// The state of the connection as a dot and a text. A long error takes two lines; all of it is in the tooltip.
Item {
    id: root

    required property PopoverModel model
    required property ToolTipBubble toolTip

    // Of one line of text.
    readonly property real lineHeight: label.height / Math.max(1, label.lineCount)

    implicitHeight: label.height

    Accessible.role: Accessible.StaticText
    Accessible.name: root.model.statusText
    Accessible.ignored: !visible

    RoundedRectangle {
        objectName: "statusDot"
        // Centred on the first line.
        y: Math.round((metrics.height - height) / 2)
        width: 6
        height: 6
        radius: height / 2
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
