#include "platform/linux/bus/bus_return.h"

#include <chrono>
#include <utility>

namespace brimwatch::platform {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr std::chrono::seconds pauseBetweenLooks{2};

} // namespace

BusReturn::BusReturn(QDBusConnection bus, QObject *parent)
    : QObject(parent)
    , m_bus(std::move(bus))
{
    m_bus.connect({}, u"/org/freedesktop/DBus/Local"_s, u"org.freedesktop.DBus.Local"_s,
        u"Disconnected"_s, this, SLOT(waitForReturn()));
    m_timer.setInterval(pauseBetweenLooks);
    connect(&m_timer, &QTimer::timeout, this, &BusReturn::lookForBus);
}

void BusReturn::waitForReturn()
{
    m_timer.start();
}

void BusReturn::lookForBus()
{
    const QString name = u"return"_s;
    const bool isThere
        = QDBusConnection::connectToBus(QDBusConnection::SessionBus, name).isConnected();
    QDBusConnection::disconnectFromBus(name);
    if (!isThere)
        return;
    m_timer.stop();
    Q_EMIT returned();
}

} // namespace brimwatch::platform
