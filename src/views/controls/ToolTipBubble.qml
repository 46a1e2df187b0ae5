import QtQuick
import Brimwatch

// The popover's only tooltip, inside its scene: a separate window would close the popover on some desktops.
RoundedRectangle {
    id: root

    // Whether the popover is shown; a pending tooltip is dropped when it closes.
    required property bool allowed
    property Item target: null
    property string text: ""

    // After a moment, shows the text beside the item.
    function offer(item: Item, text: string) {
        root.target = item;
        root.text = text;
        delay.restart();
    }

    function withdraw(item: Item) {
        if (root.target === item)
            dismiss();
    }

    function dismiss() {
        delay.stop();
        root.visible = false;
        root.target = null;
    }

    function place() {
        const below = root.target.mapToItem(root.parent, 0, root.target.height);
        const above = root.target.mapToItem(root.parent, 0, 0);
        const middle = below.x + root.target.width / 2 - root.width / 2;
        root.x = Math.round(Math.max(8, Math.min(middle, root.parent.width - root.width - 8)));
        root.y = Math.round(below.y + 8 + root.height <= root.parent.height - 8
                ? below.y + 8 : Math.max(8, above.y - 8 - root.height));
    }

    objectName: "toolTip"
    visible: false
    width: Math.min(label.implicitWidth, root.parent.width - 32) + 16
    height: label.height + 10
    radius: 6
    color: Theme.cardBackground
    outlineColor: Theme.frame
    outlineWidth: 1

    onAllowedChanged: dismiss()
    // It goes with what it belongs to.
    onTargetChanged: {
        if (!root.target)
            root.dismiss();
    }

    Connections {
        function onVisibleChanged() {
            if (!root.target.visible)
                root.dismiss();
        }

        target: root.target
    }

    Accessible.role: Accessible.ToolTip
    Accessible.name: root.text
    Accessible.ignored: !visible

    Timer {
        id: delay

        interval: 600
        onTriggered: {
            root.visible = true;
            root.place();
        }
    }

    Label {
        id: label

        x: 8
        y: 5
        width: root.width - 16
        text: root.text
        font.pixelSize: 11
        wrapMode: Text.Wrap
        maximumLineCount: 20
        elide: Text.ElideRight
    }
}
