import QtQuick
import Brimwatch

// A button whose icon turns as the model's spin says: in whole turns, the first one easing in and out.
ButtonBase {
    id: root

    required property PopoverModel model

    text: "Refresh Quota"
    toolTipText: root.model.refreshToolTip
    enabled: !root.model.isRefreshing
    opacity: 1
    margin: 5

    // Qt 6.4 does not report to screen readers that a control is disabled.
    Accessible.description: root.model.isRefreshing ? "Refreshing" : root.toolTipText

    onClicked: root.model.performRefresh()

    SymbolImage {
        objectName: "refreshIcon"
        name: "arrow.clockwise"
        pointSize: 13
        weight: SymbolImage.Weight.Semibold
        color: Theme.label
        // Without animations a pale icon shows that a refresh runs.
        opacity: root.enabled || (root.model.spin.isSpinning && !Theme.reducesMotion) ? 1 : 0.45
        rotation: root.model.spin.rotationDegrees

        Behavior on rotation {
            enabled: root.model.isShown && !Theme.reducesMotion

            NumberAnimation {
                duration: root.model.spin.turnDuration
                easing.type: root.model.spin.easesInOut ? Easing.BezierSpline : Easing.Linear
                easing.bezierCurve: [0.42, 0, 0.58, 1, 1, 1]
            }
        }
    }
}
