#include "platform/linux/x11/manager_selection.h"

#include "platform/linux/x11/x_connection.h"

namespace brimwatch::platform {

namespace {

constexpr const char *managerAtom = "MANAGER";

} // namespace

ManagerSelection::ManagerSelection(
    XConnection &x, const QByteArray &name, std::uint32_t events, QObject *parent)
    : QObject(parent)
    , m_x(x)
    , m_events(events | XCB_EVENT_MASK_STRUCTURE_NOTIFY)
{
    if (!m_x.isValid())
        return;
    connect(&m_x, &XConnection::eventReceived, this, &ManagerSelection::handle);
    connect(&m_x, &XConnection::closed, this, &ManagerSelection::find);
    const QByteArray selection = name + QByteArray::number(m_x.screenNumber());
    m_x.prefetchAtoms({selection.constData(), managerAtom});
    m_selection = m_x.atom(selection.constData());
    // New managers announce themselves to the root window.
    m_x.selectInput(m_x.screen()->root, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    find();
}

void ManagerSelection::handle(const xcb_generic_event_t *event)
{
    switch (event->response_type & 0x7f) {
    case XCB_CLIENT_MESSAGE: {
        const auto *message = reinterpret_cast<const xcb_client_message_event_t *>(event);
        if (message->type == m_x.atom(managerAtom) && message->format == 32
            && message->data.data32[1] == m_selection)
            find();
        break;
    }
    case XCB_DESTROY_NOTIFY: {
        const auto *destroy = reinterpret_cast<const xcb_destroy_notify_event_t *>(event);
        if (m_manager != XCB_WINDOW_NONE && destroy->window == m_manager)
            find();
        break;
    }
    default:
        break;
    }
}

void ManagerSelection::find()
{
    xcb_window_t manager = m_x.selectionOwner(m_selection);
    // The end of one that goes before its events are asked for would never be announced.
    while (manager != XCB_WINDOW_NONE) {
        m_x.selectInput(manager, m_events);
        const xcb_window_t still = m_x.selectionOwner(m_selection);
        if (still == manager)
            break;
        manager = still;
    }
    m_manager = manager;
    Q_EMIT changed();
}

} // namespace brimwatch::platform
