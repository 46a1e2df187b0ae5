import QtQuick
import Brimwatch

// What all our buttons do; what they look like is their own. Only the keyboard gives a button the focus, so whoever sees
// the focus ring uses the keyboard.
//
// Not the library's AbstractButton: to load its module for three buttons takes a sixth of the time that the first click has.
FocusScope {
    id: root

    property string text: ""
    // Where this button's tool tip shows, and what it says; empty for none.
    property ToolTipBubble toolTip: null
    property string toolTipText: ""
    // How far the background of a hovered button extends beyond it.
    property real margin: 0
    property real cornerRadius: 6
    readonly property bool hovered: area.containsMouse
    readonly property bool down: (area.pressed && area.containsMouse) || area.keyDown
    default property alias face: face.data

    signal clicked

    function activate() {
        if (root.toolTip)
            root.toolTip.withdraw(root);
        root.clicked();
    }

    implicitWidth: face.childrenRect.width
    implicitHeight: face.childrenRect.height
    width: implicitWidth
    height: implicitHeight
    activeFocusOnTab: true
    opacity: enabled ? 1 : 0.45

    Accessible.role: Accessible.Button
    Accessible.name: text
    // What the name says already is not said again.
    Accessible.description: toolTipText === text ? "" : toolTipText
    Accessible.focusable: true
    Accessible.focused: activeFocus
    Accessible.pressed: down
    Accessible.ignored: !visible
    Accessible.onPressAction: {
        if (root.enabled)
            root.activate();
    }

    Keys.onReturnPressed: root.activate()
    Keys.onEnterPressed: root.activate()
    // As buttons do on every desktop: pressed by the key, clicked by its release.
    Keys.onSpacePressed: event => {
        if (!event.isAutoRepeat)
            area.keyDown = true;
    }
    Keys.onReleased: event => {
        if (event.key !== Qt.Key_Space || event.isAutoRepeat || !area.keyDown)
            return;
        area.keyDown = false;
        event.accepted = true;
        root.activate();
    }
    onActiveFocusChanged: area.keyDown = false

    Rectangle {
        anchors.fill: parent
        anchors.margins: -root.margin
        radius: root.cornerRadius
        color: root.down ? Theme.pressed : Theme.hovered
        visible: root.enabled && (root.down || root.hovered)
    }

    FocusRing {
        margin: root.margin + 2
        radius: root.cornerRadius + 2
        visible: root.activeFocus
    }

    Item {
        id: face

        anchors.fill: parent
    }

    MouseArea {
        id: area

        property bool keyDown: false

        anchors.fill: parent
        anchors.margins: -root.margin
        hoverEnabled: true
        onClicked: root.activate()
        onContainsMouseChanged: {
            if (!root.toolTip || root.toolTipText === "")
                return;
            if (area.containsMouse)
                root.toolTip.offer(root, root.toolTipText);
            else
                root.toolTip.withdraw(root);
        }
    }
}
