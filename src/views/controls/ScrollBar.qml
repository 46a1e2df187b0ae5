import QtQuick
import Brimwatch

// Shows which part of the content is visible. Dragging the thumb scrolls; a press beside it scrolls by a page. Hide it when all of
// the content is visible.
Item {
    id: root

    // The first visible point of the content, and the last one that it may have.
    required property real position
    required property real furthest
    // The visible part of the content, 0 to 1.
    required property real part
    readonly property bool used: area.containsMouse || area.pressed || scrolled.running

    // Asks to scroll to `position`, which may be out of range.
    signal moved(position: real)
    signal paged(forward: bool)

    objectName: "scrollBar"
    width: 12

    onPositionChanged: {
        if (root.visible)
            scrolled.restart();
    }

    Timer {
        id: scrolled

        interval: 800
    }

    RoundedRectangle {
        id: thumb

        objectName: "scrollThumb"
        x: root.width - 4 - width
        y: root.furthest > 0 ? root.position / root.furthest * (root.height - height) : 0
        width: area.containsMouse || area.pressed ? 6 : 4
        height: Math.max(24, Math.round(root.part * root.height))
        radius: width / 2
        color: Theme.secondaryLabel
        opacity: root.used ? 0.7 : 0.35
    }

    MouseArea {
        id: area

        // Where the thumb was taken hold of; negative if it was not.
        property real hold: -1

        anchors.fill: parent
        hoverEnabled: true
        preventStealing: true
        onPressed: mouse => {
            const place = mouse.y - thumb.y;
            area.hold = place >= 0 && place <= thumb.height ? place : -1;
            if (area.hold < 0)
                root.paged(place > 0);
        }
        onPositionChanged: mouse => {
            if (area.pressed && area.hold >= 0)
                root.moved((mouse.y - area.hold) / (root.height - thumb.height) * root.furthest);
        }
    }
}
