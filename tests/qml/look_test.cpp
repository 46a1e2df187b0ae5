// Every size, weight, symbol, opacity, padding, radius, outline and duration that the design gives,
// read off what is shown.

#include "platform/qt_color.h"
#include "qml/popover_fixture.h"
#include "qml/samples.h"
#include "views/models/theme.h"

#include <QEasingCurve>
#include <QFontMetricsF>
#include <QQmlEngine>
#include <QQmlProperty>
#include <QQuickItem>
#include <QTest>

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>
#include <optional>
#include <tuple>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;
using test::PopoverFixture;

namespace {

/// What has to be shown while the items are read.
enum class Shown { Dashboard, Many, Stale, Loading, Offline, Settings, Approval, List, ToolTip };

struct Look;
using Value = std::function<QVariant(const Look &)>;

struct Row {
    Shown shown;
    /// Steps from the popover inwards, separated by ">": an object name, "=" and a text, "@" and
    /// the name of a symbol, or "#" and a type. "[N]" behind it takes the one after N others.
    QString item;
    /// Of the item, "parent." for its parent's, "timer." for its timer's; or "left", "right": its
    /// distance from that edge of the popover; or "middleX", "middleY": its middle in its parent.
    const char *property;
    Value value;
};

bool matches(const QQuickItem *item, const QString &step)
{
    if (step.startsWith(u'='))
        return item->property("text") == step.mid(1);
    if (step.startsWith(u'@'))
        return item->property("name") == step.mid(1) && item->property("pointSize").isValid();
    if (step.startsWith(u'#')) {
        // Types get a suffix when they are QML or are given more properties there.
        const QString type = QString::fromLatin1(item->metaObject()->className());
        const QString name = type.section(u"::"_s, -1);
        return name == step.mid(1) || name.startsWith(step.mid(1) + "_QML"_L1);
    }
    return item->objectName() == step;
}

/// After `skipped` others, which are counted down.
QQuickItem *within(QQuickItem *item, const QString &step, int &skipped)
{
    const auto children = item->childItems();
    for (QQuickItem *child : children) {
        if (!child->isVisible() || child->opacity() == 0)
            continue;
        if (matches(child, step) && skipped-- == 0)
            return child;
        if (QQuickItem *found = within(child, step, skipped); found != nullptr)
            return found;
    }
    return nullptr;
}

QQuickItem *find(const PopoverFixture &fixture, const QString &path)
{
    QQuickItem *item = fixture.window().contentItem();
    const auto steps = path.split(u'>');
    for (const QString &step : steps) {
        int skipped = step.endsWith(u']') ? step.section(u'[', -1).chopped(1).toInt() : 0;
        if (item != nullptr)
            item = within(item, step.endsWith(u']') ? step.section(u'[', 0, 0) : step, skipped);
    }
    return item;
}

/// The first object of a type of Qt's that belongs to an item.
QObject *owned(const QQuickItem *item, QLatin1StringView type)
{
    const auto objects = item->findChildren<QObject *>();
    for (QObject *object : objects) {
        if (QLatin1StringView(object->metaObject()->className()) == type)
            return object;
    }
    return nullptr;
}

QVariant read(QQuickItem *item, const QString &property)
{
    if (item == nullptr)
        return {};
    const QRectF place = item->mapRectToScene(QRectF(QPointF(), item->size()));
    const QPointF middle
        = item->mapToItem(item->parentItem(), QRectF(QPointF(), item->size()).center());
    if (property == "left"_L1)
        return place.left();
    if (property == "right"_L1)
        return 380 - place.right();
    if (property == "middleX"_L1)
        return middle.x();
    if (property == "middleY"_L1)
        return middle.y();
    if (property.startsWith("parent."_L1))
        return read(item->parentItem(), property.mid(7));
    if (property.startsWith("timer."_L1)) {
        const QObject *timer = owned(item, "QQmlTimer"_L1);
        return timer != nullptr ? timer->property(property.mid(6).toUtf8()) : QVariant();
    }
    return QQmlProperty(item, property).read();
}

/// What values of the design depend on.
struct Look {
    const PopoverFixture &fixture;
    const views::Theme &theme;

    /// A number read off another item.
    double operator()(const QString &item, const char *property) const
    {
        return read(find(fixture, item), QString::fromLatin1(property)).toDouble();
    }
    double width(const QString &item) const { return (*this)(item, "width"); }
    double height(const QString &item) const { return (*this)(item, "height"); }
};

Value is(const QVariant &value)
{
    return [value](const Look &) { return value; };
}
Value color(QColor (views::Theme::*color)() const)
{
    return [color](const Look &look) { return (look.theme.*color)(); };
}
Value fill(model::ColorToken token)
{
    return [token](const Look &look) { return look.theme.fill(token); };
}
/// That of another item, and `more`.
Value as(const QString &item, const char *property, double more = 0)
{
    return [item, property, more](const Look &look) { return look(item, property) + more; };
}
/// Where a symbol of any width starts that stands in the middle of 18.
Value centredIn18(const QString &symbol, double more = 0)
{
    return [symbol, more](
               const Look &look) { return std::round((18 - look.width(symbol)) / 2) + more; };
}
/// The height of a line of text in the interface font.
double lineHeight(const Look &look, int pixelSize)
{
    QFont font(look.theme.fontFamily());
    font.setPixelSize(pixelSize);
    return QFontMetricsF(font).height();
}

constexpr int medium = QFont::Medium;
constexpr int semibold = QFont::DemiBold;
constexpr int bold = QFont::Bold;
/// Of symbols.
constexpr int semiboldLines = 2;
constexpr int boldLines = 3;
constexpr int centred = Qt::AlignHCenter;

/// The rows as they are written down.
class Table {
public:
    QList<Row> rows;
    Shown at = Shown::Dashboard;

    using Values = std::initializer_list<std::pair<const char *, Value>>;

