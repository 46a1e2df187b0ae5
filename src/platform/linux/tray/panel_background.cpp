#include "platform/linux/tray/panel_background.h"

#include "platform/appearance.h"

#include <QColor>

#include <algorithm>

namespace brimwatch::platform {

namespace {

Rgba meanColor(const QImage &image)
{
    Rgba mean{.red = 0, .green = 0, .blue = 0, .alpha = 1};
    const double pixels = std::max(1, image.width() * image.height());
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor color = image.pixelColor(x, y);
            mean.red += color.redF() / pixels;
            mean.green += color.greenF() / pixels;
            mean.blue += color.blueF() / pixels;
        }
    }
    return mean;
}

} // namespace

PanelBackground::PanelBackground(const Appearance &appearance)
    : m_appearance(appearance)
{
}

void PanelBackground::setSymbolColors(const QList<std::uint32_t> &colors)
{
    // What GNOME Shell's tray (seen with 43) begins with: when it is set up before the shell has
    // read its theme, it keeps announcing these, which are nobody's.
    static const QList<std::uint32_t> unread{0, 0, 0, 65535, 0, 0, 65535, 65535, 0, 0, 65535, 0};
    if (colors.size() < 3 || colors == unread) {
        m_announced.reset();
        m_followsTheme = false;
        return;
    }
    constexpr double largest = 65535;
    const Rgba symbols{.red = colors[0] / largest,
        .green = colors[1] / largest,
        .blue = colors[2] / largest,
        .alpha = 1};
    m_announced = isBright(symbols) ? Background::Dark : Background::Light;
    m_followsTheme = m_announced == ofTheme();
}

void PanelBackground::setPixels(const QImage &behind)
{
    m_seen = isBright(meanColor(behind)) ? Background::Light : Background::Dark;
}

void PanelBackground::followTheme()
{
    // XFCE (seen with 4.18) announces its colours once and then turns dark or light with the theme.
    // A panel that was of another kind than the theme stays as it is.
    if (m_followsTheme)
        m_announced = ofTheme();
}

Background PanelBackground::ofTheme() const
{
    return m_appearance.isDark() ? Background::Dark : Background::Light;
}

} // namespace brimwatch::platform
