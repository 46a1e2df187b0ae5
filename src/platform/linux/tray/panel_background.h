#pragma once

#include "platform/linux/appearance/system_colors.h"

#include <QImage>
#include <QList>

#include <cstdint>
#include <optional>

namespace brimwatch::platform {

class Appearance;

/// Whether a panel that embeds items is dark or light: as the colours of its own symbols say, or
/// else as the pixels behind the item do.
class PanelBackground {
public:
    /// `appearance` outlives it.
    explicit PanelBackground(const Appearance &appearance);

    /// Dark while nothing is known.
    Background value() const { return m_announced.value_or(m_seen); }

    /// The colours that the panel announces for symbols (_NET_SYSTEM_TRAY_COLORS): red, green and
    /// blue to 65535, of its own symbols first. Fewer than three numbers announce nothing.
    void setSymbolColors(const QList<std::uint32_t> &colors);
    /// What the panel shows behind the item.
    void setPixels(const QImage &behind);
    /// After a change of the desktop's theme.
    void followTheme();

private:
    Background ofTheme() const;

    const Appearance &m_appearance;
    std::optional<Background> m_announced;
    bool m_followsTheme = false; ///< It was of the theme's kind when it announced its colours.
    Background m_seen = Background::Dark;
};

} // namespace brimwatch::platform
