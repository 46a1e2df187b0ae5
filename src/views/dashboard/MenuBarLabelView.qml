pragma ComponentBehavior: Bound

import QtQuick
import Brimwatch

// The label as a view, for a host that can show one.
Row {
    id: root

    required property QuotaService quotaService

    spacing: 4

    LabelModel {
        id: label

        quotaService: root.quotaService
    }

    SymbolImage {
        objectName: "labelIcon"
        anchors.verticalCenter: parent.verticalCenter
        name: "sparkles"
        pointSize: 13
        color: label.iconColor
        visible: label.showIcon
    }

    Repeater {
        model: label.items

        Row {
            id: item

            required property int index
            required property labelItem modelData

            spacing: 4

            Label {
                anchors.verticalCenter: parent.verticalCenter
                text: "·"
                color: Theme.secondaryLabel
                font.pixelSize: 12
                font.weight: Font.Medium
                visible: item.index > 0
            }

            Row {
                anchors.verticalCenter: parent.verticalCenter
                spacing: 2

                SymbolImage {
                    anchors.verticalCenter: parent.verticalCenter
                    name: item.modelData.symbolName
                    pointSize: 11
                    weight: SymbolImage.Weight.Medium
                    color: item.modelData.color
                    visible: name !== ""
                }

                TabularText {
                    objectName: "labelText"
                    anchors.verticalCenter: parent.verticalCenter
                    text: item.modelData.text
                    color: item.modelData.color
                    pixelSize: 12
                    weight: Font.Medium
                }
            }
        }
    }
}
