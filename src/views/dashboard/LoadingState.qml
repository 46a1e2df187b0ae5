pragma ComponentBehavior: Bound

import QtQuick
import Brimwatch

ScrollArea {
    id: root

    required property PopoverModel model

    objectName: "loadingState"
    contentHeight: Math.max(height, column.height + 24)

    Accessible.role: Accessible.ProgressBar
    Accessible.name: label.text
    Accessible.ignored: !visible

    Column {
        id: column

        anchors.centerIn: parent
        spacing: 12

        Item {
            id: wheel

            anchors.horizontalCenter: parent.horizontalCenter
            width: 24 * 1.2
            height: width
            objectName: "progress"

            Repeater {
                model: 8

                RoundedRectangle {
                    id: spoke

                    required property int index

                    x: wheel.width / 2 - width / 2
                    width: 3
                    height: 8
                    radius: height / 2
                    color: Theme.secondaryLabel
                    opacity: 0.2 + 0.8 * spoke.index / 7
                    transform: Rotation {
                        origin.x: 1.5
                        origin.y: wheel.height / 2
                        angle: spoke.index * 45
                    }
                }
            }

            Timer {
                interval: 100
                repeat: true
                running: root.visible && root.model.isShown && !Theme.reducesMotion
                onTriggered: wheel.rotation = (wheel.rotation + 45) % 360
            }
        }

        Label {
            id: label

            anchors.horizontalCenter: parent.horizontalCenter
            text: "Fetching quota from Antigravity..."
            color: Theme.secondaryLabel
            font.pixelSize: 12
        }
    }
}
