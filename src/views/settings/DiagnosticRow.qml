import QtQuick
import Brimwatch

// A label on the left and its value, in a fixed-width font, on the right.
Item {
    id: root

    required property string label
    required property string value

    width: parent ? parent.width : implicitWidth
    implicitHeight: Math.max(caption.height, text.height)

    // Accessible for both texts. The row cannot be: Qt takes the property `value` of an accessible item for a number.
    AccessibleLabel {
        id: caption

        text: root.label
        color: Theme.secondaryLabel
        font.pixelSize: 11

        Accessible.name: root.label + ": " + root.value
    }

    Label {
        id: text

        objectName: "diagnosticValue"
        anchors.right: parent.right
        width: Math.min(implicitWidth, root.width - caption.width - 12)
        text: root.value
        font.family: Theme.fixedFontFamily
        font.pixelSize: 11
        elide: Text.ElideMiddle
    }
}
