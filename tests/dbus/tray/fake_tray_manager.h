#pragma once

#include "platform/linux/x11/x_connection.h"

#include <QColor>
#include <QImage>
#include <QList>
#include <QPoint>
#include <QRect>
#include <QSize>
#include <QString>

#include <xcb/xcb.h>

#include <optional>

namespace brimwatch::test {

/// A panel with a system tray, on an X connection of its own. Its windows go with it, as those of a
/// panel that ends.
class FakeTrayManager {
public:
    struct Manners {
        bool transparent = true; ///< Offers a visual with an alpha channel.
        std::optional<QColor> symbols; ///< The colour of its own symbols, where it tells it.
        QColor background = QColor(0x20, 0x40, 0x60);
        int height = 28; ///< What it gives each item.
        int widest = 600;
        bool proportional = false; ///< Scales what an item asks for to its height, as XFCE does.
        int unit = 1; ///< Gives widths in multiples of it, no more than asked for, as GTK does.
        bool squares = false; ///< Puts each item into a square of its height, as GNOME Shell 48.
        bool docks = true; ///< Else it takes no item.
        /// Offered instead of one of the server's.
        std::optional<xcb_visualid_t> visual = {};
        bool savesItems = false; ///< Its end leaves the items on the bare screen, as toolkits do.
        QString program; ///< The name on its window.
    };

    static constexpr QPoint panelPlace{300, 10};

    explicit FakeTrayManager(Manners manners);
    FakeTrayManager();

    xcb_window_t window() const { return m_selectionWindow; }
    platform::XConnection &connection() { return m_x; }
    /// The items taken, in the order of arrival, as often as they asked.
    QList<xcb_window_t> docked() const { return m_docked; }
    /// The size that the last item asked for in its hints.
    QSize hintedSize();
    /// The last item's place on the screen, as far as it is seen.
    QRect slot();

    void setSlotSize(QSize size);
    /// Of the window around the last item, where there is one.
    void setSquareSize(QSize size);
    void setSymbols(QColor color);
    /// Changes what is behind the items, without a word to them.
    void setBackground(QColor color);
    /// Tells the last item of a size that it does not have, as any program may.
    void sendSize(QSize size);
    /// Tells the last item of things that have not happened, as any program may: that it is gone,
    /// that its panel is, and that it stands on the bare screen.
    void sendEnds();
    /// Says once more that it manages the tray.
    void announce();
    /// Tells its colours: those of its symbols, of errors, warnings and success.
    void setColors(const QList<QColor> &colors);
    /// Puts the last item out of the tray.
    void throwOut();
    /// What the last item shows, with its alpha channel if it has one.
    QImage picture();
    /// Makes the server ask the item to draw everything again.
    void damage();
    /// Puts a mark of this colour over the item's picture, which stays until it is drawn again.
    void mark(QColor color);

private:
    void handle(const xcb_generic_event_t *event);
    void giveSlot(QSize asked);
    xcb_window_t createSquare();
    void resize(xcb_window_t window, QSize size);
    void announceColors(const QList<QColor> &colors);
    xcb_visualid_t transparentVisual() const;

    platform::XConnection m_x;
    Manners m_manners;
    xcb_window_t m_selectionWindow = XCB_WINDOW_NONE;
    xcb_window_t m_panel = XCB_WINDOW_NONE;
    xcb_window_t m_square = XCB_WINDOW_NONE; ///< Around the last item.
    QList<xcb_window_t> m_docked;
};

/// The pointer of the display, moved and pressed as a mouse would.
class Pointer {
public:
    Pointer();

    void moveTo(QPoint place);
    void press(int button);
    void release(int button);
    void click(int button)
    {
        press(button);
        release(button);
    }

private:
    void send(std::uint8_t type, int detail, QPoint place);

    platform::XConnection m_x;
};

} // namespace brimwatch::test
