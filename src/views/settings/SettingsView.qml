pragma ComponentBehavior: Bound

import QtQuick
import Brimwatch

// The popover's second face: all that a user can set, and what to send when something is wrong.
Item {
    id: root

    required property SettingsModel model

    readonly property QuotaService service: model.service

    // Where the keyboard is, which has to be seen.
    readonly property Item focused: Window.activeFocusItem

    signal back

    onFocusedChanged: {
        let ancestor = focused;
        while (ancestor && ancestor !== sections)
            ancestor = ancestor.parent;
        if (ancestor)
            scroll.reveal(focused);
    }

    function handleScrollKey(event: KeyEvent) {
        scroll.handleScrollKey(event);
    }

    // The control that the keyboard goes to first.
    function takeFocus() {
        backButton.forceActiveFocus(Qt.TabFocusReason);
    }

    Item {
        id: header

        width: parent.width
        height: Math.max(backButton.height, title.height, done.height) + 20

        ButtonBase {
            id: backButton

            objectName: "backButton"
            anchors.verticalCenter: parent.verticalCenter
            x: 14
            margin: 4
            text: "Dashboard"
            onClicked: root.back()

            Row {
                spacing: 4

                SymbolImage {
                    anchors.verticalCenter: parent.verticalCenter
                    name: "chevron.left"
                    pointSize: 12
                    weight: SymbolImage.Weight.Bold
                    color: Theme.label
                }

                Label {
                    text: backButton.text
                    font.pixelSize: 12
                    font.weight: Font.Medium
                }
            }
        }

        AccessibleLabel {
            id: title

            anchors.verticalCenter: parent.verticalCenter
            // Between two flexible spaces of one size.
            x: Math.round((backButton.x + backButton.width + done.x - width) / 2)
            text: "Preferences"
            font.pixelSize: 14
            font.weight: Font.Bold

            Accessible.role: Accessible.Heading
            Accessible.focusable: false
        }

        ProminentButton {
            id: done

            objectName: "doneButton"
            anchors.verticalCenter: parent.verticalCenter
            x: parent.width - 14 - width
            text: "Done"
            onClicked: root.back()
        }
    }

    Divider {
        id: headerLine

        y: header.height
    }

    ScrollArea {
        id: scroll

        objectName: "settingsList"
        y: headerLine.y + 1
        width: parent.width
        height: footer.y - 1 - y
        contentHeight: sections.height + 28

        Accessible.role: Accessible.Pane
        Accessible.name: title.text

        Column {
            id: sections

            x: 14
            y: 14
            width: scroll.width - 28
            spacing: 14

            SettingsSection {
                title: "General"
                symbol: "gearshape"

                SettingsSwitch {
                    objectName: "launchAtLogin"
                    text: "Start at Login"
                    on: root.model.launchAtLogin
                    onWanted: on => root.model.launchAtLogin = on
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
                        color: Theme.orange
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

            SettingsSection {
                title: "Toolbar & Menu Bar"
                symbol: "menubar.rectangle"

                SettingsCaption {
                    text: "Stats to Display in Toolbar:"
                }

                SettingsSwitch {
                    objectName: "showGemini"
                    symbol: "sparkles"
                    text: "Gemini"
                    on: root.service.showGeminiInToolbar
                    onWanted: on => root.service.showGeminiInToolbar = on
                }

                SettingsSwitch {
                    objectName: "showArgon"
                    symbol: "cpu"
                    text: "Argon"
                    on: root.service.showArgonInToolbar
                    onWanted: on => root.service.showArgonInToolbar = on
                }

                SettingsSwitch {
                    objectName: "showClaude"
                    symbol: "brain"
                    text: "Claude"
                    on: root.service.showClaudeInToolbar
                    onWanted: on => root.service.showClaudeInToolbar = on
                }

                SettingsCaption {
                    objectName: "noStatsNote"
                    text: "No stats selected — menu bar will show icon only."
                    color: Theme.secondaryLabel
                    visible: !root.service.showGeminiInToolbar && !root.service.showArgonInToolbar
                        && !root.service.showClaudeInToolbar
                }

                SettingsPicker {
                    objectName: "labelStyle"
                    caption: "Label Style:"
                    boxWidth: 180
                    mayOpen: root.model.isShown && root.enabled
                    scrollPosition: scroll.contentY
                    options: root.model.labelStyleNames
                    index: root.model.labelStyle
                    onWanted: index => root.model.labelStyle = index
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
                    on: root.service.showIconInMenuBar
                    onWanted: on => root.service.showIconInMenuBar = on
                }

                SettingsSwitch {
                    objectName: "showPercentage"
                    text: "Show Percentage Text"
                    on: root.service.showPercentageInMenuBar
                    onWanted: on => root.service.showPercentageInMenuBar = on
                }

                SettingsSwitch {
                    objectName: "useColor"
                    text: "Colored Status Indicator"
                    on: root.service.useColoredStatusIndicator
                    onWanted: on => root.service.useColoredStatusIndicator = on
                }

                SettingsSwitch {
                    objectName: "showFiveHour"
                    text: "Show 5-Hour Limit"
                    on: root.service.showFiveHourInMenuBar
                    onWanted: on => root.service.showFiveHourInMenuBar = on
                }

                SettingsSwitch {
                    objectName: "showWeekly"
                    text: "Show Weekly Limit"
                    on: root.service.showWeeklyInMenuBar
                    onWanted: on => root.service.showWeeklyInMenuBar = on
                }
            }

            SettingsSection {
                title: "Auto-Refresh"
                symbol: "arrow.triangle.2.circlepath"

                SettingsPicker {
                    objectName: "refreshInterval"
                    caption: "Check Quota Every:"
                    boxWidth: 130
                    mayOpen: root.model.isShown && root.enabled
                    scrollPosition: scroll.contentY
                    options: root.model.refreshIntervalNames
                    index: root.model.refreshInterval
                    onWanted: index => root.model.refreshInterval = index
                }
            }

            SettingsSection {
                title: "Notifications"
                symbol: "bell.badge"

                SettingsSwitch {
                    objectName: "notify"
                    text: "Notify when quota drops low"
                    on: root.service.notifyOnLowQuota
                    onWanted: on => root.service.notifyOnLowQuota = on
                }

                Item {
                    objectName: "thresholdRow"
                    width: parent.width
                    height: Math.max(slider.height, thresholdCaption.height)
                    visible: root.service.notifyOnLowQuota

                    Label {
                        id: thresholdCaption

                        anchors.verticalCenter: parent.verticalCenter
                        text: "Alert Threshold:"
                        font.pixelSize: 12
                    }

                    SettingsSlider {
                        id: slider

                        objectName: "threshold"
                        anchors.verticalCenter: parent.verticalCenter
                        x: thresholdCaption.width + 10
                        width: thresholdText.x - x - 10
                        from: 5
                        to: 50
                        stepSize: 5
                        stored: root.service.lowQuotaThreshold
                        onWanted: value => root.service.lowQuotaThreshold = value

                        Accessible.name: "Alert Threshold in percent"
                    }

                    Label {
                        id: thresholdText

                        objectName: "thresholdText"
                        anchors.verticalCenter: parent.verticalCenter
                        anchors.right: parent.right
                        width: 34
                        horizontalAlignment: Text.AlignRight
                        text: root.model.thresholdText
                        color: Theme.orange
                        font.pixelSize: 12
                        font.weight: Font.DemiBold
                    }
                }
            }

            SettingsSection {
                title: "Antigravity Daemon Diagnostics"
                symbol: "network"

                Column {
                    width: parent.width
                    spacing: 4
                    visible: root.model.hasDaemon

                    Repeater {
                        model: root.model.daemonLabels

                        DiagnosticRow {
                            required property int index
                            required property string modelData

                            label: modelData
                            value: root.model.daemonValues[index] ?? ""
                        }
                    }
                }

                SettingsCaption {
                    objectName: "noDaemonNote"
                    text: "No active daemon detected."
                    color: Theme.secondaryLabel
                    visible: !root.model.hasDaemon
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

            SettingsSection {
                title: "Support & Feedback"
                symbol: "envelope"

                SettingsCaption {
                    text: "Have a question, feedback, or encountering an issue? Send us an email with diagnostic "
                        + "details attached automatically."
                    color: Theme.secondaryLabel
                }

                ProminentButton {
                    objectName: "contactSupport"
                    symbol: "paperplane"
                    text: "Contact Support"
                    onClicked: root.model.sendSupportEmail()
                }
            }
        }
    }

    FooterBar {
        id: footer

        height: Math.max(version.height, quit.height) + 16

        AccessibleLabel {
            id: version

            objectName: "versionText"
            anchors.verticalCenter: parent.verticalCenter
            x: 14
            width: quit.x - x - 8
            text: root.model.appVersion
            color: Theme.secondaryLabel
            font.pixelSize: 10
            elide: Text.ElideRight
        }

        TextButton {
            id: quit

            objectName: "quitAppButton"
            anchors.verticalCenter: parent.verticalCenter
            x: parent.width - 14 - width
            text: "Quit App"
            color: Theme.red
            onClicked: root.model.quit()
        }
    }
}
