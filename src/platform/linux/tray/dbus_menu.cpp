#include "platform/linux/tray/dbus_menu.h"

#include "dbus_menu_adaptor.h"
#include "platform/linux/bus/exported_object.h"

#include <QDBusError>
#include <QDBusMetaType>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace brimwatch::platform {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int rootId = 0;
// The entries never change.
constexpr uint revision = 1;
// Panels ask for all entries of a menu at once, and a menu of ours has a handful.
constexpr qsizetype longestGroup = 256;

void registerTypes()
{
    qDBusRegisterMetaType<QList<int>>();
    qDBusRegisterMetaType<DBusMenuLayout>();
    qDBusRegisterMetaType<DBusMenuProperties>();
    qDBusRegisterMetaType<QList<DBusMenuProperties>>();
    qDBusRegisterMetaType<DBusMenuPropertyNames>();
    qDBusRegisterMetaType<QList<DBusMenuPropertyNames>>();
    qDBusRegisterMetaType<DBusMenuEvent>();
    qDBusRegisterMetaType<QList<DBusMenuEvent>>();
}

QVariantMap rootProperties()
{
    return {{u"children-display"_s, u"submenu"_s}};
}

QVariantMap propertiesOf(const DBusMenuEntry &entry)
{
    if (entry.separator)
        return {{u"type"_s, u"separator"_s}, {u"visible"_s, true}};
    // A single underscore marks the key that chooses an entry.
    QString label = entry.label;
    label.replace(u'_', "__"_L1);
    return {{u"label"_s, label}, {u"enabled"_s, true}, {u"visible"_s, true}};
}

QVariantMap onlyNamed(QVariantMap properties, const QStringList &names)
{
    if (!names.isEmpty())
        properties.removeIf(
            [&names](const auto &property) { return !names.contains(property.key()); });
    return properties;
}

} // namespace

DBusMenu::DBusMenu(QDBusConnection bus, QString path, QList<DBusMenuEntry> entries, QObject *parent)
    : QObject(parent)
    , m_bus(std::move(bus))
    , m_path(std::move(path))
    , m_entries(std::move(entries))
{
    registerTypes();
    new DBusMenuAdaptor(this);
    bus::exportAdaptors(m_bus, m_path, this);
}

DBusMenu::~DBusMenu()
{
    if (m_bus.objectRegisteredAt(m_path) == this)
        m_bus.unregisterObject(m_path);
}

uint DBusMenu::version() const
{
    return 3;
}

QString DBusMenu::textDirection() const
{
    return u"ltr"_s;
}

QString DBusMenu::status() const
{
    return u"normal"_s;
}

QStringList DBusMenu::iconThemePath() const
{
    return {};
}

uint DBusMenu::GetLayout(
    int parentId, int recursionDepth, const QStringList &propertyNames, DBusMenuLayout &layout)
{
    layout = {.id = parentId, .properties = {}, .children = {}};
    if (parentId == rootId) {
        layout.properties = onlyNamed(rootProperties(), propertyNames);
        // Any negative depth means the whole tree.
        if (recursionDepth != 0) {
            for (const auto &entry : std::as_const(m_entries)) {
                layout.children.append({.id = entry.id,
                    .properties = onlyNamed(propertiesOf(entry), propertyNames),
                    .children = {}});
            }
        }
        return revision;
    }
    const auto entry = std::ranges::find(std::as_const(m_entries), parentId, &DBusMenuEntry::id);
    if (entry != m_entries.cend())
        layout.properties = onlyNamed(propertiesOf(*entry), propertyNames);
    else
        sendErrorReply(QDBusError::InvalidArgs, u"no menu entry has the id %1"_s.arg(parentId));
    return revision;
}

QList<DBusMenuProperties> DBusMenu::GetGroupProperties(
    const QList<int> &ids, const QStringList &propertyNames)
{
    if (refuseLongGroup(ids.size()))
        return {};
    // Unknown ids are left out, and an id named twice comes once. No ids stand for all entries.
    QList<DBusMenuProperties> answer;
    const auto asked = [&ids](int id) { return ids.isEmpty() || ids.contains(id); };
    if (asked(rootId))
        answer.append({.id = rootId, .properties = onlyNamed(rootProperties(), propertyNames)});
    for (const auto &entry : std::as_const(m_entries)) {
        if (asked(entry.id))
            answer.append(
                {.id = entry.id, .properties = onlyNamed(propertiesOf(entry), propertyNames)});
    }
    return answer;
}

