#pragma once

#include <QObject>

namespace brimwatch::platform {

class XConnection;
class XSettings;

/// How large the programs of an X11 session draw. X11 itself scales nothing: desktop scale and text
/// scale together are told as a resolution for texts.
class XScale final : public QObject {
    Q_OBJECT

public:
    static constexpr double largest = 8;

    /// Both outlive it.
    XScale(const XConnection &x, const XSettings &settings, QObject *parent = nullptr);

    /// Pixels for a point of the design, from 1 to `largest`: the texts' resolution over the usual
    /// 96, by Xft/DPI of the desktop's settings or else by Xft.dpi of the X resources as they were
    /// at the start; no less than windowFactor(), and no less than Qt's own scale where Qt is on
    /// X11, which is that of the popover. A resolution below the usual one counts as the usual.
    double value() const;
    /// The whole number by which GTK enlarges its windows, panels among them; 1 where none is set.
    int windowFactor() const;

Q_SIGNALS:
    /// The desktop's settings are different now, perhaps in something else.
    void changed();

private:
    const XSettings &m_settings;
    double m_resourceDpi = 0; ///< Zero where the resources name none.
};

} // namespace brimwatch::platform
