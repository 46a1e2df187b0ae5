pragma ComponentBehavior: Bound

import QtQuick
import Brimwatch

RoundedRectangle {
    id: root

    required property GroupEntry group
    required property ToolTipBubble toolTip

    objectName: "groupCard"
    implicitHeight: content.height + 24
    radius: 12
    color: Theme.cardBackground
    outlineColor: Theme.cardOutline
    outlineWidth: 1

    Accessible.role: Accessible.List
    Accessible.name: root.group.displayName + ", " + root.group.countText
    Accessible.description: root.group.descriptionText
    Accessible.ignored: !visible

    Column {
        id: content

        x: 12
        y: 12
        width: root.width - 24
        spacing: 10

        Item {
            width: parent.width
            height: Math.max(icon.height, name.height, count.height)

            SymbolImage {
                id: icon

                anchors.verticalCenter: parent.verticalCenter
                // Names share one left edge, however wide their symbols are.
                x: Math.round((18 - width) / 2)
                name: root.group.iconName
                pointSize: 13
                weight: SymbolImage.Weight.Semibold
                color: Theme.accent
            }

            ElidingLabel {
                id: name

                objectName: "groupName"
                toolTip: root.toolTip
                anchors.verticalCenter: parent.verticalCenter
                x: 26
                width: count.x - x - 8
                text: root.group.displayName
                font.pixelSize: 13
                font.weight: Font.Bold
                maximumLineCount: 1
            }

            RoundedRectangle {
                id: count

                objectName: "countBadge"
                anchors.verticalCenter: parent.verticalCenter
                anchors.right: parent.right
                width: countText.width + 12
                height: countText.height + 4
                radius: height / 2
                color: Theme.countBackground

                Label {
                    id: countText

                    objectName: "countText"
                    x: 6
                    y: 2
                    text: root.group.countText
                    color: Theme.secondaryLabel
                    font.pixelSize: 10
                    font.weight: Font.Medium
                }
            }
        }

        ElidingLabel {
            objectName: "groupDescription"
            toolTip: root.toolTip
            width: parent.width
            text: root.group.descriptionText
            color: Theme.secondaryLabel
            font.pixelSize: 11
            wrapMode: Text.Wrap
            maximumLineCount: 6
            visible: text !== ""
        }

        Column {
            width: parent.width
            spacing: 8
            visible: rows.count > 0

            Repeater {
                id: rows

                model: root.group.buckets

                QuotaBucketRow {
                    width: content.width
                    toolTip: root.toolTip
                }
            }
        }

        AccessibleLabel {
            objectName: "moreRows"
            width: parent.width
            text: root.group.moreText
            color: Theme.secondaryLabel
            font.pixelSize: 10
            horizontalAlignment: Text.AlignHCenter
            visible: text !== ""
        }
    }
}
