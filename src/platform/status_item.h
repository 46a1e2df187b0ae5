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
    std::optional<QRect> bounds; ///< The item's own place.
    std::optional<QPoint> pointer; ///< The pointer's at the click.
};

/// What the item says beyond its label, for tooltips, screen readers and panels that show text.
/// Plain text that whoever makes it keeps within the bounds: names come from a server, and a
/// tooltip should fit a screen.
struct ItemDescription {
    static constexpr qsizetype longestLine = 400; ///< In UTF-16 units; the title is a line too.
    static constexpr qsizetype mostLines = 40;

    QString title; ///< The label as a line of text.
    QStringList lines; ///< A line for each bucket, and a last one for what is wrong.

    bool operator==(const ItemDescription &) const = default;
};

/// Our item in the panel. It is there once a panel is, and again after the panel was gone.
class StatusItem : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    ~StatusItem() override;

    /// Whether there is something to draw on and to click. Without it the other operations do
    /// nothing.
    virtual bool hasButton() const = 0;
    /// Draws the label. The panel hears of it only when it differs from the one that it shows.
    virtual void setLabel(const model::LabelComposition &label) = 0;
    virtual void setDescription(const ItemDescription &description) = 0;
    /// Where the item stands just now, in native pixels of the virtual screen; absent without an
    /// item, and on panels that keep it to themselves.
    virtual std::optional<QRect> place() const = 0;

Q_SIGNALS:
    /// The left or right button went down on the item: a click is likely. Only on panels that tell.
    void pressed();
    /// A left or right click, once per click, when the button is let go.
    void clicked(const brimwatch::platform::ItemAnchor &anchor);
    /// Chosen from the item's menu, on panels that keep the right click for one.
    void refreshRequested();
    void settingsRequested();
    void quitRequested();
};

} // namespace brimwatch::platform
