import QtQuick
import Brimwatch

// A label that is elided if there is too little room. The tooltip shows all of it.
Label {
    id: root

    required property ToolTipBubble toolTip

    elide: Text.ElideRight

    onTruncatedChanged: hover.follow()
    onTextChanged: hover.follow()

    HoverHandler {
        id: hover

        function follow() {
            root.toolTip.withdraw(root);
            if (hovered && root.truncated)
                root.toolTip.offer(root, root.text);
        }

        onHoveredChanged: follow()
    }
}
