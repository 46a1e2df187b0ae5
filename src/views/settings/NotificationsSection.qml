import QtQuick
import Brimwatch

// Whether and when a notification says that quota is low.
SettingsSection {
    id: root

    required property SettingsModel model

    title: "Notifications"
    symbol: "bell.badge"

    SettingsSwitch {
        objectName: "notify"
        text: "Notify when quota drops low"
        on: root.model.service.notifyOnLowQuota
        onRequested: on => root.model.service.notifyOnLowQuota = on
    }

    Item {
        objectName: "thresholdRow"
        width: parent.width
        height: Math.max(slider.height, thresholdCaption.height)
        visible: root.model.service.notifyOnLowQuota

        Label {
            id: thresholdCaption

            anchors.verticalCenter: parent.verticalCenter
            text: "Alert Threshold:"
            font.pixelSize: 12
        }

        SettingsSlider {
            id: slider

            objectName: "threshold"
            anchors.verticalCenter: parent.verticalCenter
            x: thresholdCaption.width + 10
            width: thresholdText.x - x - 10
            from: 5
            to: 50
            stepSize: 5
            stored: root.model.service.lowQuotaThreshold
            onRequested: value => root.model.service.lowQuotaThreshold = value

            Accessible.name: "Alert Threshold in percent"
        }

        Label {
            id: thresholdText

            objectName: "thresholdText"
            anchors.verticalCenter: parent.verticalCenter
            anchors.right: parent.right
            width: 34
            horizontalAlignment: Text.AlignRight
            text: root.model.thresholdText
            color: Theme.orange
            font.pixelSize: 12
            font.weight: Font.DemiBold
        }
    }
}
