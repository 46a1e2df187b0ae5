import QtQuick
import Brimwatch

// The popover's second face: all that a user can set, and what to send when something is wrong.
Item {
    id: root

    required property SettingsModel model
    required property PopoverModel popover

    // Of the pickers.
    readonly property bool mayOpen: popover.isShown && enabled
    // The control with the keyboard focus, which has to be visible.
    readonly property Item focused: Window.activeFocusItem

    signal back(byKeyboard: bool)

    onFocusedChanged: {
        let ancestor = focused;
        while (ancestor && ancestor !== sections)
            ancestor = ancestor.parent;
        if (ancestor)
            list.reveal(focused);
    }

    // `step` is a PopoverModel.ScrollStep.
    function scroll(step: int) {
        list.scroll(step);
    }

    // Focuses the first control.
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
            onClicked: root.back(backButton.byKeyboard)

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
            // With equal space on both sides.
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
            onClicked: root.back(done.byKeyboard)
        }
    }

    Divider {
        id: headerLine

        y: header.height
    }

    ScrollArea {
        id: list

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
            width: list.width - 28
            spacing: 14

            GeneralSection {
                model: root.model
            }

            LabelSection {
                model: root.model
                mayOpen: root.mayOpen
                scrollPosition: list.contentY
            }

            AutoRefreshSection {
                model: root.model
                mayOpen: root.mayOpen
                scrollPosition: list.contentY
            }

            NotificationsSection {
                model: root.model
            }

            DiagnosticsSection {
                model: root.model
            }

            SupportSection {
                model: root.model
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
