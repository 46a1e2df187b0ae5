import QtQuick
import Brimwatch

// The popover's first face: header, quota and footer.
FocusScope {
    id: root

    required property PopoverModel model
    required property ToolTipBubble toolTip

    signal settingsClicked(byKeyboard: bool)

    // Focuses the button that opened the settings, when they were left by the keyboard.
    function takeFocus() {
        gear.forceActiveFocus(Qt.TabFocusReason);
    }

    // `step` is a PopoverModel.ScrollStep.
    function scroll(step: int) {
        if (list.visible)
            list.scroll(step);
        else if (offline.shown && offline.item)
            (offline.item as ScrollArea).scroll(step);
        else if (loading.item)
            (loading.item as ScrollArea).scroll(step);
    }

    Item {
        id: header

        width: parent.width
        // The height is that of a status of one line: a second line uses the padding, and the body does not move.
        height: Math.max(28, name.height + titles.spacing + status.lineHeight) + 20

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
                id: name

                text: "Brimwatch"
                font.pixelSize: 14
                font.weight: Font.Bold

                Accessible.role: Accessible.Heading
                Accessible.focusable: false
            }

            StatusLine {
                id: status

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
            onClicked: root.settingsClicked(gear.byKeyboard)

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

        // Loading and offline states are created when they are shown, which is seldom. While the loading state is shown in
        // its place, the offline state stays, transparent: "Retry Connection" keeps the focus and a press.
        Loader {
            id: offline

            readonly property bool shown: root.model.body === PopoverModel.Offline
            readonly property bool needed: shown || (root.model.body === PopoverModel.Loading && item !== null)

            function follow() {
                if (!needed)
                    source = "";
                else if (!item)
                    setSource("OfflineState.qml", {"model": root.model});
            }

            anchors.fill: parent
            opacity: shown ? 1 : 0
            onNeededChanged: follow()
            Component.onCompleted: follow()
        }

        Loader {
            id: loading

            readonly property bool shown: root.model.body === PopoverModel.Loading

            function follow() {
                if (shown)
                    setSource("LoadingState.qml", {"model": root.model});
                else
                    source = "";
            }

            anchors.fill: parent
            onShownChanged: follow()
            Component.onCompleted: follow()
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
