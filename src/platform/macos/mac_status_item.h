#pragma once

#include "platform/macos/native_status_item.h"
#include "platform/status_item.h"

#include <optional>

namespace brimwatch::platform {

/// The item in the menu bar.
class MacStatusItem final : public StatusItem {
    Q_OBJECT

public:
    explicit MacStatusItem(QObject *parent = nullptr);

    bool hasButton() const override;
    void setLabel(const model::LabelComposition &label) override;
    /// The lines as a tooltip, the title for those who do not see the label.
    void setDescription(const ItemDescription &description) override;
    /// Absent: the popover is anchored to the button itself.
    std::optional<QRect> place() const override { return std::nullopt; }

    /// The view that the popover is attached to; null when there is none.
    void *button() const;

private:
    NativeStatusItem m_native;
    // What the menu bar shows: only changes are passed on.
    std::optional<model::LabelComposition> m_label;
    std::optional<ItemDescription> m_description;
};

} // namespace brimwatch::platform
