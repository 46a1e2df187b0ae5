pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Brimwatch

// A caption, and a button that opens a list of options inside the popover's scene. It shows the stored option, `index`, or
// none for -1; `requested` reports what the user chose.
Item {
    id: root

    required property string caption
    required property list<string> options
    required property int index
    required property real boxWidth
    // Whether the list may be open; it closes when this changes.
    required property bool mayOpen
    readonly property real rowHeight: Math.ceil(metrics.height) + 8
    // The scroll position of the picker's view: the list closes when it changes, since it does not scroll along.
    property real scrollPosition: 0
    // The box that takes the keyboard to open its list is scrolled into view. From some version between Qt 6.4 and 6.8 on a
    // list that is closed meanwhile does not open.
    property bool takesKeyboard: false

    signal requested(int index)

    width: parent ? parent.width : implicitWidth
    implicitHeight: box.height

    FontMetrics {
        id: metrics

        font.family: Theme.fontFamily
        font.pixelSize: 11
    }

    onMayOpenChanged: box.popup.close()
    onScrollPositionChanged: {
        if (!takesKeyboard)
            box.popup.close();
    }

    Label {
        anchors.verticalCenter: parent.verticalCenter
        width: box.x - 8
        text: root.caption
        font.pixelSize: 12
        elide: Text.ElideRight
    }

    T.ComboBox {
        id: box

        // Whether the list opens above the box, where there is more room than below.
        property bool opensUp: false

        objectName: root.objectName + "Box"
        anchors.right: parent.right
        width: root.boxWidth
        height: root.rowHeight
        model: root.options
        currentIndex: root.index
        focusPolicy: Qt.TabFocus
        // Without a theme plugin Qt believes that the desktop wants no such effects.
        hoverEnabled: true

        // Qt 6.4 reports to screen readers neither the chosen option nor how to open the list.
        Accessible.name: root.caption + " " + (box.displayText !== "" ? box.displayText : "nothing chosen")
        Accessible.onPressAction: box.popup.open()

        // A key that is held acts once, except for the arrows.
        Keys.onPressed: event => event.accepted = event.isAutoRepeat && [Qt.Key_Space, Qt.Key_Return, Qt.Key_Enter].includes(event.key)
        Keys.onReleased: event => event.accepted = event.isAutoRepeat && event.key === Qt.Key_Space

        onActivated: index => {
            root.requested(index);
            box.currentIndex = Qt.binding(() => root.index);
        }

        background: RoundedRectangle {
            radius: 5
            color: box.down || box.popup.visible ? Theme.pressed : box.hovered ? Theme.hovered : Theme.controlBackground
            outlineColor: Theme.controlOutline
            outlineWidth: 1

            FocusRing {
                radius: 7
                visible: box.visualFocus
            }
        }

        contentItem: Label {
            leftPadding: 8
            rightPadding: 22
            verticalAlignment: Text.AlignVCenter
            text: box.displayText
            font.pixelSize: 11
            fontSizeMode: Text.HorizontalFit
            minimumPixelSize: 8
            elide: Text.ElideRight
        }

        indicator: SymbolImage {
            x: box.width - width - 7
            y: (box.height - height) / 2
            name: "chevron.left"
            rotation: -90
            pointSize: 8
            weight: SymbolImage.Weight.Bold
            color: Theme.secondaryLabel
        }

        delegate: T.ItemDelegate {
            id: option

            objectName: "pickerOption"

            required property int index
            required property string modelData

            width: ListView.view.width
            height: root.rowHeight
            hoverEnabled: true
            highlighted: box.highlightedIndex === option.index
            text: option.modelData

            Accessible.selectable: true
            Accessible.selected: option.index === root.index
            // The box keeps the focus; to screen readers the highlighted option has it.
            Accessible.focusable: true
            Accessible.focused: option.highlighted
            Accessible.onPressAction: {
                box.popup.close();
                root.requested(option.index);
            }

            background: RoundedRectangle {
                radius: 4
                color: option.highlighted ? Theme.accentFill : "transparent"
            }

            contentItem: Item {
                SymbolImage {
                    objectName: "chosenMark"
                    anchors.verticalCenter: parent.verticalCenter
                    x: 5
                    name: "checkmark"
                    pointSize: 9
                    weight: SymbolImage.Weight.Bold
                    color: option.highlighted ? Theme.onAccent : Theme.label
                    visible: option.index === root.index
                }

                Label {
                    anchors.verticalCenter: parent.verticalCenter
                    x: 20
                    width: parent.width - x - 3
                    text: option.modelData
                    font.pixelSize: 11
                    // The whole name is seen, also in a wide font.
                    fontSizeMode: Text.HorizontalFit
                    minimumPixelSize: 8
                    color: option.highlighted ? Theme.onAccent : Theme.label
                    elide: Text.ElideRight
                }
            }
        }

        // Qt puts popups outside of the scaled item, so they have to scale themselves.
        popup: T.Popup {
            objectName: root.objectName + "List"
            // Set here because Qt ignores the scale when it places a popup.
            y: box.opensUp ? -height - 2 : box.height + 2
            width: box.width
            height: box.count * root.rowHeight + 8
            padding: 4
            // Modal, so that the press which closes the list does not reach what is below it.
            modal: true
            dim: false
            closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutside
            scale: Theme.textScale
            transformOrigin: T.Popup.TopLeft
            // The box handles the keys of the list.
            onAboutToShow: {
                // Qt reports the popup around the list as a dialog without a name.
                contentItem.parent.Accessible.ignored = true;
                root.takesKeyboard = true;
                if (!box.activeFocus)
                    box.forceActiveFocus(Qt.PopupFocusReason);
                root.takesKeyboard = false;
                const above = box.mapToItem(null, 0, 0).y;
                const below = box.Window.height - box.mapToItem(null, 0, box.height).y;
                box.opensUp = below < (height + 6) * Theme.textScale && above > below;
            }

            background: RoundedRectangle {
                radius: 6
                color: Theme.background
                outlineColor: Theme.frame
                outlineWidth: 1
            }

            contentItem: ListView {
                clip: true
                // QtQuick.Templates does not export the model's type.
                model: box.delegateModel // qmllint disable
                currentIndex: box.highlightedIndex
                boundsBehavior: Flickable.StopAtBounds
                keyNavigationEnabled: false
                interactive: contentHeight > height

                Accessible.role: Accessible.List
                Accessible.name: root.caption
                Accessible.ignored: !visible
            }
        }
    }
}
