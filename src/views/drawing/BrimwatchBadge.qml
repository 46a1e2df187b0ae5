import QtQuick
import Brimwatch

GradientCircle {
    width: 28
    height: 28
    start: Theme.badgeStart
    end: Theme.badgeEnd

    SymbolImage {
        anchors.centerIn: parent
        name: "sparkles"
        pointSize: 14
        weight: SymbolImage.Weight.Bold
        color: "white"
    }
}
