#pragma once

#include "platform/remote_control.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QList>
#include <QVariantMap>

namespace brimwatch::platform {

/// The object /app/brimwatch/Brimwatch on the bus, from its making to its end. Its members are
/// described in app.brimwatch.Brimwatch1.xml. It never waits for the bus, and takes no name.
///
/// However often it is called, it keeps no more than the calls that may wait for a refresh; any
/// other request is carried out once for all calls that came until then.
class BusService final : public RemoteControl, protected QDBusContext {
    Q_OBJECT
    Q_PROPERTY(QString Version READ version CONSTANT FINAL)
    Q_PROPERTY(QString Display READ display CONSTANT FINAL)
    Q_PROPERTY(QString State READ state FINAL)
    Q_PROPERTY(uint Port READ port FINAL)
    Q_PROPERTY(qlonglong LastUpdate READ lastUpdate FINAL)
    Q_PROPERTY(QString Error READ error FINAL)
    Q_PROPERTY(QString Title READ title FINAL)
    Q_PROPERTY(QList<QVariantMap> Items READ items FINAL)
    Q_PROPERTY(QVariantMap Lowest READ lowest FINAL)
    Q_PROPERTY(QList<QVariantMap> Groups READ groups FINAL)

public:
    static constexpr qsizetype mostWaiting = 128;
    static constexpr qsizetype mostWaitingOfOneCaller = 16;

    /// `display` is the one on which the popover opens.
    BusService(QDBusConnection bus, QString version, QString display, QObject *parent = nullptr);
    ~BusService() override;

    void publish(const PublishedState &state) override;
    void finishRefresh(const std::optional<QString> &error) override;
    void setReport(Report report) override;

    QString version() const { return m_version; }
    QString display() const { return m_display; }
    QString state() const;
    uint port() const;
    qlonglong lastUpdate() const;
    QString error() const;
    QString title() const;
    QList<QVariantMap> items() const;
    QVariantMap lowest() const;
    QList<QVariantMap> groups() const;

    // The methods of the interface, named as it names them: the adaptor calls them.
    void Refresh();
    void Show();
    void Toggle();
    void ShowSettings();
    QString Diagnostics();
    void Quit();

private:
    using Request = void (RemoteControl::*)();

    /// Carries it out from the event loop: the caller still waits for its answer.
    void carryOutLater(Request request);
    void carryOut(Request request);

    QDBusConnection m_bus;
    QString m_version;
    QString m_display;
    Report m_report;
    PublishedState m_published;
    QVariantMap m_properties; ///< Those of m_published.
    QList<QDBusMessage> m_waiting; ///< Calls of Refresh.
    QList<Request> m_pending; ///< Not carried out yet; each is in it once.
};

} // namespace brimwatch::platform
