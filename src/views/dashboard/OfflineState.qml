import QtQuick
import Brimwatch

Item {
    id: root

    required property PopoverModel model

    objectName: "offlineState"

    Column {
        anchors.centerIn: parent
        width: parent.width
        spacing: 14

        SymbolImage {
            anchors.horizontalCenter: parent.horizontalCenter
            name: "exclamationmark.triangle.fill"
            pointSize: 36
            color: Theme.orange
        }

        AccessibleLabel {
            anchors.horizontalCenter: parent.horizontalCenter
            text: "Antigravity Daemon Offline"
            font.pixelSize: 14
            font.weight: Font.Bold
        }

        AccessibleLabel {
            x: 24
            width: parent.width - 48
            text: "Could not connect to the local Antigravity Language Server daemon."
            color: Theme.secondaryLabel
            font.pixelSize: 11
            wrapMode: Text.Wrap
            horizontalAlignment: Text.AlignHCenter
        }

        AccessibleLabel {
            x: 24
            width: parent.width - 48
            text: "Ensure Antigravity IDE is running."
            color: Theme.secondaryLabel
            font.pixelSize: 11
            wrapMode: Text.Wrap
            horizontalAlignment: Text.AlignHCenter
        }

        ProminentButton {
            objectName: "retryButton"
            anchors.horizontalCenter: parent.horizontalCenter
            text: "Retry Connection"
            enabled: !root.model.isRefreshing
            onClicked: root.model.performRefresh()
        }
    }
}
