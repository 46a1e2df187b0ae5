import QtQuick
import Brimwatch

// The popover's first face: header, quota and footer.
FocusScope {
    id: root

    required property PopoverModel model
    required property ToolTipBubble toolTip

    // Focuses the button that opened the settings, when they were left by the keyboard.
    function takeFocus() {
        gear.forceActiveFocus(Qt.TabFocusReason);
    }

    function handleScrollKey(event: KeyEvent) {
        if (list.visible)
            list.handleScrollKey(event);
    }

    Item {
        id: header

        width: parent.width
        height: Math.max(28, titles.height) + 20

        BrimwatchBadge {
            id: badge

            anchors.verticalCenter: parent.verticalCenter
            x: 14
        }

        Column {
            id: titles

            anchors.verticalCenter: parent.verticalCenter
            x: badge.x + badge.width + 8
            width: refresh.x - x - 12
            spacing: 2

            AccessibleLabel {
                text: "Brimwatch"
                font.pixelSize: 14
                font.weight: Font.Bold

                Accessible.role: Accessible.Heading
                Accessible.focusable: false
            }

            StatusLine {
                width: parent.width
                model: root.model
                toolTip: root.toolTip
            }
        }

        RefreshButton {
            id: refresh

            objectName: "refreshButton"
            anchors.verticalCenter: parent.verticalCenter
            x: gear.x - 14 - width
            model: root.model
            toolTip: root.toolTip
        }

        ButtonBase {
            id: gear

            objectName: "settingsButton"
            anchors.verticalCenter: parent.verticalCenter
            x: parent.width - 14 - width
            margin: 5
            text: "Preferences"
            toolTip: root.toolTip
            toolTipText: text
            onClicked: root.model.settingsRequested()

            SymbolImage {
                name: "gearshape"
                pointSize: 13
                weight: SymbolImage.Weight.Semibold
                color: Theme.label
            }
        }
    }

    Divider {
        id: headerLine

        y: header.height
    }

    Item {
        id: body

        objectName: "body"
        y: headerLine.y + 1
        width: parent.width
        height: footer.y - 1 - y

        QuotaGroupList {
            id: list

            anchors.fill: parent
            model: root.model
            toolTip: root.toolTip
            visible: root.model.body === PopoverModel.Cards
        }

        // Loading and offline states are created when they are shown, which is seldom.
        Loader {
            readonly property string file: root.model.body === PopoverModel.Cards ? ""
                : root.model.body === PopoverModel.Loading ? "LoadingState.qml" : "OfflineState.qml"

            function show() {
                if (file === "")
                    source = "";
                else
                    setSource(file, {"model": root.model});
            }

            anchors.fill: parent
            onFileChanged: show()
            Component.onCompleted: show()
        }
    }

    FooterBar {
        id: footer

        height: Math.max(updated.height, open.height) + 16

        // The accessible item is around the drawn one: Qt reports each change of an accessible item's text to screen readers,
        // and this text changes each second.
        Item {
            id: updated

            anchors.verticalCenter: parent.verticalCenter
            x: 14
            width: updatedText.width
            height: updatedText.height

            Accessible.role: Accessible.StaticText
            Accessible.name: root.model.updatedAccessibleName
            Accessible.ignored: !visible

            TabularText {
                id: updatedText

                objectName: "updatedText"
                width: Math.min(implicitWidth, open.x - updated.x - 8)
                text: root.model.updatedText
                color: Theme.secondaryLabel
                pixelSize: 10
            }
        }

        TextButton {
            id: open

            objectName: "openButton"
            anchors.verticalCenter: parent.verticalCenter
            x: quit.x - 12 - width
            text: "Open Antigravity"
            onClicked: root.model.openAntigravity()
        }

        TextButton {
            id: quit

            objectName: "quitButton"
            anchors.verticalCenter: parent.verticalCenter
            x: parent.width - 14 - width
            text: "Quit"
            onClicked: root.model.quit()
        }
    }
}
