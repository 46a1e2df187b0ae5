import QtQuick
import QtQuick.Templates as T
import Brimwatch

// A labelled switch over the whole width. It shows the stored state, `on`; `requested` reports what the user chose, upon
// which `on` changes or does not.
T.Switch {
    id: root

    readonly property real trackWidth: 30
    readonly property real trackHeight: 17
    property bool on: false
    property string symbol: ""

    signal requested(bool on)

    width: parent ? parent.width : 0
    implicitHeight: Math.max(metrics.height, root.trackHeight) + 4
    padding: 0
    focusPolicy: Qt.TabFocus
    checked: root.on
    opacity: enabled ? 1 : 0.45

    onToggled: {
        root.requested(root.checked);
        root.checked = Qt.binding(() => root.on);
    }

    // A key that is held acts once.
    Keys.onPressed: event => event.accepted = event.isAutoRepeat && event.key === Qt.Key_Space
    Keys.onReleased: event => event.accepted = event.isAutoRepeat && event.key === Qt.Key_Space

    // Qt would show the other state without emitting `toggled`.
    Accessible.onToggleAction: root.requested(!root.on)
    Accessible.onPressAction: root.requested(!root.on)

    FontMetrics {
        id: metrics

        font.family: Theme.fontFamily
        font.pixelSize: 12
    }

    indicator: RoundedRectangle {
        x: root.width - width
        y: (root.height - height) / 2
        width: root.trackWidth
        height: root.trackHeight
        radius: height / 2
        color: root.checked ? Theme.accent : Theme.track
        outlineColor: root.checked ? "transparent" : Theme.controlOutline
        outlineWidth: 1

        RoundedRectangle {
            x: 2 + root.visualPosition * (root.trackWidth - width - 4)
            y: 2
            width: 13
            height: 13
            radius: 6.5
            color: "white"
            outlineColor: "#40000000"
            outlineWidth: 1

            Behavior on x {
                enabled: !root.down && !Theme.reducesMotion

                NumberAnimation {
                    duration: 120
                }
            }
        }

        FocusRing {
            radius: root.trackHeight / 2 + 2
            visible: root.visualFocus
        }
    }

    contentItem: Item {
        SymbolImage {
            anchors.verticalCenter: parent.verticalCenter
            visible: root.symbol !== ""
            name: root.symbol
            pointSize: 11
            color: Theme.label
        }

        Label {
            anchors.verticalCenter: parent.verticalCenter
            x: root.symbol === "" ? 0 : 18
            width: parent.width - x - root.trackWidth - 8
            text: root.text
            font.pixelSize: 12
            elide: Text.ElideRight
        }
    }
}
