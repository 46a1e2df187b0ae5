#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QTimer>

namespace brimwatch::platform {

/// Notices that the session bus, after it has gone, is back at its address. QtDBus does not connect
/// again, and every object of ours knows the old connection.
class BusReturn final : public QObject {
    Q_OBJECT

public:
    explicit BusReturn(QDBusConnection bus, QObject *parent = nullptr);

Q_SIGNALS:
    void returned();

private Q_SLOTS:
    void waitForReturn();

private:
    void lookForBus();

    QDBusConnection m_bus;
    QTimer m_timer; ///< While the bus is gone.
};

} // namespace brimwatch::platform
