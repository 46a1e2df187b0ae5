#pragma once

#include "model/label_composition.h"
#include "platform/status_item.h"

#include <QObject>
#include <QRect>

#include <optional>

namespace brimwatch::platform {

/// What a presentation shows.
struct PresentedItem {
    model::LabelComposition label;
    ItemDescription description;

    bool operator==(const PresentedItem &) const = default;
};

/// One way to be shown in a panel. It registers with the panel that is there when it is made and
/// ends with it: the status item then makes another for the panel that comes next.
class Presentation : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    /// Redraws what differs from what it shows, and reports nothing else to the panel.
    virtual void present(const PresentedItem &item) = 0;
    /// Its place, in native pixels of the virtual screen; absent where the panel does not say.
    virtual std::optional<QRect> place() const = 0;

Q_SIGNALS:
    /// The panel has taken the item.
    void registered();
    void pressed();
    void clicked(const brimwatch::platform::ItemAnchor &anchor);
    void refreshRequested();
    void settingsRequested();
    void quitRequested();
    /// The panel is gone, or has thrown the item out.
    void lost();
};

} // namespace brimwatch::platform