    void add(const QString &item, Values values)
    {
        for (const auto &[property, value] : values)
            rows.append({.shown = at, .item = item, .property = property, .value = value});
    }
    void text(const QString &item, int size, const Value &textColor,
        std::optional<int> weight = std::nullopt)
    {
        add(item, {{"font.pixelSize", is(size)}, {"color", textColor}});
        add(item, {{"font.weight", is(weight.value_or(QFont::Normal))}});
    }
    void symbol(const QString &item, int size, const Value &symbolColor,
        std::optional<int> weight = std::nullopt)
    {
        add(item, {{"pointSize", is(size)}, {"color", symbolColor}});
        if (weight)
            add(item, {{"weight", is(*weight)}});
    }
    /// A line across the popover.
    void divider(const QString &item)
    {
        add(item,
            {{"height", is(1)}, {"left", is(0)}, {"right", is(0)},
                {"color", color(&views::Theme::divider)}});
    }
    void prominent(const QString &button, const QString &label)
    {
        const QString text = button + u">="_s + label;
        const QString ground = button + u">#RoundedRectangle"_s;
        this->text(text, 11, color(&views::Theme::onAccent), medium);
        add(text, {{"y", is(4)}});
        add(ground,
            {{"radius", is(6)}, {"color", color(&views::Theme::accentFill)},
                {"height", as(text, "height", 8)},
                {"width",
                    [text](const Look &look) { return look(text, "x") + look.width(text) + 12; }}});
        add(button, {{"margin", is(2)}});
    }
    void push(const QString &button, const QString &label)
    {
        const QString text = button + u">="_s + label;
        const QString ground = button + u">#RoundedRectangle"_s;
        this->text(text, 11, color(&views::Theme::label));
        add(text, {{"x", is(8)}, {"y", is(4)}});
        add(ground,
            {{"radius", is(5)}, {"outlineWidth", is(1)},
                {"color", color(&views::Theme::controlBackground)},
                {"outlineColor", color(&views::Theme::controlOutline)},
                {"width", as(text, "width", 16)}, {"height", as(text, "height", 8)}});
        add(button, {{"cornerRadius", is(5)}, {"margin", is(0)}});
    }
    void plain(const QString &button, const QString &label, const Value &textColor)
    {
        text(button + u">="_s + label, 11, textColor);
        add(button, {{"margin", is(4)}, {"cornerRadius", is(6)}});
    }
    /// A switch that is on or not, with a symbol before its text or without.
    void toggle(const QString &name, const QString &label, bool on, const QString &picture = {})
    {
        const QString text = name + u">="_s + label;
        const QString track = name + u">#RoundedRectangle"_s;
        this->text(text, 12, color(&views::Theme::label));
        add(text,
            {{"x", is(picture.isEmpty() ? 0 : 18)},
                {"width", as(name, "width", -(picture.isEmpty() ? 0 : 18) - 30 - 8)}});
        add(name, {{"height", [](const Look &look) {
                        return std::max(lineHeight(look, 12), 17.0) + 4;
                    }}});
        add(track,
            {{"width", is(30)}, {"height", is(17)}, {"radius", is(8.5)}, {"outlineWidth", is(1)},
                {"x", as(name, "width", -30)},
                {"y", [name](const Look &look) { return (look.height(name) - 17) / 2; }},
                {"color", color(on ? &views::Theme::accent : &views::Theme::track)}});
        add(track + u">#RoundedRectangle"_s,
            {{"width", is(13)}, {"height", is(13)}, {"radius", is(6.5)}, {"y", is(2)},
                {"x", is(on ? 15 : 2)}, {"outlineWidth", is(1)}, {"color", is(QColor(Qt::white))},
                {"outlineColor", is(QColor(0, 0, 0, 0x40))}});
        if (!picture.isEmpty())
            symbol(name + u">@"_s + picture, 11, color(&views::Theme::label));
    }
    void picker(const QString &name, const QString &caption, int width)
    {
        const QString box = name + u"Box"_s;
        const QString label = name + u">="_s + caption;
        text(label, 12, color(&views::Theme::label));
        add(label, {{"width", as(box, "x", -8)}});
        add(box, {{"width", is(width)}, {"height", [](const Look &look) {
                                             return std::ceil(lineHeight(look, 11)) + 8;
                                         }}});
        add(box + u">#RoundedRectangle"_s,
            {{"radius", is(5)}, {"outlineWidth", is(1)},
                {"color", color(&views::Theme::controlBackground)},
                {"outlineColor", color(&views::Theme::controlOutline)}});
        const QString chosen = box + u">#Label"_s;
        const QString arrow = box + u">@chevron.left"_s;
        text(chosen, 11, color(&views::Theme::label));
        add(chosen,
            {{"leftPadding", is(8)}, {"rightPadding", is(22)}, {"minimumPixelSize", is(8)}});
        symbol(arrow, 8, color(&views::Theme::secondaryLabel), boldLines);
        add(arrow, {{"rotation", is(-90)}, {"x", [=](const Look &look) {
                                                return width - look.width(arrow) - 7;
                                            }}});
    }
};

void addDashboard(Table &table)
{
    using views::Theme;
    const Value label = color(&Theme::label);
    const Value secondary = color(&Theme::secondaryLabel);
    const Value accent = color(&Theme::accent);
    const Value green = fill(model::ColorToken::SystemGreen);

    // The header.
    table.at = Shown::Dashboard;
    table.add(u"badge"_s,
        {{"width", is(28)}, {"height", is(28)}, {"radius", is(14)},
            {"color", color(&Theme::badgeStart)}, {"endColor", color(&Theme::badgeEnd)},
            {"left", is(14)}});
    table.symbol(u"badge>@sparkles"_s, 14, is(QColor(Qt::white)), boldLines);
    table.text(u"=Brimwatch"_s, 14, label, bold);
    table.add(u"=Brimwatch"_s,
        {{"left", is(14 + 28 + 8)}, {"parent.spacing", is(2)},
            {"parent.width", as(u"refreshButton"_s, "x", -(14 + 28 + 8) - 12)}});
    table.add(u"statusDot"_s,
        {{"width", is(6)}, {"height", is(6)}, {"radius", is(3)}, {"color", green},
            {"y", [](const Look &look) { return std::round((lineHeight(look, 10) - 6) / 2); }}});
    table.text(u"statusText"_s, 10, secondary, medium);
    table.add(u"statusText"_s,
        {{"x", is(11)}, {"maximumLineCount", is(2)},
            {"width", as(u"=Brimwatch"_s, "parent.width", -11)}});
    const auto headerHeight = [](const Look &look) {
        const double titles = look.height(u"=Brimwatch"_s) + 2 + look.height(u"statusText"_s);
        return std::max(28.0, titles) + 20;
    };
    table.add(u"#Divider"_s, {{"y", headerHeight}});
    table.divider(u"#Divider"_s);
    table.add(u"body"_s, {{"y", [=](const Look &look) { return headerHeight(look) + 1; }}});
    table.symbol(u"refreshButton>@arrow.clockwise"_s, 13, label, semiboldLines);
    table.symbol(u"settingsButton>@gearshape"_s, 13, label, semiboldLines);
    table.add(u"settingsButton"_s,
        {{"right", is(14)}, {"margin", is(5)}, {"cornerRadius", is(6)},
            {"toolTipText", is(u"Preferences"_s)}});
    table.add(u"refreshButton"_s,
        {{"margin", is(5)}, {"cornerRadius", is(6)}, {"x", [](const Look &look) {
                                                          return look(u"settingsButton"_s, "x") - 14
                                                              - look.width(u"refreshButton"_s);
                                                      }}});
    // The list.
    table.add(u"groupList"_s,
        {{"contentHeight", as(u"groupCard"_s, "parent.height", 24)}, {"line", is(24)}});
    table.add(u"groupCard"_s,
        {{"left", is(12)}, {"right", is(12)}, {"radius", is(12)}, {"outlineWidth", is(1)},
            {"parent.x", is(12)}, {"parent.y", is(12)}, {"parent.spacing", is(12)},
            {"color", color(&Theme::cardBackground)}, {"outlineColor", color(&Theme::cardOutline)},
            {"height", as(u"groupName"_s, "parent.parent.height", 24)}});
    table.symbol(u"groupCard>@sparkles"_s, 13, accent, semiboldLines);
    table.add(u"groupCard>@sparkles"_s, {{"x", centredIn18(u"groupCard>@sparkles"_s)}});
    table.symbol(u"groupCard[1]>@cpu"_s, 13, accent, semiboldLines);
    table.add(u"groupCard[1]>@cpu"_s, {{"x", centredIn18(u"groupCard[1]>@cpu"_s)}});
    table.text(u"groupName"_s, 13, label, bold);
    table.add(u"groupName"_s,
        {{"x", is(26)}, {"width", as(u"countBadge"_s, "x", -26 - 8)}, {"maximumLineCount", is(1)},
            {"parent.parent.spacing", is(10)}, {"parent.parent.x", is(12)},
            {"parent.parent.y", is(12)},
            {"parent.parent.width", as(u"groupCard"_s, "width", -24)}});
    table.text(u"countText"_s, 10, secondary, medium);
    table.add(u"countText"_s, {{"x", is(6)}, {"y", is(2)}});
    table.add(u"countBadge"_s,
        {{"color", color(&Theme::countBackground)}, {"width", as(u"countText"_s, "width", 12)},
            {"height", as(u"countText"_s, "height", 4)},
            {"radius", [](const Look &look) { return look.height(u"countBadge"_s) / 2; }}});
    table.text(u"groupDescription"_s, 11, secondary);
    table.add(u"groupDescription"_s, {{"maximumLineCount", is(6)}});
    // Rows.
    table.add(u"bucketRow"_s,
        {{"radius", is(10)}, {"outlineWidth", is(1)}, {"parent.spacing", is(8)},
            {"color", color(&Theme::rowBackground)}, {"outlineColor", color(&Theme::rowOutline)},
            {"height", [](const Look &look) {
                 return look(u"countdown"_s, "parent.y") + look(u"countdown"_s, "parent.height")
                     + 10;
             }}});
    const auto beside = [](const QString &self, const char *selfHeight, const QString &other,
                            const char *otherHeight) {
        return [=](const Look &look) {
            const double room = look(other, otherHeight) - look(self, selfHeight);
            return 10 + std::max(0.0, std::round(room / 2));
        };
    };
    table.text(u"bucketName"_s, 13, label, semibold);
    table.add(u"bucketName"_s,
        {{"parent.spacing", is(2)}, {"parent.x", is(10)}, {"maximumLineCount", is(1)},
            {"parent.width", as(u"percentagePill"_s, "x", -10 - 8)},
            {"parent.y", beside(u"bucketName"_s, "parent.height", u"percentagePill"_s, "height")}});
    table.text(u"bucketWindow"_s, 9, secondary, bold);
    table.add(u"bucketWindow"_s, {{"maximumLineCount", is(1)}});
    table.add(u"percentagePill"_s,
        {{"width", as(u"percentageText"_s, "width", 7 + 3 + 16)},
            {"height", as(u"percentageText"_s, "height", 6)},
            {"y", beside(u"percentagePill"_s, "height", u"bucketName"_s, "parent.height")},
            {"x", [](const Look &look) {
                 return look.width(u"bucketRow"_s) - 10 - look.width(u"percentagePill"_s);
             }}});
    table.add(u"pillBackground"_s,
        {{"opacity", is(0.12)}, {"color", green},
            {"radius", [](const Look &look) { return look.height(u"percentagePill"_s) / 2; }}});
    table.add(u"pillDot"_s,
        {{"width", is(7)}, {"height", is(7)}, {"x", is(8)}, {"radius", is(3.5)}, {"color", green}});
    table.add(u"percentageText"_s,
        {{"pixelSize", is(14)}, {"weight", is(bold)}, {"x", is(18)}, {"y", is(3)},
            {"color", [](const Look &look) {
                 return look.theme.color(model::ColorToken::SystemGreen);
             }}});
    table.add(u"barTrack"_s,
        {{"height", is(6)}, {"x", is(10)}, {"radius", is(3)}, {"color", color(&Theme::track)},
            {"width", as(u"bucketRow"_s, "width", -20)},
            {"y", [](const Look &look) {
                 return 16
                     + std::max(
                         look(u"bucketName"_s, "parent.height"), look.height(u"percentagePill"_s));
             }}});
    table.add(u"barFill"_s,
        {{"height", is(6)}, {"radius", is(3)}, {"opacity", is(0.8)}, {"color", green},
            {"width", [](const Look &look) { return look.width(u"barTrack"_s) * 0.804; }}});
    table.symbol(u"bucketRow>@clock"_s, 10, secondary);
    table.add(u"countdown"_s,
        {{"pixelSize", is(11)}, {"weight", is(medium)}, {"color", secondary},
            {"x", as(u"bucketRow>@clock"_s, "width", 4)}, {"parent.x", is(10)},
            {"parent.y", as(u"barTrack"_s, "y", 12)},
            {"parent.width", as(u"bucketRow"_s, "width", -20)}});
    table.text(u"timestamp"_s, 10, secondary);
    table.add(u"timestamp"_s, {{"opacity", is(0.8)}});
    // The scroll bar.
    table.add(u"groupList>scrollBar"_s,
        {{"width", is(12)}, {"right", is(0)}, {"y", is(2)},
            {"height", as(u"groupList"_s, "height", -4)}, {"timer.interval", is(800)}});
    table.add(u"groupList>scrollThumb"_s,
        {{"width", is(4)}, {"right", is(4)}, {"radius", is(2)}, {"opacity", is(0.35)},
            {"color", secondary}});
    // The footer.
    table.add(u"footerBackground"_s,
        {{"color", color(&Theme::footerBackground)}, {"y", is(0)},
            {"parent.height", [](const Look &look) {
                 return 16 + std::max(look.height(u"updatedText"_s), look.height(u"openButton"_s));
             }}});
    table.add(u"#Divider[1]"_s, {{"y", is(-1)}});
    table.divider(u"#Divider[1]"_s);
    table.add(u"updatedText"_s, {{"pixelSize", is(10)}, {"color", secondary}, {"left", is(14)}});
    table.plain(u"openButton"_s, u"Open Antigravity"_s, label);
    table.plain(u"quitButton"_s, u"Quit"_s, label);
    table.add(u"openButton"_s, {{"x", [](const Look &look) {
                                     return look(u"quitButton"_s, "x") - 12
                                         - look.width(u"openButton"_s);
                                 }}});
    table.add(u"quitButton"_s, {{"right", is(14)}});

    table.at = Shown::Many;
    table.add(u"groupList>scrollThumb"_s, {{"height", is(24)}});
    for (const auto &more : {u"moreGroups"_s, u"moreRows"_s}) {
        table.text(more, 10, secondary);
        table.add(more, {{"horizontalAlignment", is(centred)}});
    }

    table.at = Shown::Stale;
    table.text(u"errorText"_s, 10, secondary);
    table.add(u"errorText"_s,
        {{"x", is(4)}, {"y", is(4)}, {"horizontalAlignment", is(centred)}, {"left", is(12 + 4)},
            {"right", is(12 + 4)}, {"parent.height", as(u"errorText"_s, "height", 4)}});

    table.at = Shown::ToolTip;
    table.add(u"toolTip"_s,
        {{"radius", is(6)}, {"outlineWidth", is(1)}, {"color", color(&Theme::cardBackground)},
            {"outlineColor", color(&Theme::frame)},
            {"x", [](const Look &look) { return std::round(380 - look.width(u"toolTip"_s) - 8); }},
            {"width", as(u"toolTip>#Label"_s, "implicitWidth", 16)},
            {"height", as(u"toolTip>#Label"_s, "height", 10)}, {"timer.interval", is(600)},
            {"y", [](const Look &look) {
                 const QQuickItem *gear = look.fixture.item(u"settingsButton"_s);
                 return std::round(gear->mapToScene(QPointF(0, gear->height())).y() + 8);
             }}});
    table.text(u"toolTip>#Label"_s, 11, label);
    table.add(u"toolTip>#Label"_s,
        {{"x", is(8)}, {"y", is(5)}, {"maximumLineCount", is(20)},
            {"width", as(u"toolTip"_s, "width", -16)}});
}

void addStates(Table &table)
{
    using views::Theme;
    const Value label = color(&Theme::label);
    const Value secondary = color(&Theme::secondaryLabel);

    table.at = Shown::Loading;
    const QString fetching = u"=Fetching quota from Antigravity..."_s;
    table.text(fetching, 12, secondary);
    table.add(fetching, {{"parent.spacing", is(12)}});
    table.add(u"progress"_s, {{"width", is(28.8)}, {"height", is(28.8)}});
    for (int i = 0; i < 8; ++i) {
        const QString spoke = u"progress>#RoundedRectangle[%1]"_s.arg(i);
        const double angle = i * std::numbers::pi / 4;
        table.add(spoke,
            {{"width", is(3)}, {"height", is(8)}, {"radius", is(4)}, {"color", secondary},
                {"opacity", is(0.2 + 0.8 * i / 7)}, {"middleX", is(14.4 + 10.4 * std::sin(angle))},
                {"middleY", is(14.4 - 10.4 * std::cos(angle))}});
    }
    table.add(u"progress"_s, {{"timer.interval", is(100)}, {"timer.repeat", is(true)}});
    table.add(u"=Waiting for update"_s, {{"pixelSize", is(10)}, {"color", secondary}});
    table.add(u"statusDot"_s, {{"color", fill(model::ColorToken::SystemOrange)}});
    table.add(u"refreshButton"_s, {{"opacity", is(1)}});

    table.at = Shown::Offline;
    const QString triangle = u"offlineState>@exclamationmark.triangle.fill"_s;
    table.symbol(triangle, 36, color(&Theme::orangeFill));
    table.text(u"=Antigravity Daemon Offline"_s, 14, label, bold);
    table.add(u"=Antigravity Daemon Offline"_s, {{"parent.spacing", is(14)}});
    for (const QString &line :
        {u"=Could not connect to the local Antigravity Language Server daemon."_s,
            u"=Ensure Antigravity IDE is running."_s}) {
        table.text(line, 11, secondary);
        table.add(
            line, {{"left", is(24)}, {"right", is(24)}, {"horizontalAlignment", is(centred)}});
    }
    table.prominent(u"retryButton"_s, u"Retry Connection"_s);
    table.add(u"retryButton>=Retry Connection"_s, {{"x", is(12)}});
    table.add(u"statusDot"_s, {{"color", fill(model::ColorToken::SystemRed)}});
}

void addSettings(Table &table)
{
    using views::Theme;
    const Value label = color(&Theme::label);
    const Value secondary = color(&Theme::secondaryLabel);
    const Value accent = color(&Theme::accent);

    table.at = Shown::Settings;
    table.symbol(u"backButton>@chevron.left"_s, 12, label, boldLines);
    table.text(u"backButton>=Dashboard"_s, 12, label, medium);
    table.add(u"backButton>=Dashboard"_s, {{"parent.spacing", is(4)}});
    table.add(u"backButton"_s, {{"left", is(14)}, {"margin", is(4)}, {"cornerRadius", is(6)}});
    table.text(u"=Preferences"_s, 14, label, bold);
    table.add(u"=Preferences"_s,
        {{"x", [](const Look &look) {
              const double left = look(u"backButton"_s, "x") + look.width(u"backButton"_s);
              const double right = look(u"doneButton"_s, "x");
              return std::round((left + right - look.width(u"=Preferences"_s)) / 2);
          }}});
    table.prominent(u"doneButton"_s, u"Done"_s);
    table.add(u"doneButton"_s, {{"right", is(14)}});
    const auto headerHeight = [](const Look &look) {
        return 20
            + std::max({look.height(u"backButton"_s), look.height(u"=Preferences"_s),
                look.height(u"doneButton"_s)});
    };
    table.add(u"settingsFace>#Divider"_s, {{"y", headerHeight}});
    table.divider(u"settingsFace>#Divider"_s);
    table.add(u"settingsList"_s,
        {{"y", [=](const Look &look) { return headerHeight(look) + 1; }},
            {"contentHeight", as(u"#GeneralSection"_s, "parent.height", 28)}});
    table.add(u"#GeneralSection"_s,
        {{"parent.spacing", is(14)}, {"parent.x", is(14)}, {"parent.y", is(14)},
            {"parent.width", is(380 - 28)}});
    const std::tuple<QString, QString, QString> sections[]{
        {u"#GeneralSection"_s, u"General"_s, u"gearshape"_s},
        {u"#LabelSection"_s, u"Toolbar & Menu Bar"_s, u"menubar.rectangle"_s},
        {u"#AutoRefreshSection"_s, u"Auto-Refresh"_s, u"arrow.triangle.2.circlepath"_s},
        {u"#NotificationsSection"_s, u"Notifications"_s, u"bell.badge"_s},
        {u"#DiagnosticsSection"_s, u"Antigravity Daemon Diagnostics"_s, u"network"_s},
        {u"#SupportSection"_s, u"Support & Feedback"_s, u"envelope"_s}};
    for (const auto &[section, title, picture] : sections) {
        const QString heading = section + u">="_s + title;
        const QString symbol = section + u">@"_s + picture;
        const QString frame = section + u">sectionFrame"_s;
        table.text(heading, 12, label, semibold);
        table.symbol(symbol, 11, accent, semiboldLines);
        // One left edge, however wide the symbol is.
        table.add(heading, {{"left", is(14 + 26)}});
        table.add(symbol, {{"x", centredIn18(symbol, 2)}});
        table.add(section, {{"spacing", is(5)}});
        table.add(frame,
            {{"left", is(14)}, {"right", is(14)}, {"radius", is(10)}, {"outlineWidth", is(1)},
                {"color", color(&Theme::cardBackground)},
                {"outlineColor", color(&Theme::cardOutline)},
                {"height", [frame](const Look &look) {
                     const QQuickItem *content
                         = find(look.fixture, frame)->childItems().constFirst();
                     return content->height() + 16;
                 }}});
    }
    // Each section's rows are 8 within its frame and 6 apart.
    for (const auto &first : {u"launchAtLogin"_s, u"showGemini"_s, u"refreshInterval"_s,
             u"notify"_s, u"contactSupport"_s})
        table.add(first,
            {{"parent.x", is(8)}, {"parent.y", is(8)}, {"parent.spacing", is(6)},
                {"parent.width", is(380 - 28 - 16)}});
    table.toggle(u"launchAtLogin"_s, u"Start at Login"_s, false);
    table.text(u"=Stats to Display in Toolbar:"_s, 11, label);
    table.toggle(u"showGemini"_s, u"Gemini"_s, true, u"sparkles"_s);
    table.toggle(u"showArgon"_s, u"Argon"_s, false, u"cpu"_s);
    table.toggle(u"showClaude"_s, u"Claude"_s, false, u"brain"_s);
    table.picker(u"labelStyle"_s, u"Label Style:"_s, 180);
    table.add(u"#LabelSection>#Divider"_s,
        {{"height", is(1)}, {"y", is(2)}, {"parent.height", is(5)},
            {"color", color(&Theme::divider)}});
    table.text(u"=Display Options:"_s, 11, secondary);
    table.toggle(u"showIcon"_s, u"Show Sparkle Icon"_s, true);
    table.toggle(u"showPercentage"_s, u"Show Percentage Text"_s, true);
    table.toggle(u"useColor"_s, u"Colored Status Indicator"_s, true);
    table.toggle(u"showFiveHour"_s, u"Show 5-Hour Limit"_s, true);
    table.toggle(u"showWeekly"_s, u"Show Weekly Limit"_s, true);
    table.picker(u"refreshInterval"_s, u"Check Quota Every:"_s, 130);
    table.toggle(u"notify"_s, u"Notify when quota drops low"_s, true);
    const QString threshold = u"=Alert Threshold:"_s;
    table.text(threshold, 12, label);
    table.add(u"threshold"_s,
        {{"from", is(5)}, {"to", is(50)}, {"stepSize", is(5)}, {"height", is(20)},
            {"x", as(threshold, "width", 10)}, {"width", [=](const Look &look) {
                                                    return look(u"thresholdText"_s, "x")
                                                        - look.width(threshold) - 20;
                                                }}});
    const QString groove = u"threshold>#RoundedRectangle[1]"_s;
    table.add(groove,
        {{"x", is(7)}, {"height", is(4)}, {"radius", is(2)}, {"y", is(8)},
            {"color", color(&Theme::track)}, {"width", as(u"threshold"_s, "width", -14)}});
    table.add(groove + u">#RoundedRectangle"_s,
        {{"height", is(4)}, {"radius", is(2)}, {"color", accent},
            {"width",
                [groove](const Look &look) { return look.width(groove) * (20 - 5) / (50 - 5); }}});
    // Before the groove.
    table.add(u"threshold>#RoundedRectangle"_s,
        {{"width", is(14)}, {"height", is(14)}, {"radius", is(7)}, {"outlineWidth", is(2)},
            {"y", is(3)}, {"color", accent}, {"outlineColor", color(&Theme::cardBackground)}});
    table.text(u"thresholdText"_s, 12, color(&Theme::orange), semibold);
    table.add(u"thresholdText"_s,
        {{"width", is(34)}, {"horizontalAlignment", is(int(Qt::AlignRight))},
            {"parent.height",
                [=](const Look &look) { return std::max(20.0, look.height(threshold)); }}});
    for (const auto &row : {u"=Status"_s, u"=Port"_s, u"=Version"_s, u"=CSRF"_s})
        table.add(row, {{"parent.parent.spacing", is(4)}});
    for (const auto &row : {u"=Status"_s, u"=Port"_s, u"=Version"_s, u"=CSRF"_s, u"=Last Update"_s})
        table.text(row, 11, secondary);
    for (int i = 0; i < 5; ++i) {
        const QString value = u"diagnosticValue[%1]"_s.arg(i);
        table.text(value, 11, label);
        table.add(value, {{"right", is(14 + 8)}, {"font.family", [](const Look &look) {
                                                      return look.theme.fixedFontFamily();
                                                  }}});
    }
    table.add(u"#DiagnosticsSection>#Divider"_s,
        {{"height", is(1)}, {"y", is(4)}, {"parent.height", is(9)},
            {"color", color(&Theme::divider)}});
    table.push(u"openFolder"_s, u"Open Daemon Folder"_s);
    table.push(u"copyDiagnostics"_s, u"Copy Diagnostics"_s);
    table.add(u"copyDiagnostics"_s, {{"parent.spacing", is(8)}});
    table.text(u"#SupportSection>#SettingsCaption"_s, 11, secondary);
    table.prominent(u"contactSupport"_s, u"Contact Support"_s);
    table.symbol(u"contactSupport>@paperplane"_s, 11, color(&Theme::onAccent));
    table.add(u"contactSupport>@paperplane"_s, {{"x", is(12)}});
    table.add(u"contactSupport>=Contact Support"_s,
        {{"x", as(u"contactSupport>@paperplane"_s, "width", 12 + 5)}});
    // The footer.
    table.add(u"settingsFace>footerBackground"_s,
        {{"parent.height", [](const Look &look) {
              return 16 + std::max(look.height(u"versionText"_s), look.height(u"quitAppButton"_s));
          }}});
    table.text(u"versionText"_s, 10, secondary);
    table.add(
        u"versionText"_s, {{"left", is(14)}, {"width", as(u"quitAppButton"_s, "x", -14 - 8)}});
    table.plain(u"quitAppButton"_s, u"Quit App"_s, color(&Theme::red));
    table.add(u"quitAppButton"_s, {{"right", is(14)}});

    // The approval that a system may want, no model chosen, no daemon found.
    table.at = Shown::Approval;
    const QString warning = u"#GeneralSection>@exclamationmark.triangle.fill"_s;
    table.symbol(warning, 11, color(&Theme::orangeFill));
    table.text(u"approvalText"_s, 10, secondary);
    table.add(u"approvalText"_s,
        {{"x", as(warning, "width", 6)}, {"width", [=](const Look &look) {
                                              return look(u"openLoginSettings"_s, "x")
                                                  - look.width(warning) - 12;
                                          }}});
    table.push(u"openLoginSettings"_s, u"Open Settings"_s);
    table.add(u"openLoginSettings"_s,
        {{"y", is(2)}, {"right", is(14 + 8)},
            {"parent.height", as(u"openLoginSettings"_s, "height", 2)}});
    table.text(u"noStatsNote"_s, 11, secondary);
    table.text(u"noDaemonNote"_s, 11, secondary);

    table.at = Shown::List;
    const QString chosen = u"pickerOption"_s;
    const QString other = u"pickerOption[1]"_s;
    for (const auto &option : {chosen, other}) {
        table.add(option, {{"height", as(u"labelStyleBox"_s, "height")}, {"width", is(180 - 8)}});
        table.add(option + u">#RoundedRectangle"_s, {{"radius", is(4)}});
        table.text(option + u">#Label"_s, 11, option == chosen ? color(&Theme::onAccent) : label);
        table.add(option + u">#Label"_s,
            {{"x", is(20)}, {"width", is(180 - 8 - 20 - 3)}, {"minimumPixelSize", is(8)}});
    }
    table.add(chosen + u">#RoundedRectangle"_s, {{"color", color(&Theme::accentFill)}});
    table.symbol(u"chosenMark"_s, 9, color(&Theme::onAccent), boldLines);
    table.add(u"chosenMark"_s, {{"x", is(5)}});
    // Qt's item around the list, which has the background.
    const QString list = u"#QQuickPopupItem"_s;
    table.add(list,
        {{"width", is(180)}, {"left", as(u"labelStyleBox"_s, "left")},
            {"height", [](const Look &look) { return 3 * look.height(u"labelStyleBox"_s) + 8; }},
            {"y", [](const Look &look) {
                 const QQuickItem *box = look.fixture.item(u"labelStyleBox"_s);
                 return box->mapToScene(QPointF(0, box->height())).y() + 2;
             }}});
    table.add(list + u">#RoundedRectangle"_s,
        {{"radius", is(6)}, {"outlineWidth", is(1)}, {"color", color(&Theme::background)},
            {"outlineColor", color(&Theme::frame)}});
    table.add(list + u">#QQuickListView"_s, {{"x", is(4)}, {"y", is(4)}});
}

void show(PopoverFixture &fixture, Shown shown)
{
    fixture.show();
    fixture.awaitRefresh();
    switch (shown) {
    case Shown::Loading:
        return;
    case Shown::Offline:
        fixture.fail(u"no"_s);
        return;
    case Shown::Many: {
        auto summary = test::manyGroups(views::PopoverModel::maximumGroups + 1);
        for (int i = 0; i < views::PopoverModel::maximumRows; ++i)
            summary.groups.first().buckets.append(
                test::sampleBucket(QString::number(i), u"Bucket"_s, std::nullopt, 1, std::nullopt));
        fixture.answer(summary);
        fixture.awaitCards(views::PopoverModel::maximumGroups);
        return;
    }
    case Shown::Stale:
        fixture.answer(test::sampleSummary());
        fixture.service.refresh();
        fixture.fail(u"no"_s);
        return;
    case Shown::Approval:
        fixture.service.setShowGeminiInToolbar(false);
        fixture.service.setShowArgonInToolbar(false);
        fixture.service.setShowClaudeInToolbar(false);
        fixture.fail(u"no"_s);
        fixture.showSettings();
        fixture.setLoginItem(platform::LoginItem::Status::requiresApproval);
        return;
    case Shown::Dashboard:
    case Shown::Settings:
    case Shown::List:
    case Shown::ToolTip:
        fixture.answer(test::sampleSummary());
        break;
    }
    if (shown == Shown::Settings || shown == Shown::List)
        fixture.showSettings();
    if (shown == Shown::List) {
        auto *box = fixture.item(u"labelStyleBox"_s);
        QVERIFY(QMetaObject::invokeMethod(
            fixture.item(u"settingsList"_s), "reveal", Q_ARG(QQuickItem *, box)));
        QTest::mouseClick(
            &fixture.window(), Qt::LeftButton, {}, fixture.middle(u"labelStyleBox"_s));
        QTRY_COMPARE(fixture.items(u"pickerOption"_s).size(), 3);
    } else if (shown == Shown::ToolTip) {
        QTest::mouseMove(&fixture.window(), QPoint(190, 100));
        QTest::mouseMove(&fixture.window(), fixture.middle(u"settingsButton"_s));
        QTRY_VERIFY(fixture.item(u"toolTip"_s) != nullptr);
    }
    // Lays out what has come last.
    static_cast<void>(fixture.window().grabWindow());
}

QList<Row> rows()
{
    Table table;
    addDashboard(table);
    addStates(table);
    addSettings(table);
    return table.rows;
}

} // namespace

class LookTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyItemIsAsTheDesignGivesIt_data()
    {
        QTest::addColumn<Shown>("shown");
        QTest::addColumn<bool>("dark");
        for (const auto &[name, shown] :
            {std::pair("dashboard", Shown::Dashboard), std::pair("loading", Shown::Loading),
                std::pair("offline", Shown::Offline), std::pair("settings", Shown::Settings),
                std::pair("more than is shown", Shown::Many), std::pair("stale", Shown::Stale),
                std::pair("approval", Shown::Approval), std::pair("list", Shown::List),
                std::pair("tooltip", Shown::ToolTip)}) {
            QTest::addRow("%s, light", name) << shown << false;
            QTest::addRow("%s, dark", name) << shown << true;
        }
    }
    void everyItemIsAsTheDesignGivesIt()
    {
        QFETCH(const Shown, shown);
        QFETCH(const bool, dark);
        PopoverFixture fixture;
        fixture.appearance.still = true;
        fixture.appearance.setDark(dark);
        fixture.service.setNotifyOnLowQuota(true);
        show(fixture, shown);
        const views::Theme theme(fixture.appearance, fixture.symbols);
        QStringList wrong;
        for (const Row &row : rows()) {
            if (row.shown != shown)
                continue;
            const QString found = wrongAt(fixture, theme, row.item, {{row.property, row.value}});
            if (!found.isEmpty())
                wrong.append(found);
        }
        QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join(u'\n')));
    }

    void aLongTooltipLeavesRoomBesideIt();
    void whatIsPointedAtOrFocusedIsMarked();
    void facesSlideAndTheIconTurnsAsLongAsTheDesignGives();
    void coloursHaveTheOpacityOfTheDesign();

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
            const qreal ratio = qreal(picture.width()) / fixture.window().width();
            // A row between them may be of both at a ratio that is no whole number.
            const int top = static_cast<int>(body.top() * ratio) - 1;
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

