pragma ComponentBehavior: Bound

import QtQuick
import Brimwatch

Flickable {
    id: root

    required property PopoverModel model

    readonly property real furthest: Math.max(0, contentHeight - height)

    function scrollTo(position: real) {
        root.contentY = Math.max(0, Math.min(position, root.furthest));
    }

    objectName: "groupList"
    contentWidth: width
    contentHeight: content.height + 24
    boundsBehavior: Flickable.StopAtBounds
    clip: true
    activeFocusOnTab: furthest > 0

    Accessible.role: Accessible.List
    Accessible.name: "Quota"

    // What goes away below takes the position with it.
    onFurthestChanged: {
        if (contentY > furthest)
            scrollTo(furthest);
    }

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
            }
        }

        Item {
            width: parent.width
            height: error.height + 4
            visible: root.model.errorText !== ""

            Label {
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

                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }
        }
    }
}
