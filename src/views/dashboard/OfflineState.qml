import QtQuick
import Brimwatch

ScrollArea {
    id: root

    required property PopoverModel model
    // It may be there, transparent, behind the loading state.
    readonly property bool shown: model.body === PopoverModel.Offline

    objectName: "offlineState"
    contentHeight: Math.max(height, column.height + 24)

    Column {
        id: column

        anchors.centerIn: parent
        width: parent.width
        spacing: 14

        SymbolImage {
            anchors.horizontalCenter: parent.horizontalCenter
            name: "exclamationmark.triangle.fill"
            pointSize: 36
            color: Theme.orangeFill
        }

        AccessibleLabel {
            anchors.horizontalCenter: parent.horizontalCenter
            text: "Antigravity Daemon Offline"
            font.pixelSize: 14
            font.weight: Font.Bold

            Accessible.ignored: !visible || !root.shown
        }

        AccessibleLabel {
            x: 24
            width: parent.width - 48
            text: "Could not connect to the local Antigravity Language Server daemon."
            color: Theme.secondaryLabel
            font.pixelSize: 11
            wrapMode: Text.Wrap
            horizontalAlignment: Text.AlignHCenter

            Accessible.ignored: !visible || !root.shown
        }

        AccessibleLabel {
            x: 24
            width: parent.width - 48
            text: "Ensure Antigravity IDE is running."
            color: Theme.secondaryLabel
            font.pixelSize: 11
            wrapMode: Text.Wrap
            horizontalAlignment: Text.AlignHCenter

            Accessible.ignored: !visible || !root.shown
        }

        ProminentButton {
            objectName: "retryButton"
            anchors.horizontalCenter: parent.horizontalCenter
            text: "Retry Connection"
            activeFocusOnTab: root.shown || activeFocus
            ready: !root.model.isRefreshing
            onClicked: root.model.performRefresh()

            Accessible.ignored: !visible || !root.shown
        }
    }
}
