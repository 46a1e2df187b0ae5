#pragma once

#include "platform/linux/x11/x_connection.h"

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QString>
#include <QVariant>

namespace brimwatch::platform {

/// The settings in the property of an XSETTINGS manager: name to a number or a text. Colours are
/// left out. Bytes that are no settings give none, those cut short what came before the cut.
QHash<QString, QVariant> parseXSettings(const QByteArray &property);

/// The desktop's settings as X11 desktops announce them (theme, fonts), by the XSETTINGS protocol.
/// Follows changes, and a settings manager that comes, goes or is replaced.
class XSettings : public QObject {
    Q_OBJECT

public:
    /// `connection` outlives it.
    explicit XSettings(XConnection &connection, QObject *parent = nullptr);

    /// Invalid without such a setting.
    QVariant value(const QString &name) const { return m_values.value(name); }

Q_SIGNALS:
    void changed();

private:
    void followManager();
    void read();
    void handle(const xcb_generic_event_t *event);

    XConnection &m_connection;
    xcb_atom_t m_selection = 0;
    xcb_window_t m_manager = 0;
    QHash<QString, QVariant> m_values;
};

} // namespace brimwatch::platform
