#pragma once

#include "platform/linux/x11/manager_selection.h"

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QString>
#include <QVariant>

namespace brimwatch::platform {

class XConnection;

/// The settings in the property of an XSETTINGS manager: name to a number or a text. Colours are
/// left out. Bytes that are no settings give none, truncated ones what came before the cut.
QHash<QString, QVariant> parseXSettings(const QByteArray &property);

/// The desktop's settings as X11 desktops announce them (theme, fonts), by the XSETTINGS protocol.
/// Follows changes, and a settings manager that comes, goes or is replaced. Without a manager there
/// are no settings.
class XSettings final : public QObject {
    Q_OBJECT

public:
    /// `connection` outlives it.
    explicit XSettings(XConnection &connection, QObject *parent = nullptr);

    /// Invalid without such a setting.
    QVariant value(const QString &name) const { return m_values.value(name); }

Q_SIGNALS:
    void changed();

private:
    void read();
    void handle(const xcb_generic_event_t *event);

    XConnection &m_connection;
    ManagerSelection m_manager;
    QHash<QString, QVariant> m_values;
};

} // namespace brimwatch::platform
