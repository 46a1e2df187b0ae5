#include "platform/linux/bus/bus_service.h"

#include "bus_service_adaptor.h"
#include "platform/linux/bus/bus_names.h"
#include "platform/linux/bus/bus_state.h"
#include "platform/linux/bus/exported_object.h"

#include <QDBusError>
#include <QMetaMethod>
#include <QStringList>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace brimwatch::platform {

using namespace Qt::Literals::StringLiterals;

BusService::BusService(QDBusConnection bus, QString version, QString display, QObject *parent)
    : RemoteControl(parent)
    , m_bus(std::move(bus))
    , m_version(std::move(version))
    , m_display(std::move(display))
    , m_properties(toBusProperties(m_published))
{
    new BusServiceAdaptor(this);
    bus::exportAdaptors(m_bus, bus::path, this);
}

BusService::~BusService()
{
    if (m_bus.objectRegisteredAt(bus::path) == this)
        m_bus.unregisterObject(bus::path);
}

void BusService::publish(const PublishedState &state)
{
    if (state == m_published)
        return;
    m_published = state;
    const QVariantMap before = std::exchange(m_properties, toBusProperties(state));
    QVariantMap changed;
    for (auto property = m_properties.cbegin(); property != m_properties.cend(); ++property) {
        if (property.value() != before.value(property.key()))
            changed.insert(property.key(), property.value());
    }
    auto signal = QDBusMessage::createSignal(
        bus::path, u"org.freedesktop.DBus.Properties"_s, u"PropertiesChanged"_s);
    signal << QString(bus::interface) << changed << QStringList();
    m_bus.send(signal);
}

void BusService::finishRefresh(const std::optional<QString> &error)
{
    const auto waiting = std::exchange(m_waiting, {});
    for (const auto &call : waiting)
        m_bus.send(error ? call.createErrorReply(bus::refreshFailed, *error) : call.createReply());
}

void BusService::setReport(Report report)
{
    m_report = std::move(report);
    if (!m_report)
        return;
    // Until now nothing was connected to the requests.
    const auto pending = m_pending;
    for (const Request request : pending)
        QTimer::singleShot(0, this, [this, request] { carryOut(request); });
}

QString BusService::state() const
{
    return m_properties.value(u"State"_s).toString();
}

uint BusService::port() const
{
    return m_properties.value(u"Port"_s).toUInt();
}

qlonglong BusService::lastUpdate() const
{
    return m_properties.value(u"LastUpdate"_s).toLongLong();
}

QString BusService::error() const
{
    return m_published.error;
}

QString BusService::title() const
{
    return m_published.title;
}

QList<QVariantMap> BusService::items() const
{
    return m_properties.value(u"Items"_s).value<QList<QVariantMap>>();
}

QVariantMap BusService::lowest() const
{
    return m_properties.value(u"Lowest"_s).toMap();
}

QList<QVariantMap> BusService::groups() const
{
    return m_properties.value(u"Groups"_s).value<QList<QVariantMap>>();
}

void BusService::Refresh()
{
    const auto ofCaller = std::ranges::count_if(std::as_const(m_waiting),
        [this](const QDBusMessage &call) { return call.service() == message().service(); });
    if (m_waiting.size() >= mostWaiting || ofCaller >= mostWaitingOfOneCaller) {
        sendErrorReply(
            QDBusError::LimitsExceeded, u"too many calls wait for the refresh already"_s);
        return;
    }
    setDelayedReply(true);
    m_waiting.append(message());
    if (m_waiting.size() == 1)
        QTimer::singleShot(0, this, &RemoteControl::refreshRequested);
}

void BusService::Show()
{
    carryOutLater(&RemoteControl::showRequested);
}

void BusService::Toggle()
{
    carryOutLater(&RemoteControl::toggleRequested);
}

void BusService::ShowSettings()
{
    carryOutLater(&RemoteControl::showSettingsRequested);
}

QString BusService::Diagnostics()
{
    if (m_report)
        return m_report();
    sendErrorReply(QDBusError::Failed, u"Brimwatch is still starting"_s);
    return {};
}

void BusService::Quit()
{
    carryOutLater(&RemoteControl::quitRequested);
}

void BusService::carryOut(Request request)
{
    // The name is ours a moment before anything is connected: requests wait until then.
    if (isSignalConnected(QMetaMethod::fromSignal(request)) && m_pending.removeOne(request))
        Q_EMIT(this->*request)();
}

void BusService::carryOutLater(Request request)
{
    if (m_pending.contains(request))
        return;
    m_pending.append(request);
    QTimer::singleShot(0, this, [this, request] { carryOut(request); });
}

} // namespace brimwatch::platform
