#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusServer>
#include <QHash>
#include <QList>
#include <QObject>
#include <QString>

namespace brimwatch::test {

/// A bus that is as slow as a test wants: it knows who owns which name, and answers when it is told
/// to. QtDBus talks to it as to a peer, so that the objects of all programs are at one connection.
class FakeBus : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.DBus")

public:
    enum class Manners {
        Answers,
        Holds, ///< Never answers.
        TimesOut, ///< Answers as QtDBus does when nobody has answered in time.
    };

    FakeBus();
    ~FakeBus() override;
    Q_DISABLE_COPY_MOVE(FakeBus)

    /// Our end of the connection.
    const QDBusConnection &connection() const { return m_connection; }
    /// Where the objects of other programs are registered.
    QDBusConnection &programs() { return m_programs; }

    /// How the next questions for an owner are answered; from the last on all are.
    QList<Manners> onGetNameOwner{Manners::Answers};
    QHash<QString, QString> owners; ///< By name.
    int asked = 0; ///< For an owner.

public Q_SLOTS:
    QString GetNameOwner(const QString &name);
    uint GetConnectionUnixProcessID(const QString &name);

private:
    QDBusServer m_server;
    QDBusConnection m_programs;
    QDBusConnection m_connection;
};

} // namespace brimwatch::test
