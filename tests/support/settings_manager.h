#pragma once

#include "platform/linux/x11/x_connection.h"
#include "support/manager_announcement.h"
#include "support/xsettings_property.h"

#include <QByteArray>
#include <QVariantMap>

#include <xcb/xcb.h>

#include <cstdint>

namespace brimwatch::test {

/// A desktop's settings manager, on a connection of its own.
class SettingsManager {
public:
    explicit SettingsManager(const QVariantMap &settings)
    {
        xcb_connection_t *c = m_x.connection();
        m_window = xcb_generate_id(c);
        const xcb_window_t root = m_x.screen()->root;
        xcb_create_window(c, XCB_COPY_FROM_PARENT, m_window, root, 0, 0, 1, 1, 0,
            XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
        change(settings);
        const xcb_atom_t selection = m_x.atom("_XSETTINGS_S0");
        xcb_set_selection_owner(c, m_window, selection, XCB_CURRENT_TIME);
        announceManager(m_x, selection, m_window);
        m_x.flush();
    }
    ~SettingsManager()
    {
        xcb_destroy_window(m_x.connection(), m_window);
        m_x.flush();
    }
    Q_DISABLE_COPY_MOVE(SettingsManager)

    void change(const QVariantMap &settings)
    {
        const QByteArray bytes = xSettingsProperty(settings);
        const xcb_atom_t property = m_x.atom("_XSETTINGS_SETTINGS");
        xcb_change_property(m_x.connection(), XCB_PROP_MODE_REPLACE, m_window, property, property,
            8, static_cast<std::uint32_t>(bytes.size()), bytes.constData());
        m_x.flush();
    }

private:
    platform::XConnection m_x;
    xcb_window_t m_window = XCB_WINDOW_NONE;
};

} // namespace brimwatch::test
