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

    // After a keyboard shortcut the focus ring is shown.
    function showSettings(byKeyboard: bool) {
        if (root.model.showingSettings)
            return;
        bubble.dismiss();
        root.model.showingSettings = true;
        if (!byKeyboard)
            root.forceActiveFocus(Qt.PopupFocusReason);
        settings.show(byKeyboard);
    }

    function showDashboard(byKeyboard: bool) {
        if (!root.model.showingSettings)
            return;
        bubble.dismiss();
        root.model.showingSettings = false;
        if (byKeyboard)
            dashboard.takeFocus();
        else
            root.forceActiveFocus(Qt.PopupFocusReason);
    }

    focus: true

    Connections {
        function onSettingsRequested() {
            root.showSettings(dashboard.activeFocus);
        }

        function onDashboardRequested() {
            root.showDashboard(settings.activeFocus);
        }

        function onScrollRequested(step) {
            if (!root.model.showingSettings)
                dashboard.scroll(step);
            else if (settings.item)
                (settings.item as SettingsView).scroll(step);
        }

        target: root.model
    }

    Behavior on turn {
        enabled: root.model.isShown && !Theme.reducesMotion

        NumberAnimation {
            objectName: "turning"
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
        RoundedRectangle {
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
            onSettingsClicked: byKeyboard => root.showSettings(byKeyboard)
        }

        // Created each time the settings are shown, and by its file, so that the first click does not load it.
        Loader {
            id: settings

            property bool takeFocus: false

            function show(byKeyboard: bool) {
                takeFocus = byKeyboard;
                // It is still there when the user turns back before it has slid out.
                if (status !== Loader.Ready)
                    setSource("SettingsView.qml", {"model": root.settingsModel, "popover": root.model});
                else if (takeFocus)
                    (item as SettingsView).takeFocus();
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

        RoundedRectangle {
            anchors.fill: parent
            radius: Theme.cornerRadius
            color: "transparent"
            outlineColor: Theme.frame
            outlineWidth: 1
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
