#include "platform/linux/tray/sni_presentation.h"

#include "core/plain_text.h"
#include "platform/appearance.h"
#include "platform/linux/bus/bus_calls.h"
#include "platform/linux/tray/dbus_menu.h"
#include "platform/linux/tray/item_menu.h"
#include "platform/linux/tray/label_painter.h"

#include <QCoreApplication>
#include <QPainter>
#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <optional>
#include <utility>

namespace brimwatch::platform {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr auto watcherService = "org.kde.StatusNotifierWatcher"_L1;

// Every host reads all pictures again at each change, so there are few: one for each usual height
// of a panel.
constexpr std::array pictureSides{16, 22, 24, 32, 48};
// Heights of wide pictures: the usual one, and twice that for screens of high resolution.
constexpr std::array wideHeights{22, 44};
constexpr double wideRadius = 5;
constexpr QColor pictureBackground(0x20, 0x22, 0x26);
constexpr QImage::Format pictureFormat = QImage::Format_ARGB32_Premultiplied;

constexpr std::chrono::seconds pauseBetweenSignals{1};

// Arguments below it in both directions are places within an item. Coordinates of screens have 16
// bits.
constexpr int largestItem = 64;
constexpr int farthest = 0x7fff;

constexpr bool hasMenu(SniForm form)
{
    return form == SniForm::Portable;
}

/// Rounded at the corners, by `radius` in the picture's own units.
void fillBackground(QImage &picture, double radius)
{
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(pictureBackground);
    painter.drawRoundedRect(
        QRectF(QPointF(), QSizeF(picture.size()) / picture.devicePixelRatio()), radius, radius);
}

/// A line of text that no host takes for markup or for more than a line. Deliberate: it is bounded
/// twice. The label may have any length, and what replaces "&" is longer.
QString safeLine(const QString &text)
{
    QString line;
    for (const QChar c : asOneLine(text, ItemDescription::longestLine)) {
        if (c == u'&')
            line += " and "_L1;
        else if (c == u'<')
            line += u'‹';
        else if (c == u'>')
            line += u'›';
        else if (c == QChar::ObjectReplacementCharacter)
            line += u' ';
        else
            line += c;
    }
    return asOneLine(line, ItemDescription::longestLine);
}

QString safeLines(const QStringList &texts)
{
    QStringList lines;
    for (const auto &text : texts)
        lines.append(safeLine(text));
    return lines.join(u'\n');
}

/// Absent where it cannot be a point of the screen.
std::optional<QPoint> globalPoint(QPoint place)
{
    const auto withinItem
        = [](int coordinate) { return coordinate >= 0 && coordinate < largestItem; };
    const auto tooFar
        = [](int coordinate) { return coordinate < -farthest || coordinate > farthest; };
    if ((withinItem(place.x()) && withinItem(place.y())) || tooFar(place.x()) || tooFar(place.y()))
        return std::nullopt;
    return place;
}

int nextNumber()
{
    static int number = 0;
    return ++number;
}

} // namespace

SniPresentation::SniPresentation(SniForm form, const QDBusConnection &bus,
    const LabelPainter &painter, Appearance &appearance, QObject *parent)
    : Presentation(parent)
    , m_form(form)
    , m_bus(bus)
    , m_painter(painter)
    , m_appearance(appearance)
    , m_shownFont(appearance.fontFamily())
    , m_shownContrast(contrastOf(appearance))
    , m_item(bus, hasMenu(form) ? SniItem::Menu::Yes : SniItem::Menu::No, textsOf(m_wanted),
          [this] { return draw(); })
    , m_watcher(watcherService, bus, QDBusServiceWatcher::WatchForOwnerChange)
    , m_name(u"org.kde.StatusNotifierItem-%1-%2"_s.arg(QCoreApplication::applicationPid())
              .arg(nextNumber()))
{
    m_pause.setSingleShot(true);
    m_pause.setInterval(pauseBetweenSignals);
    connect(&m_pause, &QTimer::timeout, this, &SniPresentation::announce);
    // A new watcher starts with an empty list and asks nobody.
    connect(&m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
        [this](const QString &, const QString &oldOwner) {
            if (!oldOwner.isEmpty())
                lose();
        });
    m_bus.connect({}, u"/org/freedesktop/DBus/Local"_s, u"org.freedesktop.DBus.Local"_s,
        u"Disconnected"_s, this, SLOT(lose()));

    connect(&m_appearance, &Appearance::changed, this, &SniPresentation::followAppearance);
    connect(&m_item, &SniItem::activated, this,
        [this](QPoint place) { Q_EMIT clicked({.bounds = {}, .pointer = globalPoint(place)}); });

    if (!m_item.isOnBus()) {
        QTimer::singleShot(0, this, &SniPresentation::lose);
        return;
    }
    if (hasMenu(form))
        addMenu();
    requestName();
}

SniPresentation::~SniPresentation()
{
    if (m_item.isOnBus())
        bus::releaseName(m_bus, m_name);
}

