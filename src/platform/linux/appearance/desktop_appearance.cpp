#include "platform/linux/appearance/desktop_appearance.h"

#include "core/read_file.h"
#include "platform/linux/appearance/system_colors.h"
#include "platform/linux/bus/bus_calls.h"
#include "platform/linux/x11/xsettings.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QFileInfo>
#include <QSet>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace brimwatch::platform {

using namespace Qt::Literals::StringLiterals;

namespace {

const auto portalService = u"org.freedesktop.portal.Desktop"_s;
const auto portalPath = u"/org/freedesktop/portal/desktop"_s;
const auto portalInterface = u"org.freedesktop.portal.Settings"_s;
const auto appearanceSpace = u"org.freedesktop.appearance"_s;
const auto gnomeSpace = u"org.gnome.desktop.interface"_s;

constexpr qint64 largestKdeFile = 1024LL * 1024;

/// "239,240,241" or "#eff0f1".
std::optional<Rgba> kdeColor(const QString &text)
{
    constexpr double full = 255;
    if (text.startsWith(u'#') && text.size() == 7) {
        bool ok = false;
        const uint value = text.mid(1).toUInt(&ok, 16);
        if (ok)
            return Rgba{.red = ((value >> 16) & 0xff) / full,
                .green = ((value >> 8) & 0xff) / full,
                .blue = (value & 0xff) / full,
                .alpha = 1};
        return {};
    }
    const auto parts = text.split(u',');
    if (parts.size() < 3)
        return {};
    std::array<double, 3> components{};
    for (std::size_t i = 0; i < components.size(); ++i) {
        bool ok = false;
        components[i] = parts[static_cast<qsizetype>(i)].trimmed().toInt(&ok) / full;
        if (!ok || components[i] < 0 || components[i] > 1)
            return {};
    }
    return Rgba{.red = components[0], .green = components[1], .blue = components[2], .alpha = 1};
}

/// The portal's accent: three components from 0 to 1; anything else means none.
std::optional<Rgba> accentOf(const QVariantList &components)
{
    if (components.size() != 3)
        return {};
    for (const QVariant &component : components) {
        const double value = component.toDouble();
        if (std::isnan(value) || value < 0 || value > 1)
            return {};
    }
    return Rgba{.red = components[0].toDouble(),
        .green = components[1].toDouble(),
        .blue = components[2].toDouble(),
        .alpha = 1};
}

/// A value out of its variants. A structure of three numbers becomes a list: a QDBusArgument can be
/// read only once.
QVariant unwrapped(QVariant value)
{
    while (value.metaType() == QMetaType::fromType<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    if (value.metaType() != QMetaType::fromType<QDBusArgument>())
        return value;
    const auto argument = value.value<QDBusArgument>();
    if (argument.currentSignature() != "(ddd)"_L1)
        return {};
    std::array<double, 3> components{};
    argument.beginStructure();
    for (double &component : components)
        argument >> component;
    argument.endStructure();
    return QVariantList{components[0], components[1], components[2]};
}

} // namespace

QString familyOfFontDescription(const QString &description)
{
    const qsizetype comma = description.indexOf(u',');
    if (comma >= 0)
        return description.left(comma).trimmed();
    static const QSet<QString> styles{u"Thin"_s, u"Light"_s, u"Regular"_s, u"Book"_s, u"Medium"_s,
        u"Semi-Bold"_s, u"Semibold"_s, u"Bold"_s, u"Heavy"_s, u"Italic"_s, u"Oblique"_s,
        u"Condensed"_s};
    auto words = description.split(u' ', Qt::SkipEmptyParts);
    if (words.size() > 1) {
        bool isSize = false;
        words.last().toDouble(&isSize);
        if (isSize)
            words.removeLast();
    }
    while (words.size() > 1 && styles.contains(words.last()))
        words.removeLast();
    return words.join(u' ');
}

DesktopAppearance::DesktopAppearance(QDBusConnection bus, const XSettings *xSettings,
    const QString &configHome, TextScaling textScaling, QObject *parent)
    : Appearance(parent)
    , m_bus(std::move(bus))
    , m_xSettings(xSettings)
    , m_kdeFile(configHome + "/kdeglobals"_L1)
    , m_textScaling(textScaling)
{
    if (m_xSettings != nullptr)
        connect(m_xSettings, &XSettings::changed, this, &DesktopAppearance::update);
    if (QFileInfo::exists(m_kdeFile)) {
        m_kdeWatcher = std::make_unique<QFileSystemWatcher>(QStringList{m_kdeFile, configHome});
        connect(m_kdeWatcher.get(), &QFileSystemWatcher::fileChanged, this,
            &DesktopAppearance::readKde);
        connect(m_kdeWatcher.get(), &QFileSystemWatcher::directoryChanged, this,
            &DesktopAppearance::readKde);
        readKde();
    }
    m_look = look();
    if (m_bus.isConnected())
        askPortal();
}

Rgba DesktopAppearance::color(model::ColorToken token) const
{
    if (token == model::ColorToken::Accent && m_look.accent)
        return *m_look.accent;
    const Background background = m_look.dark ? Background::Dark : Background::Light;
    return systemColor(
        token, background, m_look.higherContrast ? Contrast::Higher : Contrast::Usual);
}

void DesktopAppearance::askPortal()
{
    m_bus.connect(portalService, portalPath, portalInterface, u"SettingChanged"_s, this,
        SLOT(portalSettingChanged(QDBusMessage)));
    auto call
        = QDBusMessage::createMethodCall(portalService, portalPath, portalInterface, u"ReadAll"_s);
    call << QStringList{appearanceSpace, gnomeSpace};
    bus::whenAnswered(m_bus, call, this, bus::usualTimeout, [this](const QDBusMessage &reply) {
        if (reply.type() != QDBusMessage::ReplyMessage || reply.signature() != "a{sa{sv}}"_L1)
            return;
        const auto spaces = qdbus_cast<QMap<QString, QVariantMap>>(reply.arguments().constFirst());
        for (const auto &space : {appearanceSpace, gnomeSpace}) {
            const QVariantMap values = spaces.value(space);
            for (auto it = values.begin(); it != values.end(); ++it) {
                // A change may have been announced while the answer was on its way: it is the newer
                // one.
                const QString name = space + u' ' + it.key();
                if (!m_portal.contains(name))
                    m_portal.insert(name, unwrapped(it.value()));
            }
        }
        update();
    });
}

void DesktopAppearance::portalSettingChanged(const QDBusMessage &message)
{
    if (message.signature() != "ssv"_L1)
        return;
    const auto arguments = message.arguments();
    const QString name = arguments[0].toString() + u' ' + arguments[1].toString();
    // Only settings that are read are kept: any program may announce any number of others.
    static const QSet<QString> known{appearanceSpace + " color-scheme"_L1,
        appearanceSpace + " accent-color"_L1, appearanceSpace + " contrast"_L1,
        appearanceSpace + " reduced-motion"_L1, gnomeSpace + " font-name"_L1,
        gnomeSpace + " text-scaling-factor"_L1, gnomeSpace + " enable-animations"_L1};
    if (!known.contains(name))
        return;
    m_portal.insert(name, unwrapped(arguments[2]));
    update();
}

void DesktopAppearance::readKde()
{
    // The watcher forgets a file that is replaced as a whole.
    if (QFileInfo::exists(m_kdeFile) && !m_kdeWatcher->files().contains(m_kdeFile))
        m_kdeWatcher->addPath(m_kdeFile);
    QHash<QString, QString> values;
    if (const auto content = readFile(m_kdeFile, largestKdeFile)) {
        QString group;
        const auto lines = QString::fromUtf8(*content).split(u'\n');
        for (const QString &line : lines) {
            const qsizetype equals = line.indexOf(u'=');
            if (line.startsWith(u'[') && line.endsWith(u']'))
                group = line.mid(1, line.size() - 2);
            else if (equals > 0
                && (group == "General"_L1 || group == "Colors:Window"_L1 || group == "KDE"_L1))
                values.insert(
                    group + u'/' + line.left(equals).trimmed(), line.mid(equals + 1).trimmed());
        }
    }
    m_kde = values;
    update();
}

DesktopAppearance::Look DesktopAppearance::look() const
{
    enum Scheme : uint { NoPreference = 0, Dark = 1, Light = 2 };

    Look look;
    const uint scheme = m_portal.value(appearanceSpace + " color-scheme"_L1).toUInt();
    const auto kdeWindow = kdeColor(m_kde.value(u"Colors:Window/BackgroundNormal"_s));
    const QString theme
        = m_xSettings != nullptr ? m_xSettings->value(u"Net/ThemeName"_s).toString() : QString();
    if (scheme == Dark || scheme == Light)
        look.dark = scheme == Dark;
    else if (kdeWindow)
        look.dark = !isBright(*kdeWindow);
    else
        look.dark = theme.contains("dark"_L1, Qt::CaseInsensitive);

    look.accent = accentOf(m_portal.value(appearanceSpace + " accent-color"_L1).toList());
    if (!look.accent)
        look.accent = kdeColor(m_kde.value(u"General/AccentColor"_s));

    for (const QString &font :
        {m_kde.value(u"General/font"_s), m_portal.value(gnomeSpace + " font-name"_L1).toString(),
            m_xSettings != nullptr ? m_xSettings->value(u"Gtk/FontName"_s).toString()
                                   : QString()}) {
        if (look.fontFamily.isEmpty())
            look.fontFamily = familyOfFontDescription(font);
    }

    if (m_textScaling == TextScaling::Brimwatch) {
        bool isNumber = false;
        const double scale
            = m_portal.value(gnomeSpace + " text-scaling-factor"_L1).toDouble(&isNumber);
        if (isNumber && std::isfinite(scale))
            look.textScale = std::clamp(scale, 0.5, 3.0);
    }
    look.reducesMotion = saysNoMotion();
    look.higherContrast = saysHigherContrast();
    return look;
}

bool DesktopAppearance::saysNoMotion() const
{
    // One source that says so is enough: on other desktops the rest have their defaults.
    if (m_portal.value(appearanceSpace + " reduced-motion"_L1).toUInt() == 1)
        return true;
    if (const QVariant animations = m_portal.value(gnomeSpace + " enable-animations"_L1);
        animations.isValid() && !animations.toBool())
        return true;
    bool isNumber = false;
    const double durations = m_kde.value(u"KDE/AnimationDurationFactor"_s).toDouble(&isNumber);
    if (isNumber && durations == 0)
        return true;
    const QVariant animations
        = m_xSettings != nullptr ? m_xSettings->value(u"Gtk/EnableAnimations"_s) : QVariant();
    return animations.isValid() && animations.toInt() == 0;
}

bool DesktopAppearance::saysHigherContrast() const
{
    constexpr uint higher = 1;
    if (m_portal.value(appearanceSpace + " contrast"_L1).toUInt() == higher)
        return true;
    return m_xSettings != nullptr
        && m_xSettings->value(u"Net/ThemeName"_s)
               .toString()
               .startsWith("HighContrast"_L1, Qt::CaseInsensitive);
}

void DesktopAppearance::update()
{
    const Look now = look();
    if (now == m_look)
        return;
    m_look = now;
    Q_EMIT changed();
}

} // namespace brimwatch::platform
