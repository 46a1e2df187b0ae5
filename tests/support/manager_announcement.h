#pragma once

#include "platform/linux/x11/x_connection.h"

namespace brimwatch::test {

/// Tells all clients that `window` has become the owner of a manager's selection, as the ICCCM asks
/// of managers.
inline void announceManager(platform::XConnection &x, xcb_atom_t selection, xcb_window_t window)
{
    const xcb_window_t root = x.screen()->root;
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = root;
    message.type = x.atom("MANAGER");
    message.data.data32[1] = selection;
    message.data.data32[2] = window;
    xcb_send_event(x.connection(), 0, root, XCB_EVENT_MASK_STRUCTURE_NOTIFY,
        reinterpret_cast<const char *>(&message));
}

} // namespace brimwatch::test
