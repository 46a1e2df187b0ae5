import QtQuick
import Brimwatch

// A titled group of settings.
Column {
    id: root

    required property string title
    required property string symbol
    default property alias content: rows.data

    width: parent ? parent.width : implicitWidth
    spacing: 5

    Accessible.role: Accessible.Grouping
    Accessible.name: title

    Item {
        width: parent.width
        height: Math.max(icon.height, heading.height)

        SymbolImage {
            id: icon

            anchors.verticalCenter: parent.verticalCenter
            // Symbols of any width are centred in 18 pixels, so that all titles are aligned.
            x: 2 + Math.round((18 - width) / 2)
            name: root.symbol
            pointSize: 11
            weight: SymbolImage.Weight.Semibold
            color: Theme.accent
        }

        AccessibleLabel {
            id: heading

            anchors.verticalCenter: parent.verticalCenter
            x: 26
            text: root.title
            font.pixelSize: 12
            font.weight: Font.DemiBold

            Accessible.role: Accessible.Heading
            Accessible.focusable: false
        }
    }

    RoundedRectangle {
        objectName: "sectionFrame"
        width: parent.width
        height: rows.height + 16
        radius: 10
        color: Theme.cardBackground
        outlineColor: Theme.cardOutline
        outlineWidth: 1

        Column {
            id: rows

            x: 8
            y: 8
            width: parent.width - 16
            spacing: 6
        }
    }
}
