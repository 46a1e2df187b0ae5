import QtQuick
import Brimwatch

// A label that is elided if there is too little room. The tooltip shows all of it.
Label {
    id: root

    required property ToolTipBubble toolTip

    elide: Text.ElideRight

    HoverHandler {
        enabled: root.truncated
        onHoveredChanged: {
            if (hovered)
                root.toolTip.offer(root, root.text);
            else
                root.toolTip.withdraw(root);
        }
    }
}
