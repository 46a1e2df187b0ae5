import QtQuick
import Brimwatch

// Whether the program starts at login.
SettingsSection {
    id: root

    required property SettingsModel model

    title: "General"
    symbol: "gearshape"

    SettingsSwitch {
        objectName: "launchAtLogin"
        text: "Start at Login"
        on: root.model.launchAtLogin
        onRequested: on => root.model.launchAtLogin = on
    }

    Item {
        width: parent.width
        height: openLoginSettings.height + 2
        visible: root.model.requiresApproval

        SymbolImage {
            id: warning

            anchors.verticalCenter: openLoginSettings.verticalCenter
            name: "exclamationmark.triangle.fill"
            pointSize: 11
            color: Theme.orangeFill
        }

        SettingsCaption {
            objectName: "approvalText"
            anchors.verticalCenter: openLoginSettings.verticalCenter
            x: warning.width + 6
            width: openLoginSettings.x - x - 6
            text: root.model.approvalText
            color: Theme.secondaryLabel
            font.pixelSize: 10
        }

        PushButton {
            id: openLoginSettings

            objectName: "openLoginSettings"
            x: parent.width - width
            y: 2
            text: "Open Settings"
            onClicked: root.model.openLoginSettings()
        }
    }
}
