#pragma once

#include "platform/linux/tray/label_painter.h"
#include "platform/linux/tray/panel_background.h"
#include "platform/linux/tray/presentation.h"
#include "platform/linux/tray/steady_width.h"
#include "platform/linux/tray/tool_tip_window.h"
#include "platform/linux/tray/tray_window.h"

#include <QImage>
#include <QPoint>
#include <QRect>
#include <QTimer>

#include <xcb/xcb.h>

#include <chrono>
#include <cstdint>
#include <optional>

namespace brimwatch::platform {

class Appearance;
class XConnection;
class XScale;

/// How an embedded item shows the label.
enum class XembedForm {
    Wide, ///< The whole label.
    Badge, ///< Its badge, for trays that cut every window to a square.
};

/// The label in a window of our own that the panel takes into its tray: what is drawn there, which
/// clicks count, and a tooltip, which such panels show for nobody. Text and symbols are as large as
/// the desktop draws its own, follow that, and stay within the height of the slot. A slot that
/// stays narrower than the label gets its badge.
class XembedPresentation final : public Presentation {
    Q_OBJECT

public:
    /// How long a panel may take to widen a slot before the badge is drawn.
    static constexpr std::chrono::milliseconds settleTime{300};

    /// For the tray manager with that window. It is asked to take the item with the first
    /// present().
    XembedPresentation(XembedForm form, XConnection &x, xcb_window_t manager,
        const LabelPainter &painter, Appearance &appearance, const XScale &scale,
        QObject *parent = nullptr);

    void present(const PresentedItem &item) override;
    std::optional<QRect> place() const override { return m_window.place(); }

private:
    void buttonPressed(std::uint8_t button);
    void buttonReleased(std::uint8_t button, QPoint local, QPoint global);
    void resized();
    void lose();

    LabelLook look() const;
    int usualHeight() const;
    void readSymbolColors();
    void followTheme();
    void adapt();
    int neededWidth();
    void askForWidth();
    void readBehind();
    void fitSlot();
    QImage compose();
    void draw();

    XembedForm m_form;
    const LabelPainter &m_painter;
    Appearance &m_appearance;
    const XScale &m_scale;
    TrayWindow m_window;
    PanelBackground m_background;
    ToolTipWindow m_toolTip;
    PresentedItem m_item;
    SteadyWidth m_steadyWidth;
    QTimer m_settle;
    bool m_lost = false;
    bool m_narrow = false; ///< The panel has had its time and gives less than the label needs.
    QImage m_behind; ///< What the panel shows where the item stands; null while not read, and with
                     ///< transparency.
    QImage m_drawn;
    std::optional<std::uint8_t> m_pressed; ///< The button held down since it was pressed here.
};

} // namespace brimwatch::platform
