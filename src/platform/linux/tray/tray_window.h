#pragma once

#include "platform/linux/x11/x_image.h"

#include <QImage>
#include <QList>
#include <QObject>
#include <QPoint>
#include <QRect>
#include <QSize>

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>

namespace brimwatch::platform {

class XConnection;

/// The window of an item in a panel's tray, by the system tray protocol, which embeds by XEmbed:
/// asks the tray to take it, asks for the size that it needs, and reports what happens to it. What
/// it shows is for its owner to draw.
///
/// Transparent where the panel offers a visual for that; elsewhere the panel's own background shows
/// through what is not drawn.
class TrayWindow final : public QObject {
    Q_OBJECT

public:
    /// No panel is higher; a slot that is gets a drawing in its top left corner.
    static constexpr QSize largestDrawing{4096, 512};
    /// The height to ask for where panels are as large as usual. They give their own.
    static constexpr int usualHeight = 22;

    /// For the tray manager with that window. `x` outlives it.
    TrayWindow(XConnection &x, xcb_window_t manager, QObject *parent = nullptr);
    ~TrayWindow() override;

    /// Makes the window and asks the tray to take it. Without a visual to draw for there is none.
    void dock(QSize asked);
    bool exists() const { return m_window != XCB_WINDOW_NONE; }
    /// Whether the tray has taken it.
    bool isDocked() const { return m_docked; }
    bool isTransparent() const { return m_format.isTransparent(); }

    /// What the panel gives, in native pixels; before it has, what was asked for. Where the panel
    /// puts the window into a smaller one, as GNOME Shell 48 does, that is the part that is seen.
    QSize slot() const { return m_slot; }
    /// The window's own size, of which slot() is a part or the whole.
    QSize size() const { return m_size; }
    /// Absent while it is in no tray.
    std::optional<QRect> place() const;

    int askedWidth() const { return m_askedWidth; }
    /// Whether that is another width than the one asked for before.
    bool askForWidth(int width);

    /// The colours that the panel announces for symbols: red, green and blue to 65535, of its own
    /// symbols first, then of errors, warnings and success. Empty where it announces none.
    QList<std::uint32_t> symbolColors();
    /// What the panel shows behind the window, which is cleared for that. Null when it is not
    /// visible.
    QImage readBehind(QSize size);
    void draw(const QImage &image);

Q_SIGNALS:
    void docked();
    /// Into another window of the panel; the first time docked() follows.
    void reparented();
    /// The panel has placed it anew, perhaps where it was.
    void moved();
    /// slot() is another one.
    void resized();
    /// All of it has to be drawn again.
    void damaged();
    void symbolColorsChanged();
    void buttonPressed(std::uint8_t button);
    /// `local` is in the window's pixels and may be outside: releases come to the window of the
    /// press.
    void buttonReleased(std::uint8_t button, QPoint local, QPoint global);
    void pointerMoved();
    void pointerLeft();
    /// The panel is gone, or has thrown the window out. Comes once; nothing else comes after it.
    void lost();

private:
    void handle(const xcb_generic_event_t *event);
    void handleButton(const xcb_button_press_event_t &event, bool isPress);
    void handleConfigure(QSize size);
    void handleReparent(xcb_window_t parent);
    void followParent(xcb_window_t parent);
    void setParentSize(QSize size);
    void updateSlot();
    void lose();
    void createWindow();
    void setProperties();
    void writeSizeHints();
    bool keepsProportions() const;
    void requestDock();

    XConnection &m_x;
    xcb_window_t m_manager;
    XPixelFormat m_format; ///< Of the window, when there is one.
    xcb_window_t m_window = XCB_WINDOW_NONE;
    xcb_colormap_t m_colormap = XCB_NONE;
    xcb_gcontext_t m_gc = XCB_NONE;
    bool m_docked = false;
    bool m_lost = false;
    xcb_window_t m_parent = XCB_WINDOW_NONE; ///< The panel's window that we are in.
    QSize m_parentSize; ///< Invalid while it is not known or not laid out.
    QSize m_size; ///< The window's own, of which the parent may show only a part.
    QSize m_slot;
    int m_askedWidth = 0;
    int m_askedHeight = usualHeight;
};

} // namespace brimwatch::platform
