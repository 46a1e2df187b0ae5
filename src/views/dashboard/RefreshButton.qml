import QtQuick
import Brimwatch

// A button whose icon turns as the model's spin says: in whole turns, the first one easing in and out.
ButtonBase {
    id: root

    required property PopoverModel model
    // Nothing moves that is not seen.
    readonly property bool moves: root.visible && root.model.isShown && !Theme.reducesMotion

    text: "Refresh Quota"
    toolTipText: root.model.refreshToolTip
    // Not `enabled`: the focus would leave the button with each refresh.
    ready: !root.model.isRefreshing
    opacity: 1
    margin: 5

    onClicked: root.model.performRefresh()
    onMovesChanged: {
        if (!root.moves)
            turning.complete();
    }

    Connections {
        function onRotationDegreesChanged() {
            if (root.moves)
                turning.restart();
            else
                icon.rotation = root.model.spin.rotationDegrees;
        }

        target: root.model.spin
    }

    SymbolImage {
        id: icon

        objectName: "refreshIcon"
        name: "arrow.clockwise"
        pointSize: 13
        weight: SymbolImage.Weight.Semibold
        color: Theme.label
        // Without animations a pale icon shows that a refresh runs.
        opacity: root.ready || (root.model.spin.isSpinning && !Theme.reducesMotion) ? 1 : 0.45

        NumberAnimation on rotation {
            id: turning

            objectName: "refreshTurning"
            running: false
            to: root.model.spin.rotationDegrees
            duration: root.model.spin.turnDuration
            easing.type: root.model.spin.easesInOut ? Easing.BezierSpline : Easing.Linear
            easing.bezierCurve: [0.42, 0, 0.58, 1, 1, 1]
        }
    }
}
