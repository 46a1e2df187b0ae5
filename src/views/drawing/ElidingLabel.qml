import QtQuick
import Brimwatch

// A label that ends in an ellipsis where there is no room for the rest. The tool tip has all of it.
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
