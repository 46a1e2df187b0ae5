import QtQuick
import QtQuick.Templates as T
import Brimwatch

// A slider that shows the stored value; `requested` reports what the user chose.
T.Slider {
    id: root

    property real stored: from

    // Qt looks the range up by these names to report it to screen readers.
    readonly property real minimumValue: from
    readonly property real maximumValue: to
    property bool complete: false

    signal requested(real value)

    function settle() {
        // A key adds a step to the stored value, which need not be a multiple of it.
        const step = Math.round(root.value / root.stepSize) * root.stepSize;
        root.requested(Math.max(root.from, Math.min(step, root.to)));
        root.value = Qt.binding(() => root.stored);
    }

    Accessible.ignored: !visible

    implicitHeight: 20
    value: root.stored
    focusPolicy: Qt.TabFocus
    snapMode: T.Slider.SnapAlways

    onMoved: settle()
    // A screen reader sets the value without moving the slider.
    onValueChanged: {
        if (root.complete && !root.pressed && root.value !== Math.max(root.from, Math.min(root.stored, root.to)))
            settle();
    }
    Component.onCompleted: complete = true

    background: RoundedRectangle {
        x: 7
        y: (root.height - height) / 2
        width: root.width - 14
        height: 4
        radius: 2
        color: Theme.track

        RoundedRectangle {
            width: root.visualPosition * parent.width
            height: parent.height
            radius: 2
            color: Theme.accent
        }
    }

    handle: RoundedRectangle {
        x: root.visualPosition * (root.width - width)
        y: (root.height - height) / 2
        width: 14
        height: 14
        radius: 7
        color: Theme.accent
        outlineColor: Theme.cardBackground
        outlineWidth: root.pressed ? 3 : 2

        FocusRing {
            radius: 9
            visible: root.visualFocus
        }
    }
}
