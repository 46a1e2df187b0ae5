#pragma once

#include "platform/linux/appearance/system_colors.h"
#include "platform/linux/tray/label_painter.h"
#include "platform/linux/tray/presentation.h"
#include "platform/linux/tray/steady_width.h"
#include "platform/linux/x11/x_image.h"

#include <QImage>
#include <QRect>
#include <QSize>
#include <QTimer>

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>

namespace brimwatch::platform {

class Appearance;
class ToolTipWindow;
class XConnection;

/// How an embedded item shows the label.
enum class XembedForm {
    Wide, ///< The whole label.
    Badge, ///< Its badge, for trays that cut every window to a square.
};

/// The label in a window of our own that the panel takes into its tray (the system tray
/// protocol, which embeds by XEmbed). Transparent where the panel offers a visual for that,
/// otherwise drawn over what the panel shows there. A slot that stays narrower than the label gets
/// its badge.
class XembedPresentation final : public Presentation {
    Q_OBJECT

public:
    /// How long a panel may take to widen a slot before the square form is drawn.
    static constexpr int settleMilliseconds = 300;

    /// For the tray manager with that window. It is asked to take the item with the first
    /// present().
    XembedPresentation(XembedForm form, XConnection &x, xcb_window_t manager,
        const LabelPainter &painter, Appearance &appearance, QObject *parent = nullptr);
    ~XembedPresentation() override;

    void present(const PresentedItem &item) override;
    std::optional<QRect> place() const override;

private:
    void createWindow();
    void requestDock();
    void handle(const xcb_generic_event_t *event);
    void buttonReleased(const xcb_button_release_event_t &release);
    void resized(QSize size);
    void reparented(xcb_window_t parent);
    void lose();

    LabelLook look() const;
    void readPanelColors();
    void followTheme();
    int neededWidth();
    void askForWidth();
    void writeSizeHints();
    bool keepsProportions() const;
    void readBehind();
    void fitSlot();
    QImage compose();
    void draw();

    XembedForm m_form;
    XConnection &m_x;
    xcb_window_t m_manager;
    const LabelPainter &m_painter;
    Appearance &m_appearance;
    ToolTipWindow *m_hover;
    PresentedItem m_item;
    SteadyWidth m_steadyWidth;

    XPixelFormat m_format; // Of the window, when there is one.
    xcb_window_t m_window = XCB_WINDOW_NONE;
    xcb_colormap_t m_colormap = XCB_NONE;
    xcb_gcontext_t m_gc = XCB_NONE;
    bool m_docked = false;
    bool m_lost = false;
    QSize m_slot;
    int m_askedWidth = 0;
    int m_askedHeight = 0;
    QTimer m_settle;
    bool m_narrow = false; // The panel has had its time and gives less than the label needs.
    std::optional<Background> m_panelBackground; // As the panel says.
    bool m_panelFollowsTheme = false; // It was of the theme's kind when it said so.
    Background m_seenBackground = Background::Dark; // As the pixels behind the item say.
    QImage m_behind; // What the panel shows where the item stands; null while not looked at, and
                     // with transparency.
    QImage m_drawn;
    std::optional<std::uint8_t> m_pressed; // The button held down since it was pressed on the item.
};

} // namespace brimwatch::platform
