#pragma once

#include "model/label_composition.h"

#include <QObject>
#include <QPoint>
#include <QRect>
#include <QString>
#include <QStringList>

#include <optional>

namespace brimwatch::platform {

/// Where the item was clicked, as far as the desktop says, in native pixels of the virtual screen.
struct ItemAnchor {
    std::optional<QRect> bounds; ///< Of the item.
    std::optional<QPoint> pointer; ///< At the click.
};

/// The item's texts beside its label, for tooltips, screen readers and panels that show text. They
/// are plain, and within the bounds here: names come from a server, and a tooltip should fit a
/// screen.
struct ItemDescription {
    static constexpr qsizetype longestLine = 400; ///< In UTF-16 units; the title is a line too.
    static constexpr qsizetype mostLines = 40;

    QString title; ///< The label as a line of text.
    QStringList lines; ///< A line for each bucket, and a last one for what is wrong.

    bool operator==(const ItemDescription &) const = default;
};

/// Our item in the panel. It appears when a panel does, and again after the panel was restarted.
class StatusItem : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    ~StatusItem() override;

    /// Whether there is an item to draw and to click. Without one the other operations do nothing.
    virtual bool hasButton() const = 0;
    /// Draws the label. The panel is notified only when the label differs from the one shown.
    virtual void setLabel(const model::LabelComposition &label) = 0;
    virtual void setDescription(const ItemDescription &description) = 0;
    /// The item's current bounds in native pixels of the virtual screen; absent without an item,
    /// and on panels that do not report them.
    virtual std::optional<QRect> place() const = 0;

Q_SIGNALS:
    /// The left or right button went down on the item: a click is likely. Not on every panel.
    void pressed();
    /// A left or right click, once per click, when the button is released.
    void clicked(const brimwatch::platform::ItemAnchor &anchor);
    /// Chosen from the item's menu, on panels where the right click opens one.
    void refreshRequested();
    void settingsRequested();
    void quitRequested();
};

} // namespace brimwatch::platform
