import QtQuick
import Brimwatch

RoundedRectangle {
    id: root

    required property BucketEntry bucket
    required property ToolTipBubble toolTip

    objectName: "bucketRow"
    implicitHeight: bottomLine.y + bottomLine.height + 10
    radius: 10
    color: Theme.rowBackground
    outlineColor: Theme.rowOutline
    outlineWidth: 1

    Accessible.role: Accessible.ListItem
    Accessible.name: root.bucket.accessibleName
    Accessible.description: root.bucket.timestampText
    Accessible.ignored: !visible

    Column {
        id: names

        x: 10
        y: 10 + Math.max(0, Math.round((pill.height - height) / 2))
        width: pill.x - x - 8
        spacing: 2

        ElidingLabel {
            objectName: "bucketName"
            toolTip: root.toolTip
            width: parent.width
            text: root.bucket.displayName
            font.pixelSize: 13
            font.weight: Font.DemiBold
            maximumLineCount: 1
        }

        ElidingLabel {
            objectName: "bucketWindow"
            toolTip: root.toolTip
            width: parent.width
            text: root.bucket.windowText
            color: Theme.secondaryLabel
            font.pixelSize: 9
            font.weight: Font.Bold
            maximumLineCount: 1
            visible: text !== ""
        }
    }

    PercentagePill {
        id: pill

        objectName: "percentagePill"
        x: root.width - 10 - width
        y: 10 + Math.max(0, Math.round((names.height - height) / 2))
        text: root.bucket.percentageText
        tint: root.bucket.color
        fill: root.bucket.fillColor
    }

    RoundedRectangle {
        id: track

        objectName: "barTrack"
        x: 10
        y: 10 + Math.max(names.height, pill.height) + 6
        width: root.width - 20
        height: 6
        radius: height / 2
        color: Theme.track

        RoundedRectangle {
            objectName: "barFill"
            width: parent.width * root.bucket.fill
            height: 6
            radius: height / 2
            color: root.bucket.fillColor
            opacity: 0.8
        }
    }

    Item {
        id: bottomLine

        x: 10
        y: track.y + track.height + 6
        width: root.width - 20
        height: Math.max(clock.height, countdown.height, timestamp.height)

        SymbolImage {
            id: clock

            anchors.verticalCenter: parent.verticalCenter
            name: "clock"
            pointSize: 10
            color: Theme.secondaryLabel
        }

        TabularText {
            id: countdown

            objectName: "countdown"
            anchors.verticalCenter: parent.verticalCenter
            x: clock.width + 4
            text: root.bucket.resetLine
            color: Theme.secondaryLabel
            pixelSize: 11
            weight: Font.Medium
        }

        Label {
            id: timestamp

            objectName: "timestamp"
            anchors.verticalCenter: parent.verticalCenter
            anchors.right: parent.right
            width: Math.min(implicitWidth, parent.width - countdown.x - countdown.width - 4)
            text: root.bucket.timestampText
            color: Theme.secondaryLabel
            opacity: 0.8
            font.pixelSize: 10
            elide: Text.ElideRight
            maximumLineCount: 1
            visible: text !== ""
        }
    }
}
