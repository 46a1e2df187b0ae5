// What a program on the bus says in the place of ours: within the bounds, one line each.
#include "fuzz.h"
#include "platform/linux/bus/bus_state.h"
#include "published_bounds.h"
#include "random_properties.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServer>

using namespace brimwatch;
using namespace Qt::Literals::StringLiterals;

namespace {

/// Two ends of a connection without a bus between them: what goes over it has its wire format.
class Wire : public QObject {
    Q_OBJECT

public:
    Wire()
        : m_near(u"near"_s)
    {
        connect(&m_server, &QDBusServer::newConnection, this,
            [this](const QDBusConnection &far) { m_far.emplace(far); });
        m_server.setAnonymousAuthenticationAllowed(true);
        m_near = QDBusConnection::connectToPeer(m_server.address(), u"near"_s);
        while (!m_far)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        fuzz::require(m_near.connect({}, u"/"_s, u"app.brimwatch.Fuzz"_s, u"Said"_s, this,
                          SLOT(take(QDBusMessage))),
            "the near end listens");
    }

    QVariantMap overTheWire(const QVariantMap &map)
    {
        auto signal = QDBusMessage::createSignal(u"/"_s, u"app.brimwatch.Fuzz"_s, u"Said"_s);
        signal << map;
        m_came.reset();
        // What has no wire format at all, QtDBus refuses to send.
        if (!m_far->send(signal))
            return {};
        while (!m_came)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        return *m_came;
    }

private Q_SLOTS:
    void take(const QDBusMessage &message)
    {
        m_came = message.arguments().isEmpty()
            ? QVariantMap()
            : qdbus_cast<QVariantMap>(message.arguments().constFirst());
    }

private:
    QDBusServer m_server;
    QDBusConnection m_near;
    std::optional<QDBusConnection> m_far;
    std::optional<QVariantMap> m_came;
};

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static int count = 0;
    static QCoreApplication application(count, nullptr);
    static Wire wire;
    // Makes the list of maps known to QtDBus.
    static const auto known = platform::toBusProperties({});

    fuzz::Input input(data, size);
    const bool sent = input.flag();
    const auto properties = fuzz::randomProperties(input, 4);
    const auto state
        = platform::fromBusProperties(sent ? wire.overTheWire(properties) : properties);
    fuzz::requireBounds(state);
    fuzz::require(platform::fromBusProperties(platform::toBusProperties(state)) == state,
        "what was read is read again");
    return 0;
}

#include "bus_properties_fuzz.moc"
