#pragma once

#include "model/label_composition.h"
#include "platform/status_item.h"

#include <QList>

#include <functional>
#include <optional>

namespace brimwatch::test {

/// A panel that keeps what it is told to show.
class FakeStatusItem final : public platform::StatusItem {
public:
    bool hasButton() const override { return button; }
    void setLabel(const model::LabelComposition &label) override
    {
        labels.append(label);
        if (onDrawn)
            onDrawn();
    }
    void setDescription(const platform::ItemDescription &description) override
    {
        descriptions.append(description);
    }
    std::optional<QRect> place() const override { return itemPlace; }

    bool button = true;
    std::optional<QRect> itemPlace;
    QList<model::LabelComposition> labels;
    QList<platform::ItemDescription> descriptions;
    std::function<void()> onDrawn;
};

} // namespace brimwatch::test
