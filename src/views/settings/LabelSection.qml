import QtQuick
import Brimwatch

// What the label shows.
SettingsSection {
    id: root

    required property SettingsModel model
    // See SettingsPicker.
    required property bool mayOpen
    required property real scrollPosition

    title: "Toolbar & Menu Bar"
    symbol: "menubar.rectangle"

    SettingsCaption {
        text: "Stats to Display in Toolbar:"
    }

    SettingsSwitch {
        objectName: "showGemini"
        symbol: "sparkles"
        text: "Gemini"
        on: root.model.service.showGeminiInToolbar
        onRequested: on => root.model.service.showGeminiInToolbar = on
    }

    SettingsSwitch {
        objectName: "showArgon"
        symbol: "cpu"
        text: "Argon"
        on: root.model.service.showArgonInToolbar
        onRequested: on => root.model.service.showArgonInToolbar = on
    }

    SettingsSwitch {
        objectName: "showClaude"
        symbol: "brain"
        text: "Claude"
        on: root.model.service.showClaudeInToolbar
        onRequested: on => root.model.service.showClaudeInToolbar = on
    }

    SettingsCaption {
        objectName: "noStatsNote"
        text: "No stats selected — menu bar will show icon only."
        color: Theme.secondaryLabel
        visible: !root.model.service.showGeminiInToolbar && !root.model.service.showArgonInToolbar
            && !root.model.service.showClaudeInToolbar
    }

    SettingsPicker {
        objectName: "labelStyle"
        caption: "Label Style:"
        boxWidth: 180
        mayOpen: root.mayOpen
        scrollPosition: root.scrollPosition
        options: root.model.labelStyleNames
        index: root.model.labelStyle
        onRequested: index => root.model.labelStyle = index
    }

    Item {
        width: parent.width
        height: 5

        Divider {
            y: 2
        }
    }

    SettingsCaption {
        text: "Display Options:"
        color: Theme.secondaryLabel
    }

    SettingsSwitch {
        objectName: "showIcon"
        text: "Show Sparkle Icon"
        on: root.model.service.showIconInMenuBar
        onRequested: on => root.model.service.showIconInMenuBar = on
    }

    SettingsSwitch {
        objectName: "showPercentage"
        text: "Show Percentage Text"
        on: root.model.service.showPercentageInMenuBar
        onRequested: on => root.model.service.showPercentageInMenuBar = on
    }

    SettingsSwitch {
        objectName: "useColor"
        text: "Colored Status Indicator"
        on: root.model.service.useColoredStatusIndicator
        onRequested: on => root.model.service.useColoredStatusIndicator = on
    }

    SettingsSwitch {
        objectName: "showFiveHour"
        text: "Show 5-Hour Limit"
        on: root.model.service.showFiveHourInMenuBar
        onRequested: on => root.model.service.showFiveHourInMenuBar = on
    }

    SettingsSwitch {
        objectName: "showWeekly"
        text: "Show Weekly Limit"
        on: root.model.service.showWeeklyInMenuBar
        onRequested: on => root.model.service.showWeeklyInMenuBar = on
    }
}
