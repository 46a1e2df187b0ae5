#include "qml/popover_fixture.h"

#include "qml/samples.h"

#include <QTest>

#include <algorithm>

namespace brimwatch::test {

using namespace Qt::Literals::StringLiterals;

namespace {

void collect(QQuickItem *item, const QString &name, QList<QQuickItem *> &found)
{
    if (!item->isVisible() || item->opacity() == 0)
        return;
    if (item->objectName() == name)
        found.append(item);
    const auto children = item->childItems();
    for (QQuickItem *child : children)
        collect(child, name, found);
}

} // namespace

PopoverFixture::PopoverFixture()
    : ServiceFixture(sampleNow())
    , diagnostics(service,
          {.version = u"1.2.3"_s, .build = u"45"_s, .systemVersion = u"Debian 12, Linux 6.1"_s},
          u"/home/sample"_s)
{
}

void PopoverFixture::load()
{
    if (content)
        return;
    content.reset(brimwatch_make_popover_content({.quotaService = service,
        .appearance = appearance,
        .symbols = symbols,
        .opener = opener,
        .pasteboard = pasteboard,
        .launchAtLogin = launchAtLogin,
        .diagnostics = diagnostics,
        .terminate = [this] { ++terminated; },
        .close = [this] { ++closed; },
        .state = state}));
    if (!content)
        qFatal("the views cannot be created");
}

void PopoverFixture::show()
{
    load();
    content->setShown(true);
    window().show();
    window().requestActivate();
    if (!QTest::qWaitForWindowActive(&window()))
        qFatal("the popover does not show");
}

void PopoverFixture::hide() const
{
    window().hide();
    content->setShown(false);
}

void PopoverFixture::showSettings()
{
    content->showSettings();
    if (!QTest::qWaitFor([this] {
            const QQuickItem *face = item(u"settingsFace"_s);
            return face != nullptr && face->x() == 0 && item(u"groupList"_s) == nullptr;
        }))
        qFatal("the settings do not show");
}

void PopoverFixture::answer(const model::QuotaSummary &summary)
{
    awaitRefresh();
    fetching.answer(service::FetchedQuota{.summary = summary, .daemon = sampleDaemon()});
    awaitEndOfRefresh();
}

void PopoverFixture::fail(const QString &message)
{
    awaitRefresh();
    fetching.answer(brimwatch::fail(discovery::DaemonError{
        .kind = discovery::DaemonError::Kind::daemonUnreachable, .message = message}));
    awaitEndOfRefresh();
}

void PopoverFixture::awaitRefresh()
{
    if (!QTest::qWaitFor([this] { return service.isRefreshing() && fetching.isWaiting(); }))
        qFatal("no refresh was requested");
}

void PopoverFixture::awaitEndOfRefresh()
{
    if (!QTest::qWaitFor([this] { return !service.isRefreshing(); }))
        qFatal("the refresh does not end");
    if (content && window().isVisible())
        layOut();
}

void PopoverFixture::layOut() const
{
    // Taking a picture lays out all items.
    static_cast<void>(window().grabWindow());
}

void PopoverFixture::awaitCards(qsizetype count)
{
    if (!QTest::qWaitFor([this, count] { return items(u"groupCard"_s).size() == count; }))
        qFatal("the cards do not come");
    layOut();
}

QQuickWindow &PopoverFixture::window() const
{
    // The views are Qt Quick.
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-static-cast-downcast)
    return static_cast<QQuickWindow &>(content->window());
}

views::PopoverModel &PopoverFixture::model() const
{
    const QQuickItem *root = window().contentItem()->childItems().constFirst();
    return *root->property("model").value<views::PopoverModel *>();
}

QQuickItem *PopoverFixture::item(const QString &name) const
{
    return items(name).value(0);
}

QList<QQuickItem *> PopoverFixture::items(const QString &name) const
{
    QList<QQuickItem *> found;
    const auto roots = window().contentItem()->childItems();
    for (QQuickItem *root : roots)
        collect(root, name, found);
    std::stable_sort(found.begin(), found.end(), [](const QQuickItem *a, const QQuickItem *b) {
        return a->mapToScene(QPointF()).y() < b->mapToScene(QPointF()).y();
    });
    return found;
}

QQuickItem *PopoverFixture::existing(const QString &name) const
{
    QList<QQuickItem *> items{window().contentItem()};
    while (!items.isEmpty()) {
        QQuickItem *item = items.takeFirst();
        if (item->objectName() == name)
            return item;
        items.append(item->childItems());
    }
    return nullptr;
}

QString PopoverFixture::text(const QString &name) const
{
    const QQuickItem *found = item(name);
    return found != nullptr ? found->property("text").toString() : QString();
}

QPoint PopoverFixture::middle(const QString &name) const
{
    const QQuickItem *found = item(name);
    return found != nullptr ? found->mapToScene(QRectF(QPointF(), found->size()).center()).toPoint()
                            : QPoint();
}

} // namespace brimwatch::test
