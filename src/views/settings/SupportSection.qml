import QtQuick
import Brimwatch

// A mail to support.
SettingsSection {
    id: root

    required property SettingsModel model

    title: "Support & Feedback"
    symbol: "envelope"

    SettingsCaption {
        text: "Have a question, feedback, or encountering an issue? Send us an email with diagnostic "
            + "details attached automatically."
        color: Theme.secondaryLabel
    }

    ProminentButton {
        objectName: "contactSupport"
        symbol: "paperplane"
        text: "Contact Support"
        onClicked: root.model.sendSupportEmail()
    }
}