private:
    /// What is wrong with an item; empty if it is as given.
    static QString wrongAt(const PopoverFixture &fixture, const views::Theme &theme,
        const QString &path, Table::Values values);
};

QString LookTest::wrongAt(const PopoverFixture &fixture, const views::Theme &theme,
    const QString &path, Table::Values values)
{
    QStringList wrong;
    for (const auto &[property, value] : values) {
        QQuickItem *item = find(fixture, path);
        const QString name = path + u' ' + QLatin1StringView(property);
        if (item == nullptr) {
            wrong.append(name + u": no such item"_s);
            continue;
        }
        const QVariant found = read(item, QString::fromLatin1(property));
        const QVariant expected = value({.fixture = fixture, .theme = theme});
        const bool isNumber = expected.canConvert<double>() && !expected.canConvert<QColor>();
        const bool same = isNumber
            ? found.isValid() && std::abs(found.toDouble() - expected.toDouble()) < 0.001
            : found == expected;
        if (!same)
            wrong.append(
                name + u": "_s + found.toString() + u" instead of "_s + expected.toString());
    }
    return wrong.join(u'\n');
}

void LookTest::aLongTooltipLeavesRoomBesideIt()
{
    PopoverFixture fixture;
    fixture.show();
    const QString error = u"word "_s.repeated(60).trimmed();
    fixture.fail(error);
    QTest::mouseMove(&fixture.window(), QPoint(190, 100));
    QTest::mouseMove(&fixture.window(), fixture.middle(u"statusText"_s));
    QTRY_VERIFY(fixture.item(u"toolTip"_s) != nullptr);
    const QQuickItem *toolTip = fixture.item(u"toolTip"_s);
    QCOMPARE(toolTip->x(), 8.0);
    QCOMPARE(toolTip->width(), 380.0 - 2 * 8);
    QVERIFY(!find(fixture, u"toolTip>#Label"_s)->property("truncated").toBool());
}

