import QtQuick
import Brimwatch

// The popover's root with its two faces, the dashboard and the settings. Larger text scales all of it, so that everything
// keeps its proportions.
Item {
    id: root

    required property PopoverModel model
    required property SettingsModel settingsModel

    // From 0, the dashboard, to 1, the settings.
    property real turn: model.showingSettings ? 1 : 0

    function showSettings() {
        if (root.model.showingSettings)
            return;
        bubble.dismiss();
        // Read before the dashboard is disabled, which takes the focus from it.
        settings.takeFocus = dashboard.activeFocus;
        root.model.showingSettings = true;
        settings.show();
        if (!settings.takeFocus)
            root.forceActiveFocus(Qt.PopupFocusReason);
    }

    function showDashboard() {
        if (!root.model.showingSettings)
            return;
        const byKeyboard = settings.activeFocus;
        root.model.showingSettings = false;
        if (byKeyboard)
            dashboard.takeFocus();
        else
            root.forceActiveFocus(Qt.PopupFocusReason);
    }

    focus: true

    Keys.onPressed: event => {
        if (event.key === Qt.Key_Escape && root.model.showingSettings) {
            root.showDashboard();
            event.accepted = true;
        } else if (root.model.showingSettings) {
            settings.handleScrollKey(event);
        } else {
            dashboard.handleScrollKey(event);
        }
    }

    Connections {
        function onSettingsRequested() {
            root.showSettings();
        }

        target: root.model
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
        // A face that slides in or out must not cover the shadow.
        clip: Theme.cornerRadius > 0

        // Without round corners the window's own color is the background.
        Rectangle {
            anchors.fill: parent
            radius: Theme.cornerRadius
            color: Theme.background
            visible: radius > 0
        }

        QuotaDashboard {
            id: dashboard

            x: -root.turn * width
            width: parent.width
            height: parent.height
            opacity: 1 - root.turn
            visible: root.turn < 1
            enabled: !root.model.showingSettings
            model: root.model
            toolTip: bubble
        }

        // Created each time the settings are shown, and by its file, so that the first click does not load it.
        Loader {
            id: settings

            property bool takeFocus: false

            function show() {
                if (status !== Loader.Ready)
                    setSource("SettingsView.qml", {"model": root.settingsModel, "popover": root.model});
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
            enabled: root.model.showingSettings
            onLoaded: {
                const view = item as SettingsView;
                view.back.connect(root.showDashboard);
                if (takeFocus)
                    view.takeFocus();
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
        if (turn === 0 && !model.showingSettings)
            settings.source = "";
    }
}
