#include "platform/linux/x11/x_scale.h"

#include "platform/linux/x11/x_connection.h"
#include "platform/linux/x11/xsettings.h"

#include <QByteArray>
#include <QGuiApplication>
#include <QScreen>

#include <algorithm>
#include <cmath>

namespace brimwatch::platform {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr double usualDpi = 96;
// Xft/DPI of the settings is in 1024ths of a dot per inch.
constexpr double dpiUnits = 1024;

/// The number behind "Xft.dpi:" in the X resources; zero where there is none.
double dpiOfResources(const QByteArray &resources)
{
    const auto lines = resources.split('\n');
    for (const QByteArray &line : lines) {
        const qsizetype colon = line.indexOf(':');
        if (colon >= 0 && line.left(colon).trimmed() == "Xft.dpi")
            return line.mid(colon + 1).trimmed().toDouble();
    }
    return 0;
}

} // namespace

XScale::XScale(const XConnection &x, const XSettings &settings, QObject *parent)
    : QObject(parent)
    , m_settings(settings)
{
    // Deliberate: read once, as Qt does. Following it would wake the program with each change of
    // any property of the root window, which come with every window that is opened.
    if (x.isValid())
        m_resourceDpi = dpiOfResources(x.property(x.screen()->root, XCB_ATOM_RESOURCE_MANAGER));
    connect(&m_settings, &XSettings::changed, this, &XScale::changed);
}

int XScale::windowFactor() const
{
    const int factor = m_settings.value(u"Gdk/WindowScalingFactor"_s).toInt();
    return std::clamp(factor, 1, static_cast<int>(largest));
}

double XScale::value() const
{
    // A desktop that has set nothing says -1.
    const double announced = m_settings.value(u"Xft/DPI"_s).toInt() / dpiUnits;
    const double dpi = announced > 0 ? announced : m_resourceDpi;
    double scale = windowFactor();
    if (std::isfinite(dpi))
        scale = std::max(scale, dpi / usualDpi);
    const QScreen *screen = QGuiApplication::primaryScreen();
    if (screen != nullptr && QGuiApplication::platformName() == "xcb"_L1)
        scale = std::max(scale, screen->devicePixelRatio());
    return std::min(scale, largest);
}

} // namespace brimwatch::platform
