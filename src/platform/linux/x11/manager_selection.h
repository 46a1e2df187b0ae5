#pragma once

#include <QByteArray>
#include <QObject>

#include <xcb/xcb.h>

#include <cstdint>

namespace brimwatch::platform {

class XConnection;

/// The window of the manager that owns a selection of the screen (ICCCM 2.8): the system tray, the
/// settings manager. Follows managers that come, go or are replaced.
class ManagerSelection final : public QObject {
    Q_OBJECT

public:
    /// `name` is the selection's without the number of the screen: "_XSETTINGS_S". `events` of the
    /// manager's window are asked for, beside its end. `x` outlives it.
    ManagerSelection(
        XConnection &x, const QByteArray &name, std::uint32_t events, QObject *parent = nullptr);

    /// None without a manager, and without an X server.
    xcb_window_t manager() const { return m_manager; }

Q_SIGNALS:
    /// The manager came, went, or announced itself anew. The same number may be another manager's
    /// window: the server gives numbers again.
    void changed();

private:
    void handle(const xcb_generic_event_t *event);
    void find();

    XConnection &m_x;
    std::uint32_t m_events;
    xcb_atom_t m_selection = XCB_ATOM_NONE;
    xcb_window_t m_manager = XCB_WINDOW_NONE;
};

} // namespace brimwatch::platform
