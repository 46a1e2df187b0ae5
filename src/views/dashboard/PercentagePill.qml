import QtQuick
import Brimwatch

Item {
    id: root

    required property string text
    required property color tint
    // Of the shapes.
    required property color fill

    implicitWidth: dot.width + 3 + label.width + 16
    implicitHeight: label.height + 6

    RoundedRectangle {
        objectName: "pillBackground"
        anchors.fill: parent
        radius: height / 2
        color: root.fill
        opacity: 0.12
    }

    RoundedRectangle {
        id: dot

        objectName: "pillDot"
        x: 8
        anchors.verticalCenter: parent.verticalCenter
        width: 7
        height: 7
        radius: height / 2
        color: root.fill
    }

    TabularText {
        id: label

        objectName: "percentageText"
        x: dot.x + dot.width + 3
        y: 3
        text: root.text
        color: root.tint
        pixelSize: 14
        weight: Font.Bold
    }
}
