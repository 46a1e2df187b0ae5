#pragma once

#include "platform/linux/symbols/svg_symbols.h"
#include "platform/popover_content.h"
#include "qml/fakes.h"
#include "service/diagnostics.h"
#include "support/service_fixture.h"
#include "views/models/popover_model.h"

#include <QQuickItem>
#include <QQuickWindow>

#include <memory>

namespace brimwatch::test {

/// The real popover on a service that talks to nobody.
class PopoverFixture : public ServiceFixture {
public:
    PopoverFixture();
    ~PopoverFixture();
    PopoverFixture(const PopoverFixture &) = delete;
    PopoverFixture &operator=(const PopoverFixture &) = delete;
    PopoverFixture(PopoverFixture &&) = delete;
    PopoverFixture &operator=(PopoverFixture &&) = delete;

    /// Makes the content. What the desktop looks like from the start is set before.
    void load();
    /// Loads if need be, shows the window and waits for its first frame.
    void show();
    void hide() const;
    /// Turns to the settings and waits until they have slid in.
    void showSettings();
    /// Lets the refresh run that is asked for, answers it, and lays out what that shows.
    void answer(const model::QuotaSummary &summary);
    void fail(const QString &message);
    /// Waits until a refresh is under way.
    void awaitRefresh();
    /// Waits until so many cards are there, and lays them out.
    void awaitCards(qsizetype count);

    QQuickWindow &window() const;
    views::PopoverModel &model() const;
    /// The first item of that object name that can be seen; null without one.
    QQuickItem *item(const QString &name) const;
    /// All of them, from top to bottom.
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
    int terminated = 0;
    int closed = 0;
    std::unique_ptr<platform::PopoverContent> content;

private:
    void awaitEndOfRefresh();
    void layOut() const;
};

} // namespace brimwatch::test
