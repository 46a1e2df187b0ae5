import QtQuick
import Brimwatch

// The popover's root, with its two faces. Larger text enlarges all of it, so that everything keeps its proportions.
Item {
    id: root

    required property PopoverModel model
    required property SettingsModel settingsModel

    property bool showingSettings: false
    // From 0, the dashboard, to 1, the settings.
    property real turn: showingSettings ? 1 : 0

    function showSettings() {
        if (root.showingSettings)
            return;
        bubble.dismiss();
        // Before the dashboard is disabled, which takes the keyboard from it.
        settings.takeFocus = dashboard.activeFocus;
        root.showingSettings = true;
        root.model.showingSettings = true;
        settings.show();
        if (!settings.takeFocus)
            root.forceActiveFocus(Qt.PopupFocusReason);
    }

    function showDashboard() {
        if (!root.showingSettings)
            return;
        const byKeyboard = settings.activeFocus;
        root.showingSettings = false;
        root.model.showingSettings = false;
        if (byKeyboard)
            dashboard.takeFocus();
        else
            root.forceActiveFocus(Qt.PopupFocusReason);
    }

    focus: true

    Keys.onPressed: event => {
        if (event.key === Qt.Key_Escape && root.showingSettings) {
            root.showDashboard();
            event.accepted = true;
        } else if (root.showingSettings) {
            settings.handleScrollKey(event);
        } else {
            dashboard.handleScrollKey(event);
        }
    }

    Behavior on turn {
        enabled: root.model.isShown && !Theme.reducesMotion

        NumberAnimation {
            duration: 200
            easing.type: Easing.BezierSpline
            easing.bezierCurve: [0.42, 0, 0.58, 1, 1, 1]
        }
    }

    PopoverShadow {
        anchors.fill: parent
        radius: Theme.cornerRadius * Theme.textScale
        strength: Theme.shadowStrength
        visible: strength > 0
    }

    Item {
        width: root.width / Theme.textScale
        height: root.height / Theme.textScale
        scale: Theme.textScale
        transformOrigin: Item.TopLeft
        // A face that comes or goes is not to be seen on the shadow.
        clip: Theme.cornerRadius > 0

        // Else it is the window's.
        Rectangle {
            anchors.fill: parent
            radius: Theme.cornerRadius
            color: Theme.ground
            visible: radius > 0
        }

        QuotaDashboard {
            id: dashboard

            x: -root.turn * width
            width: parent.width
            height: parent.height
            opacity: 1 - root.turn
            visible: root.turn < 1
            enabled: !root.showingSettings
            model: root.model
            toolTip: bubble
            onSettingsWanted: root.showSettings()
        }

        // Made anew each time it is turned to.
        Loader {
            id: settings

            property bool takeFocus: false

            function show() {
                if (status !== Loader.Ready)
                    setSource("SettingsView.qml", {"model": root.settingsModel});
            }

            function handleScrollKey(event: KeyEvent) {
                if (item)
                    (item as SettingsView).handleScrollKey(event);
            }

            objectName: "settingsFace"
            x: (1 - root.turn) * width
            width: parent.width
            height: parent.height
            opacity: root.turn
            enabled: root.showingSettings
            onLoaded: {
                if (takeFocus)
                    (item as SettingsView).takeFocus();
            }

            Connections {
                function onBack() {
                    root.showDashboard();
                }

                target: settings.item
                ignoreUnknownSignals: true
            }
        }

        Rectangle {
            anchors.fill: parent
            radius: Theme.cornerRadius
            color: "transparent"
            border.color: Theme.frame
            border.width: 1
        }

        ToolTipBubble {
            id: bubble

            allowed: root.model.isShown
        }
    }

    onTurnChanged: {
        if (turn === 0 && !showingSettings)
            settings.source = "";
    }
}
