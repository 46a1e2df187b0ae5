#pragma once

#include "platform/linux/symbols/svg_symbols.h"
#include "platform/popover_content.h"
#include "service/diagnostics.h"
#include "support/fake_appearance.h"
#include "support/fake_opener.h"
#include "support/fake_pasteboard.h"
#include "support/service_fixture.h"
#include "views/models/popover_model.h"
#include "views/views_library.h"

#include <QQuickItem>
#include <QQuickWindow>

#include <memory>

namespace brimwatch::test {

/// The real popover on a service that talks to nobody.
class PopoverFixture : public ServiceFixture {
public:
    PopoverFixture();

    /// Creates the content. `appearance` is set before.
    void load();
    /// Loads it if needed, shows the window and waits until it is active.
    void show();
    void hide() const;
    /// Shows the settings and waits until they have slid in.
    void showSettings();
    /// Answers the refresh that was requested, and lays out what is shown then.
    void answer(const model::QuotaSummary &summary);
    void fail(const QString &message);
    /// Waits until a refresh is running.
    void awaitRefresh();
    /// Waits until there are that many cards, and lays them out.
    void awaitCards(qsizetype count);

    QQuickWindow &window() const;
    views::PopoverModel &model() const;
    /// The first visible item of that object name, which is not wholly transparent either; null
    /// without one.
    QQuickItem *item(const QString &name) const;
    /// The first one that exists, shown or not; null without one.
    QQuickItem *existing(const QString &name) const;
    /// All that are shown, from top to bottom.
    QList<QQuickItem *> items(const QString &name) const;
    /// The property "text" of `item(name)`.
    QString text(const QString &name) const;
    /// The middle of an item, in the window.
    QPoint middle(const QString &name) const;

    service::Diagnostics diagnostics;
    FakeAppearance appearance;
    platform::SvgSymbols symbols;
    FakeOpener opener;
    FakePasteboard pasteboard;
    /// Where a popover was left, for the next.
    std::shared_ptr<views::PopoverState> state = std::make_shared<views::PopoverState>();
    int terminated = 0;
    int closed = 0;
    std::unique_ptr<platform::PopoverContent> content;

private:
    void awaitEndOfRefresh();
    void layOut() const;
};

} // namespace brimwatch::test
