#pragma once

#include <QDBusConnection>
#include <QObject>

namespace brimwatch::platform {

/// Reports that the machine is back from suspend or hibernation, as logind announces it
/// (`PrepareForSleep` of org.freedesktop.login1). Without logind it reports nothing.
class ResumeWatch final : public QObject {
    Q_OBJECT

public:
    /// `bus` is the system bus, connected or not.
    explicit ResumeWatch(QDBusConnection bus);

Q_SIGNALS:
    void resumed();

private Q_SLOTS:
    void prepareForSleep(bool start);

private:
    QDBusConnection m_bus;
};

} // namespace brimwatch::platform
