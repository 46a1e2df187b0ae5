import QtQuick
import Brimwatch

// The behaviour of all buttons; each type adds its looks. A button gets the focus by the keyboard only, so the focus ring is
// shown to keyboard users only.
//
// Not AbstractButton of QtQuick.Templates: loading that module takes a sixth of the time budget of the first click.
FocusScope {
    id: root

    property string text: ""
    // Shows this button's tooltip; no tooltip if the text is empty.
    property ToolTipBubble toolTip: null
    property string toolTipText: ""
    // How far the background of a hovered button extends beyond it.
    property real margin: 0
    property real cornerRadius: 6
    // Whether a click acts. A button that is not ready keeps the focus and a press, unlike one that is not enabled.
    property bool ready: true
    // Whether the last click was made with the focus here, and not with a pointer: then what follows takes the focus.
    property bool byKeyboard: false
    readonly property bool hovered: area.containsMouse
    readonly property bool down: (area.pressed && area.containsMouse) || area.keyDown
    default property alias face: face.data

    signal clicked

    function activate(byKeyboard: bool) {
        if (root.toolTip)
            root.toolTip.withdraw(root);
        if (!root.ready)
            return;
        root.byKeyboard = byKeyboard;
        root.clicked();
    }

    implicitWidth: face.childrenRect.width
    implicitHeight: face.childrenRect.height
    width: implicitWidth
    height: implicitHeight
    activeFocusOnTab: true
    opacity: enabled && ready ? 1 : 0.45

    Accessible.role: Accessible.Button
    Accessible.name: text
    // A description that repeats the name would be read twice.
    Accessible.description: toolTipText === text ? "" : toolTipText
    Accessible.focusable: true
    Accessible.focused: activeFocus
    Accessible.pressed: down
    Accessible.ignored: !visible
    Accessible.onPressAction: {
        if (root.enabled)
            root.activate(root.activeFocus);
    }

    // A key that is held acts once.
    Keys.onReturnPressed: event => {
        if (!event.isAutoRepeat)
            root.activate(true);
    }
    Keys.onEnterPressed: event => {
        if (!event.isAutoRepeat)
            root.activate(true);
    }
    // As on every desktop, Space presses the button and its release clicks it.
    Keys.onSpacePressed: event => {
        if (!event.isAutoRepeat)
            area.keyDown = true;
    }
    Keys.onReleased: event => {
        if (event.key !== Qt.Key_Space || event.isAutoRepeat || !area.keyDown)
            return;
        area.keyDown = false;
        event.accepted = true;
        root.activate(true);
    }
    onActiveFocusChanged: area.keyDown = false

    RoundedRectangle {
        anchors.fill: parent
        anchors.margins: -root.margin
        radius: root.cornerRadius
        color: root.down ? Theme.pressed : Theme.hovered
        visible: root.enabled && root.ready && (root.down || root.hovered)
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
        onClicked: root.activate(false)
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
