#pragma once

#include "platform/linux/bus/bus_structure.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusVariant>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>

namespace brimwatch::platform {

/// One entry of a menu. A separator has neither label nor id that anybody can choose.
struct DBusMenuEntry {
    int id = 0; ///< Above 0, once per menu.
    QString label; ///< As it is read: no character has a second meaning.
    bool separator = false;
};

/// An entry with its children as the protocol carries them, `(ia{sv}av)`.
struct DBusMenuLayout {
    int id = 0;
    QVariantMap properties;
    QList<DBusMenuLayout> children;
};

/// `(ia{sv})`
struct DBusMenuProperties {
    int id = 0;
    QVariantMap properties;

    static auto members(auto &self) { return std::tie(self.id, self.properties); }
};

/// `(ias)`
struct DBusMenuPropertyNames {
    int id = 0;
    QStringList names;

    static auto members(auto &self) { return std::tie(self.id, self.names); }
};

/// `(isvu)`
struct DBusMenuEvent {
    int id = 0;
    QString name;
    QDBusVariant data;
    uint timestamp = 0;

    static auto members(auto &self)
    {
        return std::tie(self.id, self.name, self.data, self.timestamp);
    }
};

/// A menu of one level that a panel draws for us, after the com.canonical.dbusmenu protocol. It is
/// on the bus from its making to its end, or until another object takes its path.
///
/// A call for what is not there gets an error, and a group of ids or events longer than any panel's
/// is refused.
class DBusMenu : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_PROPERTY(uint Version READ version CONSTANT FINAL)
    Q_PROPERTY(QString TextDirection READ textDirection CONSTANT FINAL)
    Q_PROPERTY(QString Status READ status CONSTANT FINAL)
    Q_PROPERTY(QStringList IconThemePath READ iconThemePath CONSTANT FINAL)

public:
    DBusMenu(QDBusConnection bus, QString path, QList<DBusMenuEntry> entries, QObject *parent);
    ~DBusMenu() override;

    uint version() const;
    QString textDirection() const;
    QString status() const;
    QStringList iconThemePath() const;

    // The methods of the protocol, named as it names them. For callers on the bus: a wrong argument
    // is answered there.
    uint GetLayout(
        int parentId, int recursionDepth, const QStringList &propertyNames, DBusMenuLayout &layout);
    QList<DBusMenuProperties> GetGroupProperties(
        const QList<int> &ids, const QStringList &propertyNames);
    QDBusVariant GetProperty(int id, const QString &name);
    void Event(int id, const QString &eventId, const QDBusVariant &data, uint timestamp);
    QList<int> EventGroup(const QList<DBusMenuEvent> &events);
    bool AboutToShow(int id);
    QList<int> AboutToShowGroup(const QList<int> &ids, QList<int> &idErrors);

Q_SIGNALS:
    /// The entry was chosen. Separators never are.
    void triggered(int id);

private:
    bool knows(int id) const;
    void take(int id, const QString &eventId);
    bool refuseLongGroup(qsizetype size);

    QDBusConnection m_bus;
    QString m_path;
    QList<DBusMenuEntry> m_entries;
};

QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuLayout &layout);
const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuLayout &layout);

} // namespace brimwatch::platform
