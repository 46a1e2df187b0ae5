pragma ComponentBehavior: Bound

import QtQuick
import Brimwatch

ScrollArea {
    id: root

    required property PopoverModel model
    required property ToolTipBubble toolTip

    objectName: "groupList"
    contentHeight: content.height + 24

    Accessible.role: Accessible.List
    Accessible.name: "Quota"
    Accessible.ignored: !visible

    Column {
        id: content

        x: 12
        y: 12
        width: root.width - 24
        spacing: 12

        Repeater {
            model: root.model.groups

            QuotaGroupCard {
                width: content.width
                toolTip: root.toolTip
            }
        }

        AccessibleLabel {
            objectName: "moreGroups"
            width: parent.width
            text: root.model.moreText
            color: Theme.secondaryLabel
            font.pixelSize: 10
            horizontalAlignment: Text.AlignHCenter
            visible: text !== ""
        }

        Item {
            width: parent.width
            height: error.height + 4
            visible: root.model.errorText !== ""

            AccessibleLabel {
                id: error

                objectName: "errorText"
                x: 4
                y: 4
                width: parent.width - 8
                text: root.model.errorText
                color: Theme.secondaryLabel
                font.pixelSize: 10
                wrapMode: Text.Wrap
                horizontalAlignment: Text.AlignHCenter
            }
        }
    }
}
