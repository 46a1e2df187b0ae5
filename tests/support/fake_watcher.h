#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>

namespace brimwatch::test {

/// A connection of its own to the session bus, as another program would have.
class OtherProgram {
public:
    OtherProgram();
    ~OtherProgram();
    Q_DISABLE_COPY_MOVE(OtherProgram)

    QDBusConnection &bus() { return m_bus; }
    /// Whether it has the name now.
    bool takeName(const QString &name);
    /// The answer, an error if there is none. What it calls may live in this process.
    QDBusMessage call(const QDBusMessage &call);
    /// The same for a method of an object.
    QDBusMessage call(const QString &service, const QString &path, const QString &interface,
        const QString &member, const QVariantList &arguments = {});
    /// The connection that has the name, empty if none has.
    QString ownerOf(const QString &name);

private:
    QString m_connectionName;
    QDBusConnection m_bus;
};

/// The list of status items that panels read, and its owner. Gone from the bus at its end.
class FakeWatcher : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(QStringList RegisteredStatusNotifierItems READ items)
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ hasHost CONSTANT)
    Q_PROPERTY(int ProtocolVersion READ protocolVersion CONSTANT)

public:
    enum class Manners { TakesItems, RefusesItems };

    explicit FakeWatcher(Manners manners = Manners::TakesItems);

    /// What was registered, in the order of arrival, as often as it was.
    QStringList items() const { return m_items; }
    /// The connections that registered them.
    QStringList senders() const { return m_senders; }
    bool hasHost() const { return true; }
    int protocolVersion() const { return 0; }

public Q_SLOTS:
    void RegisterStatusNotifierItem(const QString &service);
    void RegisterStatusNotifierHost(const QString &service);

Q_SIGNALS:
    void StatusNotifierItemRegistered(const QString &service);
    void StatusNotifierItemUnregistered(const QString &service);
    void StatusNotifierHostRegistered();

private:
    OtherProgram m_program;
    Manners m_manners;
    QStringList m_items;
    QStringList m_senders;
};

/// A panel that reads one object of one interface and writes down what it signals.
class FakeHost : public QObject {
    Q_OBJECT

public:
    FakeHost(QString service, QString path, QString interface, const QStringList &signalNames);

    QVariantMap readAll();
    QDBusMessage read(const QString &property);
    QDBusMessage call(const QString &member, const QVariantList &arguments = {});

    /// The names of the signals that came, each as often as it came. All that were sent before this
    /// question are in.
    QStringList heard();
    /// The arguments of the last signal of that name.
    QVariantList lastArguments(const QString &signal) const;
    OtherProgram &program() { return m_program; }

private Q_SLOTS:
    void hear(const QDBusMessage &signal);

private:
    OtherProgram m_program;
    QString m_service;
    QString m_path;
    QString m_interface;
    QList<QDBusMessage> m_heard;
};

} // namespace brimwatch::test