void LookTest::whatIsPointedAtOrFocusedIsMarked()
{
    using views::Theme;
    PopoverFixture fixture;
    fixture.appearance.still = true;
    fixture.service.setNotifyOnLowQuota(true);
    fixture.show();
    const Theme theme(fixture.appearance, fixture.symbols);
    QStringList wrong;
    const auto check = [&](const QString &item, Table::Values values) {
        // Where the pointer is counts with the next frame.
        QString found;
        static_cast<void>(QTest::qWaitFor([&] {
            found = wrongAt(fixture, theme, item, values);
            return found.isEmpty();
        }));
        if (!found.isEmpty())
            wrong.append(found);
    };
    const auto ring = [&](const QString &item, double margin, double radius) {
        fixture.item(item)->forceActiveFocus(Qt::TabFocusReason);
        check(item + u">focusRing"_s,
            {{"x", is(-margin)}, {"y", is(-margin)}, {"radius", is(radius)},
                {"outlineWidth", is(2)}, {"outlineColor", color(&Theme::accent)},
                {"color", is(QColor(Qt::transparent))}});
    };
    const auto pointAt = [&](const QString &item) {
        QTest::mouseMove(&fixture.window(), QPoint(190, 3));
        QTest::mouseMove(&fixture.window(), fixture.middle(item));
    };
    /// Its first shape is `ground` while it is pointed at, and while it is pressed.
    const auto lights = [&](const QString &item, double margin, double radius) {
        pointAt(item);
        const QString shape = item + u">#RoundedRectangle"_s;
        check(
            shape, {{"x", is(-margin)}, {"radius", is(radius)}, {"color", color(&Theme::hovered)}});
        QTest::mousePress(&fixture.window(), Qt::LeftButton, {}, fixture.middle(item));
        check(shape, {{"color", color(&Theme::pressed)}});
        QTest::mouseMove(&fixture.window(), QPoint(190, 3));
        QTest::mouseRelease(&fixture.window(), Qt::LeftButton, {}, QPoint(190, 3));
    };
    const auto prominent = [&](const QString &item) {
        const QString veil = item + u">#RoundedRectangle[2]"_s;
        pointAt(item);
        check(veil, {{"radius", is(6)}, {"opacity", is(0.08)}, {"color", is(QColor(Qt::black))}});
        QTest::mousePress(&fixture.window(), Qt::LeftButton, {}, fixture.middle(item));
        check(veil, {{"opacity", is(0.2)}});
        QTest::mouseMove(&fixture.window(), QPoint(190, 3));
        QTest::mouseRelease(&fixture.window(), Qt::LeftButton, {}, QPoint(190, 3));
    };

    fixture.awaitRefresh();
    // A button that has to wait, where nothing turns.
    check(u"refreshIcon"_s, {{"opacity", is(0.45)}});
    fixture.fail(u"no"_s);
    check(u"refreshIcon"_s, {{"opacity", is(1)}});
    ring(u"retryButton"_s, 4, 8);
    prominent(u"retryButton"_s);
    fixture.service.refresh();
    fixture.awaitRefresh();
    fixture.answer(test::sampleSummary());

    ring(u"refreshButton"_s, 7, 8);
    ring(u"settingsButton"_s, 7, 8);
    ring(u"openButton"_s, 6, 8);
    ring(u"quitButton"_s, 6, 8);
    ring(u"groupList"_s, -2, 6);
    lights(u"refreshButton"_s, 5, 6);
    lights(u"settingsButton"_s, 5, 6);
    lights(u"openButton"_s, 4, 6);
    pointAt(u"groupList>scrollThumb"_s.section(u'>', -1));
    check(u"groupList>scrollThumb"_s,
        {{"width", is(6)}, {"right", is(4)}, {"radius", is(3)}, {"opacity", is(0.7)}});

    fixture.showSettings();
    QQuickItem *list = fixture.item(u"settingsList"_s);
    const auto reveal = [&](const QString &item) {
        QVERIFY(QMetaObject::invokeMethod(list, "reveal", Q_ARG(QQuickItem *, fixture.item(item))));
    };
    ring(u"backButton"_s, 6, 8);
    ring(u"doneButton"_s, 4, 8);
    ring(u"quitAppButton"_s, 6, 8);
    ring(u"launchAtLogin"_s, 2, 10.5);
    ring(u"labelStyleBox"_s, 2, 7);
    ring(u"threshold"_s, 2, 9);
    ring(u"openFolder"_s, 2, 7);
    ring(u"contactSupport"_s, 4, 8);
    // What has the focus is shown, 8 clear of the edge.
    list->setProperty("contentY", 0);
    reveal(u"openFolder"_s);
    const QQuickItem *folder = fixture.item(u"openFolder"_s);
    const double folderEnd = folder->mapToItem(list, QPointF(0, folder->height())).y();
    QVERIFY(std::abs(folderEnd - list->height() + 8) < 1);
    lights(u"backButton"_s, 4, 6);
    prominent(u"doneButton"_s);
    pointAt(u"openFolder"_s);
    const QString folderGround = u"openFolder>#RoundedRectangle[1]"_s;
    check(folderGround, {{"color", color(&Theme::hovered)}});
    QTest::mousePress(&fixture.window(), Qt::LeftButton, {}, fixture.middle(u"openFolder"_s));
    check(folderGround, {{"color", color(&Theme::pressed)}});
    QTest::mouseMove(&fixture.window(), QPoint(190, 3));
    QTest::mouseRelease(&fixture.window(), Qt::LeftButton, {}, QPoint(190, 3));
    reveal(u"labelStyleBox"_s);
    pointAt(u"labelStyleBox"_s);
    check(u"labelStyleBox>#RoundedRectangle"_s, {{"color", color(&Theme::hovered)}});
    QTest::mouseClick(&fixture.window(), Qt::LeftButton, {}, fixture.middle(u"labelStyleBox"_s));
    pointAt(u"pickerOption"_s);
    check(u"pickerOption>#RoundedRectangle"_s, {{"color", color(&Theme::accentFill)}});
    const QPointF second = find(fixture, u"pickerOption[1]"_s)->mapToScene(QPointF(20, 6));
    QTest::mouseMove(&fixture.window(), second.toPoint());
    check(u"pickerOption[1]>#RoundedRectangle"_s, {{"color", color(&Theme::accentFill)}});
    check(u"pickerOption>#RoundedRectangle"_s, {{"color", is(QColor(Qt::transparent))}});
    check(u"chosenMark"_s, {{"color", color(&Theme::label)}});
    QTest::keyClick(&fixture.window(), Qt::Key_Escape);
    QTRY_VERIFY(fixture.items(u"pickerOption"_s).isEmpty());
    reveal(u"threshold"_s);
    QTest::mousePress(&fixture.window(), Qt::LeftButton, {}, fixture.middle(u"threshold"_s));
    check(u"threshold>#RoundedRectangle"_s, {{"outlineWidth", is(3)}});
    QTest::mouseRelease(&fixture.window(), Qt::LeftButton, {}, fixture.middle(u"threshold"_s));
    fixture.item(u"launchAtLogin"_s)->setEnabled(false);
    check(u"launchAtLogin"_s, {{"opacity", is(0.45)}});
    fixture.item(u"doneButton"_s)->setEnabled(false);
    check(u"doneButton"_s, {{"opacity", is(0.45)}});
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join(u'\n')));
}

