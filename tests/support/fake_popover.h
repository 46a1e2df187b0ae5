#pragma once

#include "platform/popover.h"

#include <QList>
#include <QStringList>

#include <optional>

namespace brimwatch::test {

/// A popover that shows nothing and writes down what it is asked.
class FakePopover final : public platform::Popover {
public:
    bool isShown() const override { return shown; }
    void prepare() override { calls.append(QStringLiteral("prepare")); }
    void release() override { calls.append(QStringLiteral("release")); }
    void show(const platform::ItemAnchor &anchor) override
    {
        shown = true;
        calls.append(QStringLiteral("show"));
        anchors.append(anchor);
    }
    void showUnclicked(const std::optional<QRect> &item) override
    {
        shown = true;
        calls.append(QStringLiteral("showUnclicked"));
        items.append(item);
    }
    void makeKey() override { calls.append(QStringLiteral("makeKey")); }
    void showSettings() override { calls.append(QStringLiteral("showSettings")); }
    void performClose() override
    {
        calls.append(QStringLiteral("performClose"));
        close();
    }
    /// As when the user clicks elsewhere.
    void close()
    {
        shown = false;
        Q_EMIT didClose();
    }

    bool shown = false;
    QStringList calls;
    QList<platform::ItemAnchor> anchors;
    QList<std::optional<QRect>> items;
};

} // namespace brimwatch::test
