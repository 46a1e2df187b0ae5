pragma ComponentBehavior: Bound

import QtQuick
import Brimwatch

// What is known of the daemon, and the report for support.
SettingsSection {
    id: root

    required property SettingsModel model

    title: "Antigravity Daemon Diagnostics"
    symbol: "network"

    Column {
        width: parent.width
        spacing: 4
        visible: daemonRows.count > 0

        Repeater {
            id: daemonRows

            model: root.model.daemonRows

            DiagnosticRow {
                required property diagnosticLine modelData

                label: modelData.label
                value: modelData.value
            }
        }
    }

    SettingsCaption {
        objectName: "noDaemonNote"
        text: "No active daemon detected."
        color: Theme.secondaryLabel
        visible: daemonRows.count === 0
    }

    Item {
        width: parent.width
        height: 9

        Divider {
            y: 4
        }
    }

    DiagnosticRow {
        label: "Last Update"
        value: root.model.lastUpdate
    }

    Row {
        spacing: 8

        PushButton {
            objectName: "openFolder"
            text: "Open Daemon Folder"
            onClicked: root.model.openDaemonFolder()
        }

        PushButton {
            objectName: "copyDiagnostics"
            text: "Copy Diagnostics"
            onClicked: root.model.copyDiagnostics()
        }
    }
}
