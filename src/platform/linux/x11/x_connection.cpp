#include "platform/linux/x11/x_connection.h"

#include <QAbstractEventDispatcher>
#include <QLoggingCategory>
#include <QSocketNotifier>

#include <cstdlib>
#include <cstring>
#include <utility>
#include <vector>

namespace brimwatch::platform {

namespace {

Q_LOGGING_CATEGORY(xLog, "brimwatch.x11", QtInfoMsg)

constexpr std::uint32_t maximumPropertyBytes = 256 * 1024;

xcb_intern_atom_cookie_t askForAtom(xcb_connection_t *connection, const char *name)
{
    return xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(std::strlen(name)), name);
}

xcb_atom_t atomOf(xcb_connection_t *connection, xcb_intern_atom_cookie_t cookie)
{
    const XcbPointer<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(connection, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

xcb_get_property_cookie_t askForProperty(
    xcb_connection_t *connection, xcb_window_t window, xcb_atom_t name)
{
    return xcb_get_property(
        connection, 0, window, name, XCB_GET_PROPERTY_TYPE_ANY, 0, maximumPropertyBytes / 4);
}

QByteArray valueOf(xcb_connection_t *connection, xcb_get_property_cookie_t cookie)
{
    const XcbPointer<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(connection, cookie, nullptr));
    if (!reply)
        return {};
    return {static_cast<const char *>(xcb_get_property_value(reply.get())),
        xcb_get_property_value_length(reply.get())};
}

} // namespace

void FreeReply::operator()(void *reply) const
{
    std::free(reply); // NOLINT(cppcoreguidelines-no-malloc): libxcb allocates with malloc
}

QList<std::uint32_t> cardinalsOf(const QByteArray &value)
{
    QList<std::uint32_t> result(value.size() / qsizetype(sizeof(std::uint32_t)));
    if (result.isEmpty())
        return result;
    std::memcpy(result.data(), value.constData(),
        static_cast<std::size_t>(result.size()) * sizeof(std::uint32_t));
    return result;
}

XConnection::XConnection(QObject *parent)
    : QObject(parent)
    , m_connection(xcb_connect(nullptr, &m_screenNumber))
{
    if (!isValid()) {
        qCDebug(xLog) << "no X server, error" << xcb_connection_has_error(m_connection.get())
                      << "- going without";
        m_closed = true;
        return;
    }
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(m_connection.get()));
    for (int i = 0; i < m_screenNumber && screens.rem > 1; ++i)
        xcb_screen_next(&screens);
    m_screen = screens.data;

    m_notifier = std::make_unique<QSocketNotifier>(
        xcb_get_file_descriptor(m_connection.get()), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &XConnection::readEvents);
    // A wait for a reply makes libxcb read from the socket, events included. The socket does not
    // announce those again, so the queue is read before each sleep, and at each round of a loop
    // that does not sleep.
    const auto *dispatcher = QAbstractEventDispatcher::instance();
    connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, this, &XConnection::readLater);
    connect(dispatcher, &QAbstractEventDispatcher::awake, this, &XConnection::readLater);
}

XConnection::~XConnection() = default;

bool XConnection::isValid() const
{
    return !m_closed && xcb_connection_has_error(m_connection.get()) == 0;
}

xcb_atom_t XConnection::atom(const char *name)
{
    const auto known = m_atoms.constFind(name);
    if (known != m_atoms.cend())
        return *known;
    if (!isValid())
        return XCB_ATOM_NONE;
    const xcb_atom_t atom = atomOf(connection(), askForAtom(connection(), name));
    if (atom != XCB_ATOM_NONE)
        m_atoms.insert(name, atom);
    return atom;
}

void XConnection::prefetchAtoms(std::initializer_list<const char *> names)
{
    if (!isValid())
        return;
    std::vector<std::pair<const char *, xcb_intern_atom_cookie_t>> asked;
    for (const char *name : names) {
        if (!m_atoms.contains(name))
            asked.emplace_back(name, askForAtom(connection(), name));
    }
    for (const auto &[name, cookie] : asked) {
        if (const xcb_atom_t atom = atomOf(connection(), cookie); atom != XCB_ATOM_NONE)
            m_atoms.insert(name, atom);
    }
}

xcb_window_t XConnection::selectionOwner(xcb_atom_t selection) const
{
    if (!isValid())
        return XCB_WINDOW_NONE;
    const XcbPointer<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        connection(), xcb_get_selection_owner(connection(), selection), nullptr));
    return reply ? reply->owner : xcb_window_t{XCB_WINDOW_NONE};
}

QByteArray XConnection::property(xcb_window_t window, xcb_atom_t name) const
{
    if (!isValid())
        return {};
    return valueOf(connection(), askForProperty(connection(), window, name));
}

QList<QByteArray> XConnection::properties(const QList<xcb_window_t> &windows, const char *name)
{
    const xcb_atom_t wanted = atom(name);
    QList<QByteArray> values(windows.size());
    if (!isValid() || wanted == XCB_ATOM_NONE)
        return values;
    std::vector<xcb_get_property_cookie_t> asked;
    asked.reserve(static_cast<std::size_t>(windows.size()));
    for (const xcb_window_t window : windows)
        asked.push_back(askForProperty(connection(), window, wanted));
    for (std::size_t i = 0; i < asked.size(); ++i)
        values[static_cast<qsizetype>(i)] = valueOf(connection(), asked[i]);
    return values;
}

QList<std::uint32_t> XConnection::cardinals(xcb_window_t window, const char *name)
{
    return cardinalsOf(property(window, atom(name)));
}

void XConnection::selectInput(xcb_window_t window, std::uint32_t mask) const
{
    if (!isValid())
        return;
    // The server knows what was asked for before, and also that a number belongs to a new window.
    const XcbPointer<xcb_get_window_attributes_reply_t> known(xcb_get_window_attributes_reply(
        connection(), xcb_get_window_attributes(connection(), window), nullptr));
    if (!known)
        return;
    const std::uint32_t events = known->your_event_mask | mask;
    xcb_change_window_attributes(connection(), window, XCB_CW_EVENT_MASK, &events);
    flush();
}

void XConnection::flush() const
{
    if (!m_closed)
        xcb_flush(connection());
}

void XConnection::readEvents()
{
    if (m_closed)
        return;
    while (true) {
        XcbPointer<xcb_generic_event_t> next;
        if (m_arrived.empty()) {
            next.reset(xcb_poll_for_event(connection()));
        } else {
            next = std::move(m_arrived.front());
            m_arrived.pop_front();
        }
        if (!next)
            break;
        Q_EMIT eventReceived(next.get());
    }
    // A receiver may have run an event loop of its own, in which the connection was found closed.
    if (!m_closed && xcb_connection_has_error(connection()) != 0) {
        qCDebug(xLog) << "the X server has gone - continuing without it";
        m_closed = true;
        m_notifier->setEnabled(false);
        Q_EMIT closed();
    }
}

void XConnection::readLater()
{
    if (m_closed)
        return;
    XcbPointer<xcb_generic_event_t> next(xcb_poll_for_queued_event(connection()));
    const bool broken = xcb_connection_has_error(connection()) != 0;
    if (!next && !broken)
        return;
    if (next)
        m_arrived.push_back(std::move(next));
    // Queued: the event loop is about to sleep, and nothing may start from there.
    QMetaObject::invokeMethod(this, &XConnection::readEvents, Qt::QueuedConnection);
}

} // namespace brimwatch::platform