void SniPresentation::addMenu()
{
    auto *menu = new DBusMenu(m_bus, SniItem::menuPath(), itemMenu(), this);
    connect(menu, &DBusMenu::triggered, this, &SniPresentation::chooseFromMenu);
}

void SniPresentation::present(const PresentedItem &item)
{
    if (m_lost || item == m_wanted)
        return;
    m_wanted = item;
    announceSoon();
}

void SniPresentation::followAppearance()
{
    const bool isAsShown
        = m_appearance.fontFamily() == m_shownFont && contrastOf(m_appearance) == m_shownContrast;
    if (!m_lost && !isAsShown)
        announceSoon();
}

void SniPresentation::announceSoon()
{
    if (!m_pause.isActive())
        announce();
}

void SniPresentation::announce()
{
    const QString font = m_appearance.fontFamily();
    const Contrast contrast = contrastOf(m_appearance);
    const bool pictureChanged
        = m_shownLabel != m_wanted.label || m_shownFont != font || m_shownContrast != contrast;
    m_shownLabel = m_wanted.label;
    m_shownFont = font;
    m_shownContrast = contrast;
    if (m_item.update(textsOf(m_wanted), pictureChanged))
        m_pause.start();
}

SniItem::Texts SniPresentation::textsOf(const PresentedItem &item)
{
    // The widest that a percentage gets, so that the panel's other items keep their places.
    static const QRegularExpression percentage(u"[0-9]+%"_s);
    const auto &description = item.description;
    SniItem::Texts texts;
    texts.title = safeLine(description.title);
    if (texts.title.isEmpty())
        texts.title = u"Brimwatch"_s;
    texts.toolTip = description.lines.isEmpty() ? texts.title : safeLines(description.lines);
    texts.label = safeLine(item.label.titleInTexts());
    texts.labelGuide = texts.label;
    texts.labelGuide.replace(percentage, u"100%"_s);
    return texts;
}

SniPixmaps SniPresentation::draw()
{
    SniPixmaps pixmaps;
    if (m_form == SniForm::Wide) {
        for (const int height : wideHeights)
            pixmaps.append(toSniPixmap(drawWide(height)));
    } else {
        for (const int side : pictureSides)
            pixmaps.append(toSniPixmap(drawSquare(side)));
    }
    return pixmaps;
}

QImage SniPresentation::drawWide(int height)
{
    // Laid out once, at the usual height: all pictures have the same proportions.
    LabelLook look{
        .contrast = m_shownContrast, .fontFamily = m_shownFont, .height = wideHeights.front()};
    const int width = m_steadyWidth.of(m_shownLabel, m_painter, look);
    look.devicePixelRatio = static_cast<double>(height) / look.height;
    QImage picture(
        static_cast<int>(std::lround(width * look.devicePixelRatio)), height, pictureFormat);
    picture.setDevicePixelRatio(look.devicePixelRatio);
    fillBackground(picture, wideRadius);
    QPainter painter(&picture);
    painter.drawImage(0, 0, m_painter.image(m_shownLabel, look));
    return picture;
}

QImage SniPresentation::drawSquare(int side) const
{
    QImage square(side, side, pictureFormat);
    fillBackground(square, side / 5.0);
    QPainter painter(&square);
    // Numbers take all the room there is; a symbol stands clear of the edges.
    const int margin = m_shownLabel.badge.numbers.isEmpty() ? std::max(1, side / 10) : side / 16;
    // A look's default background is dark.
    painter.drawImage(margin, margin,
        m_painter.squareImage(m_shownLabel,
            {.contrast = m_shownContrast, .fontFamily = m_shownFont}, side - 2 * margin));
    return square;
}

void SniPresentation::requestName()
{
    bus::requestName(m_bus, m_name, this, bus::usualTimeout, [this](bus::NameResult result) {
        // Sandboxes may forbid the name. Watchers take that of the connection too.
        registerItem(result == bus::NameResult::Owner ? m_name : m_bus.baseService());
    });
}

void SniPresentation::registerItem(const QString &name)
{
    auto request = QDBusMessage::createMethodCall(watcherService, u"/StatusNotifierWatcher"_s,
        watcherService, u"RegisterStatusNotifierItem"_s);
    request << name;
    // Panels start watchers; one that the bus would start has no panel.
    request.setAutoStartService(false);
    bus::whenAnswered(m_bus, request, this, bus::usualTimeout, [this](const QDBusMessage &answer) {
        if (answer.type() != QDBusMessage::ReplyMessage)
            lose();
        else if (!m_lost)
            Q_EMIT registered();
    });
}

void SniPresentation::chooseFromMenu(int id)
{
    switch (id) {
    case OpenId:
        Q_EMIT clicked({});
        break;
    case RefreshId:
        Q_EMIT refreshRequested();
        break;
    case SettingsId:
        Q_EMIT settingsRequested();
        break;
    case QuitId:
        Q_EMIT quitRequested();
        break;
    default:
        break;
    }
}

void SniPresentation::lose()
{
    if (std::exchange(m_lost, true))
        return;
    m_pause.stop();
    Q_EMIT lost();
}

} // namespace brimwatch::platform
