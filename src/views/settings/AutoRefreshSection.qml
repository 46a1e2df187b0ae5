import QtQuick
import Brimwatch

// How often the quota is fetched.
SettingsSection {
    id: root

    required property SettingsModel model
    // See SettingsPicker.
    required property bool mayOpen
    required property real scrollPosition

    title: "Auto-Refresh"
    symbol: "arrow.triangle.2.circlepath"

    SettingsPicker {
        objectName: "refreshInterval"
        caption: "Check Quota Every:"
        boxWidth: 130
        mayOpen: root.mayOpen
        scrollPosition: root.scrollPosition
        options: root.model.refreshIntervalNames
        index: root.model.refreshInterval
        onRequested: index => root.model.refreshInterval = index
    }
}
