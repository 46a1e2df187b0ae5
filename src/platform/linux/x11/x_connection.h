#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QObject>

#include <xcb/xcb.h>

#include <cstdint>
#include <deque>
#include <initializer_list>
#include <memory>

class QSocketNotifier;

namespace brimwatch::platform {

struct XcbDisconnect {
    void operator()(xcb_connection_t *connection) const { xcb_disconnect(connection); }
};

struct FreeReply {
    void operator()(void *reply) const;
};

/// What libxcb hands out and expects to be freed.
template <typename T> using XcbPointer = std::unique_ptr<T, FreeReply>;

/// The numbers of 32 bits in a property's value.
QList<std::uint32_t> cardinalsOf(const QByteArray &value);

/// A connection to the X server beside Qt's own: the item in the panel and the desktop's settings
/// are there on Wayland too, through Xwayland, where Qt has no connection.
class XConnection : public QObject {
    Q_OBJECT

public:
    /// Connects to the display that the environment names. Needs the event loop of an application
    /// object.
    explicit XConnection(QObject *parent = nullptr);
    ~XConnection() override;

    /// False without an X server, and for good once it has gone.
    bool isValid() const;
    xcb_connection_t *connection() const { return m_connection.get(); }
    xcb_screen_t *screen() const { return m_screen; }
    int screenNumber() const { return m_screenNumber; }

    /// The atom of that name, asked of the server once. Zero when the connection has broken.
    xcb_atom_t atom(const char *name);
    /// Asks for the atoms that the server has not been asked for yet, all in one go instead of one
    /// by one.
    void prefetchAtoms(std::initializer_list<const char *> names);
    /// The owner of a selection, zero without one.
    xcb_window_t selectionOwner(xcb_atom_t selection) const;
    /// The property's value as bytes, at most 256 KiB; empty when there is none.
    QByteArray property(xcb_window_t window, xcb_atom_t name) const;
    /// The same of many windows in one go; one value a window, in their order.
    QList<QByteArray> properties(const QList<xcb_window_t> &windows, const char *name);
    /// The value of a property that holds numbers of 32 bits, as most do; empty when there is none.
    QList<std::uint32_t> cardinals(xcb_window_t window, const char *name);
    /// Asks for the events of `mask` of another program's window, beside those asked for before.
    void selectInput(xcb_window_t window, std::uint32_t mask) const;
    void flush() const;

Q_SIGNALS:
    /// Each event and error, in order. The receiver does not keep the pointer.
    void eventReceived(const xcb_generic_event_t *event);
    void closed();

private:
    void readEvents();
    void readLater();

    std::unique_ptr<xcb_connection_t, XcbDisconnect> m_connection;
    std::unique_ptr<QSocketNotifier> m_notifier;
    std::deque<XcbPointer<xcb_generic_event_t>>
        m_arrived; ///< Taken from libxcb's queue and not emitted yet.
    QHash<QByteArray, xcb_atom_t> m_atoms;
    bool m_closed = false;
    xcb_screen_t *m_screen = nullptr;
    int m_screenNumber = 0;
};

} // namespace brimwatch::platform
