// Every size, weight, symbol, opacity, padding, radius, outline and duration that the design gives,
// read off what is shown.

#include "qml/popover_fixture.h"
#include "qml/samples.h"
#include "views/models/theme.h"

#include <QQmlEngine>
#include <QQmlProperty>
#include <QQuickItem>
#include <QTest>

#include <cmath>
#include <functional>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;
using test::PopoverFixture;

namespace {

/// What has to be shown while the items are read.
enum class Shown { Dashboard, Loading, Offline, Settings };

using Value = std::function<QVariant(const views::Theme &)>;

struct Row {
    Shown shown;
    /// Steps from the popover inwards, separated by ">": an object name, "=" and a text, or "@" and
    /// the name of a symbol.
    QString item;
    /// Of the item, "parent." for its parent's; or "left", "right", "top": its distance from
    /// that edge of the popover.
    const char *property;
    Value value;
};

bool matches(const QQuickItem *item, const QString &step)
{
    if (step.startsWith(u'='))
        return item->property("text") == step.mid(1);
    if (step.startsWith(u'@'))
        return item->property("name") == step.mid(1) && item->property("pointSize").isValid();
    return item->objectName() == step;
}

QQuickItem *within(QQuickItem *item, const QString &step)
{
    const auto children = item->childItems();
    for (QQuickItem *child : children) {
        if (!child->isVisible() || child->opacity() == 0)
            continue;
        if (matches(child, step))
            return child;
        if (QQuickItem *found = within(child, step); found != nullptr)
            return found;
    }
    return nullptr;
}

QQuickItem *find(const PopoverFixture &fixture, const QString &path)
{
    QQuickItem *item = fixture.window().contentItem();
    const auto steps = path.split(u'>');
    for (const QString &step : steps) {
        if (item != nullptr)
            item = within(item, step);
    }
    return item;
}

QVariant read(QQuickItem *item, const QString &property)
{
    const QRectF place = item->mapRectToScene(QRectF(QPointF(), item->size()));
    if (property == "left"_L1)
        return place.left();
    if (property == "right"_L1)
        return 380 - place.right();
    if (property.startsWith("parent."_L1))
        return read(item->parentItem(), property.mid(7));
    return QQmlProperty(item, property).read();
}

Value is(const QVariant &value)
{
    return [value](const views::Theme &) { return value; };
}
Value color(QColor (views::Theme::*color)() const)
{
    return [color](const views::Theme &theme) { return (theme.*color)(); };
}
Value fill(model::ColorToken token)
{
    return [token](const views::Theme &theme) { return theme.fill(token); };
}

constexpr int medium = QFont::Medium;
constexpr int semibold = QFont::DemiBold;
constexpr int bold = QFont::Bold;
/// Of symbols.
constexpr int semiboldLines = 2;
constexpr int boldLines = 3;
constexpr int centred = Qt::AlignHCenter;

QList<Row> rows()
{
    using views::Theme;
    const Value label = color(&Theme::label);
    const Value secondary = color(&Theme::secondaryLabel);
    const Value accent = color(&Theme::accent);
    const Value green = fill(model::ColorToken::SystemGreen);
    QList<Row> rows;
    const auto add = [&rows](Shown shown, const QString &item,
                         std::initializer_list<std::pair<const char *, Value>> values) {
        for (const auto &[property, value] : values)
            rows.append({.shown = shown, .item = item, .property = property, .value = value});
    };
    const auto text = [&](Shown shown, const QString &item, int size, const Value &textColor,
                          std::optional<int> weight = std::nullopt) {
        add(shown, item, {{"font.pixelSize", is(size)}, {"color", textColor}});
        if (weight)
            add(shown, item, {{"font.weight", is(*weight)}});
    };
    const auto symbol = [&](Shown shown, const QString &item, int size, const Value &symbolColor,
                            std::optional<int> weight = std::nullopt) {
        add(shown, item, {{"pointSize", is(size)}, {"color", symbolColor}});
        if (weight)
            add(shown, item, {{"weight", is(*weight)}});
    };

    // The dashboard's header.
    auto at = Shown::Dashboard;
    add(at, u"badge"_s,
        {{"width", is(28)}, {"height", is(28)}, {"color", color(&Theme::badgeStart)},
            {"endColor", color(&Theme::badgeEnd)}, {"left", is(14)}});
    symbol(at, u"badge>@sparkles"_s, 14, is(QColor(Qt::white)), boldLines);
    text(at, u"=Brimwatch"_s, 14, label, bold);
    add(at, u"statusDot"_s, {{"width", is(6)}, {"height", is(6)}, {"color", green}});
    text(at, u"statusText"_s, 10, secondary, medium);
    symbol(at, u"refreshButton>@arrow.clockwise"_s, 13, label, semiboldLines);
    symbol(at, u"settingsButton>@gearshape"_s, 13, label, semiboldLines);
    add(at, u"settingsButton"_s, {{"right", is(14)}, {"toolTipText", is(u"Preferences"_s)}});
    // Cards.
    add(at, u"groupCard"_s,
        {{"left", is(12)}, {"right", is(12)}, {"radius", is(12)}, {"outlineWidth", is(1)},
            {"color", color(&Theme::cardBackground)},
            {"outlineColor", color(&Theme::cardOutline)}});
    symbol(at, u"groupCard>@sparkles"_s, 13, accent, semiboldLines);
    text(at, u"groupName"_s, 13, label, bold);
    add(at, u"groupName"_s,
        {{"parent.parent.spacing", is(10)}, {"parent.parent.x", is(12)},
            {"parent.parent.y", is(12)}});
    text(at, u"countText"_s, 10, secondary, medium);
    add(at, u"countText"_s, {{"x", is(6)}, {"y", is(2)}});
    add(at, u"countBadge"_s, {{"color", color(&Theme::countBackground)}});
    text(at, u"groupDescription"_s, 11, secondary);
    // Rows.
    add(at, u"bucketRow"_s,
        {{"radius", is(10)}, {"outlineWidth", is(1)}, {"parent.spacing", is(8)},
            {"color", color(&Theme::rowBackground)}, {"outlineColor", color(&Theme::rowOutline)}});
    text(at, u"bucketName"_s, 13, label, semibold);
    add(at, u"bucketName"_s, {{"parent.spacing", is(2)}, {"parent.x", is(10)}});
    text(at, u"bucketWindow"_s, 9, secondary, bold);
    add(at, u"pillBackground"_s, {{"opacity", is(0.12)}, {"color", green}});
    add(at, u"pillDot"_s, {{"width", is(7)}, {"height", is(7)}, {"x", is(8)}, {"color", green}});
    add(at, u"percentageText"_s,
        {{"pixelSize", is(14)}, {"weight", is(bold)}, {"x", is(18)}, {"y", is(3)},
            {"color",
                [](const Theme &theme) { return theme.color(model::ColorToken::SystemGreen); }}});
    add(at, u"barTrack"_s,
        {{"height", is(6)}, {"x", is(10)}, {"radius", is(3)}, {"color", color(&Theme::track)}});
    add(at, u"barFill"_s,
        {{"height", is(6)}, {"radius", is(3)}, {"opacity", is(0.8)}, {"color", green}});
    symbol(at, u"bucketRow>@clock"_s, 10, secondary);
    add(at, u"countdown"_s, {{"pixelSize", is(11)}, {"weight", is(medium)}, {"color", secondary}});
    text(at, u"timestamp"_s, 10, secondary);
    add(at, u"timestamp"_s, {{"opacity", is(0.8)}});
    // The footer.
    add(at, u"footerBackground"_s, {{"color", color(&Theme::footerBackground)}});
    add(at, u"updatedText"_s, {{"pixelSize", is(10)}, {"color", secondary}, {"left", is(14)}});
    text(at, u"openButton>=Open Antigravity"_s, 11, label);
    text(at, u"quitButton>=Quit"_s, 11, label);
    add(at, u"quitButton"_s, {{"right", is(14)}});

    at = Shown::Loading;
    text(at, u"=Fetching quota from Antigravity..."_s, 12, secondary);
    add(at, u"=Fetching quota from Antigravity..."_s, {{"parent.spacing", is(12)}});
    add(at, u"progress"_s, {{"width", is(28.8)}, {"height", is(28.8)}});
    add(at, u"=Waiting for update"_s, {{"pixelSize", is(10)}, {"color", secondary}});
    add(at, u"statusDot"_s, {{"color", fill(model::ColorToken::SystemOrange)}});

    at = Shown::Offline;
    symbol(at, u"offlineState>@exclamationmark.triangle.fill"_s, 36, color(&Theme::orangeFill));
    text(at, u"=Antigravity Daemon Offline"_s, 14, label, bold);
    add(at, u"=Antigravity Daemon Offline"_s, {{"parent.spacing", is(14)}});
    for (const QString &line :
        {u"=Could not connect to the local Antigravity Language Server daemon."_s,
            u"=Ensure Antigravity IDE is running."_s}) {
        text(at, line, 11, secondary);
        add(at, line, {{"left", is(24)}, {"right", is(24)}, {"horizontalAlignment", is(centred)}});
    }
    text(at, u"retryButton>=Retry Connection"_s, 11, color(&Theme::onAccent), medium);
    add(at, u"statusDot"_s, {{"color", fill(model::ColorToken::SystemRed)}});

    at = Shown::Settings;
    symbol(at, u"backButton>@chevron.left"_s, 12, label, boldLines);
    text(at, u"backButton>=Dashboard"_s, 12, label, medium);
    add(at, u"backButton"_s, {{"left", is(14)}});
    text(at, u"=Preferences"_s, 14, label, bold);
    text(at, u"doneButton>=Done"_s, 11, color(&Theme::onAccent), medium);
    add(at, u"doneButton"_s, {{"right", is(14)}});
    const std::pair<QString, QString> sections[]{{u"=General"_s, u"@gearshape"_s},
        {u"=Toolbar & Menu Bar"_s, u"@menubar.rectangle"_s},
        {u"=Auto-Refresh"_s, u"@arrow.triangle.2.circlepath"_s},
        {u"=Notifications"_s, u"@bell.badge"_s},
        {u"=Antigravity Daemon Diagnostics"_s, u"@network"_s},
        {u"=Support & Feedback"_s, u"@envelope"_s}};
    for (const auto &[title, picture] : sections) {
        text(at, title, 12, label, semibold);
        symbol(at, picture, 11, accent, semiboldLines);
        // One left edge, however wide the symbol is.
        add(at, title, {{"left", is(14 + 26)}});
    }
    add(at, u"sectionFrame"_s,
        {{"left", is(14)}, {"right", is(14)}, {"radius", is(10)}, {"outlineWidth", is(1)},
            {"color", color(&Theme::cardBackground)},
            {"outlineColor", color(&Theme::cardOutline)}});
    add(at, u"launchAtLogin"_s, {{"parent.x", is(8)}, {"parent.y", is(8)}});
    const std::pair<QString, QString> models[]{{u"showGemini"_s, u"@sparkles"_s},
        {u"showArgon"_s, u"@cpu"_s}, {u"showClaude"_s, u"@brain"_s}};
    for (const auto &[toggle, picture] : models) {
        symbol(at, QString(toggle + u'>' + picture), 11, label);
    }
    text(at, u"=Stats to Display in Toolbar:"_s, 11, label);
    text(at, u"=Display Options:"_s, 11, secondary);
    add(at, u"labelStyleBox"_s, {{"width", is(180)}});
    add(at, u"refreshIntervalBox"_s, {{"width", is(130)}});
    add(at, u"threshold"_s, {{"from", is(5)}, {"to", is(50)}, {"stepSize", is(5)}});
    text(at, u"thresholdText"_s, 12, color(&Theme::orange), semibold);
    symbol(at, u"contactSupport>@paperplane"_s, 11, color(&Theme::onAccent));
    text(at, u"versionText"_s, 10, secondary);
    add(at, u"versionText"_s, {{"left", is(14)}});
    text(at, u"quitAppButton>=Quit App"_s, 11, color(&Theme::red));
    add(at, u"quitAppButton"_s, {{"right", is(14)}});
    return rows;
}

} // namespace

class LookTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyItemIsAsTheDesignGivesIt_data()
    {
        QTest::addColumn<Shown>("shown");
        for (const auto &[name, shown] :
            {std::pair("dashboard", Shown::Dashboard), std::pair("loading", Shown::Loading),
                std::pair("offline", Shown::Offline), std::pair("settings", Shown::Settings)})
            QTest::newRow(name) << shown;
    }
    void everyItemIsAsTheDesignGivesIt()
    {
        QFETCH(const Shown, shown);
        PopoverFixture fixture;
        fixture.service.setNotifyOnLowQuota(true);
        fixture.show();
        fixture.awaitRefresh();
        if (shown == Shown::Offline)
            fixture.fail(u"no"_s);
        else if (shown != Shown::Loading)
            fixture.answer(test::sampleSummary());
        if (shown == Shown::Settings)
            fixture.showSettings();
        const views::Theme theme(fixture.appearance, fixture.symbols);
        QStringList wrong;
        for (const Row &row : rows()) {
            if (row.shown != shown)
                continue;
            const QString name = row.item + u' ' + QLatin1StringView(row.property);
            QQuickItem *item = find(fixture, row.item);
            if (item == nullptr) {
                wrong.append(name + u": no such item"_s);
                continue;
            }
            const QVariant found = read(item, QString::fromLatin1(row.property));
            const QVariant expected = row.value(theme);
            const bool isNumber = expected.canConvert<double>() && !expected.canConvert<QColor>();
            const bool same = isNumber
                ? found.isValid() && std::abs(found.toDouble() - expected.toDouble()) < 0.001
                : found == expected;
            if (!same)
                wrong.append(
                    name + u": "_s + found.toString() + u" instead of "_s + expected.toString());
        }
        QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join(u'\n')));
    }

    void whatIsScrolledAwayIsNotDrawnOverHeaderAndFooter()
    {
        PopoverFixture fixture;
        fixture.appearance.still = true;
        fixture.show();
        fixture.answer(test::manyGroups(20));
        fixture.awaitCards(20);
        QTRY_VERIFY(!fixture.model().spin()->isSpinning());
        const QRect body = fixture.item(u"body"_s)
                               ->mapRectToScene(QRectF(QPointF(), fixture.item(u"body"_s)->size()))
                               .toAlignedRect();
        const auto bars = [&fixture, &body] {
            QImage picture = fixture.window().grabWindow();
            const qreal ratio = picture.devicePixelRatio();
            const int top = static_cast<int>(body.top() * ratio);
            const int bottom = static_cast<int>(body.bottom() * ratio) + 2;
            return std::pair(picture.copy(0, 0, picture.width(), top),
                picture.copy(0, bottom, picture.width(), picture.height() - bottom));
        };
        const auto before = bars();
        for (int i = 0; i < 12; ++i) {
            QTest::keyClick(&fixture.window(), Qt::Key_Down);
            QVERIFY(bars() == before);
        }
    }
};

QTEST_MAIN(LookTest)
#include "look_test.moc"