QDBusVariant DBusMenu::GetProperty(int id, const QString &name)
{
    QVariantMap properties;
    if (id == rootId) {
        properties = rootProperties();
    } else {
        const auto entry = std::ranges::find(std::as_const(m_entries), id, &DBusMenuEntry::id);
        if (entry != m_entries.cend())
            properties = propertiesOf(*entry);
    }
    if (!properties.contains(name)) {
        sendErrorReply(
            QDBusError::InvalidArgs, u"the menu entry %1 has no such property"_s.arg(id));
        // Never sent, but QtDBus converts what we return.
        return QDBusVariant(QString());
    }
    return QDBusVariant(properties.value(name));
}

void DBusMenu::Event(
    int id, const QString &eventId, const QDBusVariant & /*data*/, uint /*timestamp*/)
{
    if (knows(id))
        take(id, eventId);
    else
        sendErrorReply(QDBusError::InvalidArgs, u"no menu entry has the id %1"_s.arg(id));
}

QList<int> DBusMenu::EventGroup(const QList<DBusMenuEvent> &events)
{
    if (refuseLongGroup(events.size()))
        return {};
    QList<int> unknown;
    for (const auto &event : events) {
        if (knows(event.id))
            take(event.id, event.name);
        else
            unknown.append(event.id);
    }
    if (!events.isEmpty() && unknown.size() == events.size())
        sendErrorReply(QDBusError::InvalidArgs, u"no menu entry has any of these ids"_s);
    return unknown;
}

bool DBusMenu::AboutToShow(int id)
{
    if (!knows(id))
        sendErrorReply(QDBusError::InvalidArgs, u"no menu entry has the id %1"_s.arg(id));
    return false; // Nothing is filled in late.
}

QList<int> DBusMenu::AboutToShowGroup(const QList<int> &ids, QList<int> &idErrors)
{
    idErrors.clear();
    if (refuseLongGroup(ids.size()))
        return {};
    std::ranges::copy_if(ids, std::back_inserter(idErrors), [this](int id) { return !knows(id); });
    if (!ids.isEmpty() && idErrors.size() == ids.size())
        sendErrorReply(QDBusError::InvalidArgs, u"no menu entry has any of these ids"_s);
    return {};
}

bool DBusMenu::knows(int id) const
{
    return id == rootId || std::ranges::find(m_entries, id, &DBusMenuEntry::id) != m_entries.cend();
}

void DBusMenu::take(int id, const QString &eventId)
{
    if (eventId != "clicked"_L1)
        return;
    const auto entry = std::ranges::find(std::as_const(m_entries), id, &DBusMenuEntry::id);
    if (entry == m_entries.cend() || entry->separator)
        return;
    // From the event loop: what follows may end this menu, and the caller still waits for its
    // answer.
    QTimer::singleShot(0, this, [this, id] { Q_EMIT triggered(id); });
}

bool DBusMenu::refuseLongGroup(qsizetype size)
{
    if (size <= longestGroup)
        return false;
    sendErrorReply(QDBusError::LimitsExceeded, u"at most %1 at once"_s.arg(longestGroup));
    return true;
}

// NOLINTBEGIN(bugprone-return-const-ref-from-parameter): the signatures that QtDBus asks for.
QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuLayout &layout)
{
    argument.beginStructure();
    argument << layout.id << layout.properties;
    argument.beginArray(QMetaType::fromType<QDBusVariant>());
    for (const auto &child : layout.children)
        argument << QDBusVariant(QVariant::fromValue(child));
    argument.endArray();
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuLayout &layout)
{
    layout.children.clear();
    argument.beginStructure();
    argument >> layout.id >> layout.properties;
    argument.beginArray();
    while (!argument.atEnd()) {
        QDBusVariant child;
        argument >> child;
        layout.children.append(qdbus_cast<DBusMenuLayout>(child.variant()));
    }
    argument.endArray();
    argument.endStructure();
    return argument;
}
// NOLINTEND(bugprone-return-const-ref-from-parameter)

} // namespace brimwatch::platform
