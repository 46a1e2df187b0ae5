import QtQuick
import Brimwatch

RoundedRectangle {
    objectName: "badge"
    width: 28
    height: 28
    radius: height / 2
    color: Theme.badgeStart
    endColor: Theme.badgeEnd

    SymbolImage {
        anchors.centerIn: parent
        name: "sparkles"
        pointSize: 14
        weight: SymbolImage.Weight.Bold
        color: "white"
    }
}