void LookTest::facesSlideAndTheIconTurnsAsLongAsTheDesignGives()
{
    PopoverFixture fixture;
    fixture.show();
    fixture.answer(test::sampleSummary());
    const QQuickItem *root = fixture.window().contentItem()->childItems().constFirst();
    const auto animation
        = [root](const QString &name) { return root->findChild<const QObject *>(name); };
    // That of "ease in, ease out", as a cubic curve from 0,0 to 1,1.
    const auto easesInAndOut = [](const QObject &moving) {
        const auto easing = moving.property("easing").value<QEasingCurve>();
        return easing.type() == QEasingCurve::BezierSpline
            && easing.toCubicSpline()
            == QList<QPointF>{QPointF(0.42, 0), QPointF(0.58, 1), QPointF(1, 1)};
    };
    fixture.showSettings();
    const QObject *turning = animation(u"turning"_s);
    QVERIFY(turning != nullptr);
    QCOMPARE(turning->property("duration").toInt(), 200);
    QVERIFY(easesInAndOut(*turning));
    QTest::keyClick(&fixture.window(), Qt::Key_Escape);
    QTRY_VERIFY(fixture.item(u"groupList"_s) != nullptr);
    const QObject *icon = animation(u"refreshTurning"_s);
    QVERIFY(icon != nullptr);
    QCOMPARE(icon->property("duration").toInt(), 700);
    QTRY_VERIFY(!fixture.model().spin()->isSpinning());
    fixture.model().performRefresh();
    QVERIFY(fixture.model().spin()->easesInOut());
    QVERIFY(easesInAndOut(*icon));
    fixture.answer(test::sampleSummary());

    // The faces lie side by side, and move by their width.
    fixture.showSettings();
    const QQuickItem *face = fixture.item(u"settingsFace"_s);
    QCOMPARE(face->x(), 0.0);
    QCOMPARE(face->width(), 380.0);
    QTest::mouseClick(&fixture.window(), Qt::LeftButton, {}, fixture.middle(u"launchAtLogin"_s));
    const QObject *knob = owned(fixture.item(u"launchAtLogin"_s), "QQuickNumberAnimation"_L1);
    QVERIFY(knob != nullptr);
    QCOMPARE(knob->property("duration").toInt(), 120);
}

