import QtQuick
import Brimwatch

// Scrollable content with an indicator. It takes part in the tab order if there is something to scroll.
Item {
    id: root

    default property alias content: flickable.flickableData
    property alias contentHeight: flickable.contentHeight
    property alias contentY: flickable.contentY
    readonly property real furthest: Math.max(0, contentHeight - height)

    // Where the view was left, which is returned to as soon as the content is that long; -1: nowhere.
    property real soughtPosition: -1

    function scrollTo(position: real) {
        root.contentY = Math.max(0, Math.min(position, root.furthest));
    }

    function returnToSought() {
        root.scrollTo(root.soughtPosition);
        if (root.furthest >= root.soughtPosition)
            root.soughtPosition = -1;
    }

    // Scrolls as little as needed to show all of an item of the content.
    function reveal(item: Item) {
        const margin = 8;
        const top = item.mapToItem(flickable.contentItem, 0, 0).y - margin;
        const bottom = top + item.height + 2 * margin;
        if (top < root.contentY)
            root.scrollTo(top);
        else if (bottom > root.contentY + root.height)
            root.scrollTo(bottom - root.height);
    }

    function handleScrollKey(event: KeyEvent) {
        const line = 40;
        const page = root.height - line;
        const steps = ({
            [Qt.Key_Up]: root.contentY - line,
            [Qt.Key_Down]: root.contentY + line,
            [Qt.Key_PageUp]: root.contentY - page,
            [Qt.Key_PageDown]: root.contentY + page,
            [Qt.Key_Home]: 0,
            [Qt.Key_End]: root.furthest
        });
        if (!(event.key in steps))
            return;
        root.scrollTo(steps[event.key]);
        event.accepted = true;
    }

    activeFocusOnTab: furthest > 0

    // Content that shrinks must not leave the position beyond its end.
    onFurthestChanged: {
        if (soughtPosition >= 0)
            returnToSought();
        else if (contentY > furthest)
            scrollTo(furthest);
    }
    onSoughtPositionChanged: {
        if (soughtPosition >= 0)
            returnToSought();
    }

    Flickable {
        id: flickable

        anchors.fill: parent
        contentWidth: width
        boundsBehavior: Flickable.StopAtBounds
        onMovementStarted: root.soughtPosition = -1
        clip: true
    }

    ScrollIndicator {
        anchors.right: parent.right
        y: 2
        height: parent.height - 4
        list: flickable
        visible: part < 1
    }

    FocusRing {
        margin: -2
        radius: 6
        visible: root.activeFocus
    }
}
