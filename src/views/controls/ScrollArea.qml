import QtQuick
import Brimwatch

// Scrollable content with a scroll bar. It takes part in the tab order if there is something to scroll.
//
// Not Flickable: that lets a mouse drag and fling the content, and speeds the wheel up when it is turned fast.
Item {
    id: root

    default property alias content: holder.data
    property real contentHeight: 0
    property real contentY: 0
    readonly property real furthest: Math.max(0, contentHeight - height)
    readonly property real line: 24

    // Where the view was left, which is returned to as soon as the content is that long; -1: nowhere.
    property real soughtPosition: -1

    function scrollTo(position: real) {
        root.contentY = Math.max(0, Math.min(position, root.furthest));
    }

    // The user scrolls: where the view was left no longer matters.
    function moveTo(position: real) {
        root.soughtPosition = -1;
        root.scrollTo(position);
    }

    function returnToSought() {
        root.scrollTo(root.soughtPosition);
        if (root.furthest >= root.soughtPosition)
            root.soughtPosition = -1;
    }

    // Scrolls as little as needed to show all of an item of the content.
    function reveal(item: Item) {
        const margin = 8;
        const top = item.mapToItem(holder, 0, 0).y - margin;
        const bottom = top + item.height + 2 * margin;
        if (top < root.contentY)
            root.scrollTo(top);
        else if (bottom > root.contentY + root.height)
            root.scrollTo(bottom - root.height);
    }

    // `step` is a PopoverModel.ScrollStep.
    function scroll(step: int) {
        const page = root.height - root.line;
        switch (step) {
        case PopoverModel.LineUp:
            return root.moveTo(root.contentY - root.line);
        case PopoverModel.LineDown:
            return root.moveTo(root.contentY + root.line);
        case PopoverModel.PageUp:
            return root.moveTo(root.contentY - page);
        case PopoverModel.PageDown:
            return root.moveTo(root.contentY + page);
        case PopoverModel.Start:
            return root.moveTo(0);
        case PopoverModel.End:
            return root.moveTo(root.furthest);
        }
    }

    // Qt wants what has the focus to be in the tab order.
    activeFocusOnTab: furthest > 0 || activeFocus

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

    Item {
        anchors.fill: parent
        clip: true

        Item {
            id: holder

            // Positions are rounded to whole pixels; between them text is blurred.
            readonly property real pixels: Screen.devicePixelRatio * Theme.textScale

            y: -Math.round(root.contentY * pixels) / pixels
            width: root.width
            height: root.contentHeight
        }
    }

    // Above the content, so that controls do not take the wheel or a finger that drags.
    MouseArea {
        anchors.fill: parent
        acceptedButtons: Qt.NoButton
        onWheel: wheel => {
            // On X11 the number of pixels depends on the driver, so there the angle counts.
            const inPixels = wheel.pixelDelta.y !== 0 && Qt.platform.pluginName !== "xcb";
            const notch = 120;
            root.moveTo(root.contentY - (inPixels ? wheel.pixelDelta.y / Theme.textScale
                    : wheel.angleDelta.y / notch * 3 * root.line));
        }
    }

    // Beside the MouseArea, which takes presses too once it has a handler.
    Item {
        anchors.fill: parent

        DragHandler {
            property real start: 0

            target: null
            acceptedDevices: PointerDevice.TouchScreen
            xAxis.enabled: false
            onActiveChanged: start = root.contentY
            onCentroidChanged: {
                if (active)
                    root.moveTo(start - centroid.position.y + centroid.pressPosition.y);
            }
        }
    }

    ScrollBar {
        anchors.right: parent.right
        y: 2
        height: parent.height - 4
        position: root.contentY
        furthest: root.furthest
        part: root.height / Math.max(1, root.contentHeight)
        visible: root.furthest > 0
        onMoved: position => root.moveTo(position)
        onPaged: forward => root.scroll(forward ? PopoverModel.PageDown : PopoverModel.PageUp)
    }

    FocusRing {
        margin: -2
        radius: 6
        visible: root.activeFocus
    }
}
