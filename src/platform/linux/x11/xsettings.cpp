#include "platform/linux/x11/xsettings.h"

#include "platform/linux/x11/x_connection.h"

#include <QtEndian>

#include <xcb/xcb.h>

namespace brimwatch::platform {
namespace {

// More than any desktop announces; a larger property is no settings.
constexpr int mostSettings = 1000;

constexpr const char *settingsAtom = "_XSETTINGS_SETTINGS";

/// Reads numbers and texts in the byte order that the property names.
class Reader {
public:
    explicit Reader(const QByteArray &bytes)
        : m_bytes(bytes)
    {
    }

    bool failed() const { return m_failed; }
    void setBigEndian(bool bigEndian) { m_bigEndian = bigEndian; }

    quint8 byte()
    {
        const char *at = take(1);
        return at != nullptr ? static_cast<quint8>(*at) : 0;
    }
    template <typename T> T number()
    {
        const char *at = take(sizeof(T));
        if (at == nullptr)
            return 0;
        return m_bigEndian ? qFromBigEndian<T>(at) : qFromLittleEndian<T>(at);
    }
    QString text(quint32 length)
    {
        const char *at = take(length);
        const QString result
            = at != nullptr ? QString::fromUtf8(at, static_cast<qsizetype>(length)) : QString();
        take((4 - length % 4) % 4);
        return result;
    }
    void skip(qsizetype count) { take(count); }

private:
    const char *take(qsizetype count)
    {
        if (m_failed || count > m_bytes.size() - m_at) {
            m_failed = true;
            return nullptr;
        }
        const char *at = m_bytes.constData() + m_at;
        m_at += count;
        return at;
    }

    const QByteArray &m_bytes;
    qsizetype m_at = 0;
    bool m_bigEndian = false;
    bool m_failed = false;
};

} // namespace

QHash<QString, QVariant> parseXSettings(const QByteArray &property)
{
    enum Type : quint8 { Integer = 0, Text = 1, Color = 2 };

    Reader reader(property);
    reader.setBigEndian(reader.byte() == XCB_IMAGE_ORDER_MSB_FIRST);
    reader.skip(3);
    reader.number<quint32>(); // The serial of the last change.
    const auto count = reader.number<quint32>();
    if (reader.failed() || count > mostSettings)
        return {};
    QHash<QString, QVariant> values;
    for (quint32 i = 0; i < count && !reader.failed(); ++i) {
        const quint8 type = reader.byte();
        reader.skip(1);
        const QString name = reader.text(reader.number<quint16>());
        reader.number<quint32>(); // The serial of this setting's last change.
        QVariant value;
        switch (type) {
        case Integer:
            value = reader.number<qint32>();
            break;
        case Text:
            value = reader.text(reader.number<quint32>());
            break;
        case Color:
            reader.skip(8);
            break;
        default:
            return values;
        }
        if (!reader.failed() && value.isValid())
            values.insert(name, value);
    }
    return values;
}

XSettings::XSettings(XConnection &connection, QObject *parent)
    : QObject(parent)
    , m_connection(connection)
    , m_manager(connection, "_XSETTINGS_S", XCB_EVENT_MASK_PROPERTY_CHANGE)
{
    connect(&m_manager, &ManagerSelection::changed, this, &XSettings::read);
    connect(&m_connection, &XConnection::eventReceived, this, &XSettings::handle);
    read();
}

void XSettings::read()
{
    const xcb_window_t manager = m_manager.manager();
    const auto values = manager != XCB_WINDOW_NONE
        ? parseXSettings(m_connection.property(manager, m_connection.atom(settingsAtom)))
        : QHash<QString, QVariant>();
    if (values == m_values)
        return;
    m_values = values;
    Q_EMIT changed();
}

void XSettings::handle(const xcb_generic_event_t *event)
{
    if ((event->response_type & 0x7f) != XCB_PROPERTY_NOTIFY)
        return;
    const auto *change = reinterpret_cast<const xcb_property_notify_event_t *>(event);
    if (m_manager.manager() != XCB_WINDOW_NONE && change->window == m_manager.manager()
        && change->atom == m_connection.atom(settingsAtom))
        read();
}

} // namespace brimwatch::platform