void LookTest::coloursHaveTheOpacityOfTheDesign()
{
    using model::ColorToken;
    using views::Theme;
    const std::tuple<const char *, QColor (Theme::*)() const, ColorToken, double> colors[]{
        {"frame", &Theme::frame, ColorToken::Separator, 0.5},
        {"divider", &Theme::divider, ColorToken::Separator, 0.5},
        {"card", &Theme::cardBackground, ColorToken::WindowBackground, 1},
        {"card's outline", &Theme::cardOutline, ColorToken::Separator, 0.2},
        {"row", &Theme::rowBackground, ColorToken::ControlBackground, 0.5},
        {"row's outline", &Theme::rowOutline, ColorToken::Separator, 0.3},
        {"track", &Theme::track, ColorToken::Separator, 0.4},
        {"count", &Theme::countBackground, ColorToken::SecondaryLabel, 0.1},
        {"footer", &Theme::footerBackground, ColorToken::ControlBackground, 0.3},
        {"badge's start", &Theme::badgeStart, ColorToken::Blue, 0.8},
        {"badge's end", &Theme::badgeEnd, ColorToken::Purple, 0.8},
        {"hovered", &Theme::hovered, ColorToken::SecondaryLabel, 0.12},
        {"pressed", &Theme::pressed, ColorToken::SecondaryLabel, 0.24},
    };
    test::FakeAppearance appearance;
    const platform::SvgSymbols symbols;
    Theme theme(appearance, symbols);
    for (const bool dark : {false, true}) {
        appearance.setDark(dark);
        for (const auto &[name, color, token, opacity] : colors) {
            platform::Rgba expected = appearance.color(token);
            expected.alpha *= opacity;
            QVERIFY2((theme.*color)() == platform::toColor(expected), name);
        }
        QCOMPARE(theme.onAccent(), QColor(Qt::white));
        theme.setFloating(true);
        QCOMPARE(theme.cornerRadius(), 10);
        QCOMPARE(theme.shadowStrength(), dark ? 0.6 : 0.3);
        theme.setFloating(false);
        QCOMPARE(theme.cornerRadius(), 0);
        QCOMPARE(theme.shadowStrength(), 0.0);
    }
}

QTEST_MAIN(LookTest)
#include "look_test.moc"
