#include "dbus/program/accessibility_bus.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusInterface>
#include <QDBusReply>
#include <QDBusVariant>
#include <QStandardPaths>
#include <QTest>

#include <array>
#include <utility>

namespace brimwatch::test {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int timeout = 30'000; // Milliseconds; nothing that works comes near it.
constexpr int deepest = 64;
constexpr qsizetype mostChildren = 1000;

const QString &accessibleInterface()
{
    static const QString name = u"org.a11y.atspi.Accessible"_s;
    return name;
}

AccessibleAddress registryRoot()
{
    return {.service = u"org.a11y.atspi.Registry"_s, .path = u"/org/a11y/atspi/accessible/root"_s};
}

/// AtspiStateType, from 0.
QStringList stateNames(const QList<quint32> &words)
{
    static constexpr std::array names{"invalid", "active", "armed", "busy", "checked", "collapsed",
        "defunct", "editable", "enabled", "expandable", "expanded", "focusable", "focused",
        "has-tooltip", "horizontal", "iconified", "modal", "multi-line", "multiselectable",
        "opaque", "pressed", "resizable", "selectable", "selected", "sensitive", "showing",
        "single-line", "stale", "transient", "vertical", "visible", "manages-descendants",
        "indeterminate", "required", "truncated", "animated", "invalid-entry",
        "supports-autocompletion", "selectable-text", "is-default", "visited", "checkable",
        "has-popup", "read-only"};
    constexpr std::size_t bits = 32;
    QStringList set;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const quint32 word = words.value(static_cast<qsizetype>(i / bits));
        if (((word >> (i % bits)) & 1U) != 0)
            set.append(QString::fromLatin1(names.at(i)));
    }
    return set;
}

/// Lists of structures, as they come over the bus.
template <typename Read> void forEachStructure(const QVariant &list, Read read)
{
    const auto argument = list.value<QDBusArgument>();
    if (argument.currentType() != QDBusArgument::ArrayType)
        return;
    argument.beginArray();
    while (!argument.atEnd()) {
        argument.beginStructure();
        read(argument);
        argument.endStructure();
    }
    argument.endArray();
}

/// Debian's place first, then those of others.
QString launcherProgram()
{
    return QStandardPaths::findExecutable(u"at-spi-bus-launcher"_s,
        {u"/usr/libexec"_s, u"/usr/libexec/at-spi2-core"_s, u"/usr/lib/at-spi2-core"_s,
            u"/usr/lib"_s});
}

/// The address of the accessibility bus, once its launcher has one.
QString busAddress()
{
    QDBusInterface launcher(u"org.a11y.Bus"_s, u"/org/a11y/bus"_s, u"org.a11y.Bus"_s);
    launcher.setTimeout(timeout);
    const QDBusReply<QString> address = launcher.call(u"GetAddress"_s);
    return address.value();
}

} // namespace

const AccessibleNode *AccessibleNode::find(
    const QString &wantedRole, const QString &wantedName) const
{
    if (role == wantedRole && name == wantedName)
        return this;
    for (const AccessibleNode &child : children) {
        if (const auto *found = child.find(wantedRole, wantedName))
            return found;
    }
    return nullptr;
}

AccessibilityBus::AccessibilityBus()
    : m_bus(u"accessibility"_s)
{
    auto environment = QProcessEnvironment::systemEnvironment();
    // Its socket goes here, and a socket's path ends at 107 bytes.
    environment.insert(u"XDG_RUNTIME_DIR"_s, m_folder.path());
    // The desktop's own settings are no concern of the test.
    environment.insert(u"GSETTINGS_BACKEND"_s, u"memory"_s);
    m_launcher.setProcessEnvironment(environment);
    m_launcher.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_launcher.start(launcherProgram(), {u"--launch-immediately"_s, u"--a11y=1"_s});
    const bool isThere = m_launcher.waitForStarted(timeout)
        && QTest::qWaitFor(
            [] {
                const auto *bus = QDBusConnection::sessionBus().interface();
                return bus->isServiceRegistered(u"org.a11y.Bus"_s).value();
            },
            timeout);
    if (!isThere)
        qFatal("at-spi-bus-launcher did not start: %s", qPrintable(m_launcher.errorString()));
    m_bus = QDBusConnection::connectToBus(busAddress(), u"accessibility"_s);
    if (!m_bus.isConnected())
        qFatal("no accessibility bus: %s", qPrintable(m_bus.lastError().message()));
    // The bus starts the registry when it is first asked.
    if (!childrenOf(registryRoot()).isEmpty())
        qFatal("the new accessibility bus has programs on it");
}

AccessibilityBus::~AccessibilityBus()
{
    m_bus = QDBusConnection(u"none"_s);
    QDBusConnection::disconnectFromBus(u"accessibility"_s);
    m_launcher.terminate();
    if (!m_launcher.waitForFinished(timeout))
        m_launcher.kill();
}

QStringList AccessibilityBus::programs() const
{
    QStringList names;
    const auto roots = childrenOf(registryRoot());
    for (const auto &root : roots)
        names.append(property(root, accessibleInterface(), u"Name"_s).toString());
    return names;
}

std::optional<AccessibleNode> AccessibilityBus::read(const QString &program) const
{
    const auto roots = childrenOf(registryRoot());
    for (const auto &root : roots) {
        if (property(root, accessibleInterface(), u"Name"_s).toString() == program)
            return readNode(root, 0);
    }
    return {};
}

bool AccessibilityBus::act(const AccessibleNode &node, const QString &action) const
{
    const auto index = node.actions.indexOf(action);
    if (index < 0)
        return false;
    const auto answer
        = call(node.address, u"org.a11y.atspi.Action"_s, u"DoAction"_s, {static_cast<int>(index)});
    return answer.type() == QDBusMessage::ReplyMessage && answer.arguments().value(0).toBool();
}

bool AccessibilityBus::setValue(const AccessibleNode &node, double value) const
{
    const auto answer = call(node.address, u"org.freedesktop.DBus.Properties"_s, u"Set"_s,
        {u"org.a11y.atspi.Value"_s, u"CurrentValue"_s, QVariant::fromValue(QDBusVariant(value))});
    return answer.type() == QDBusMessage::ReplyMessage;
}

QList<int> AccessibilityBus::extents(const AccessibleNode &node) const
{
    constexpr quint32 onTheScreen = 0;
    const auto answer = call(node.address, u"org.a11y.atspi.Component"_s, u"GetExtents"_s,
        {QVariant::fromValue(onTheScreen)});
    QList<int> numbers(4);
    const auto argument = answer.arguments().value(0).value<QDBusArgument>();
    if (argument.currentType() != QDBusArgument::StructureType)
        return {};
    argument.beginStructure();
    for (int &number : numbers)
        argument >> number;
    argument.endStructure();
    return numbers;
}

void AccessibilityBus::listen()
{
    for (const QString &interface :
        {u"org.a11y.atspi.Event.Object"_s, u"org.a11y.atspi.Event.Window"_s,
            u"org.a11y.atspi.Event.Focus"_s, u"org.a11y.atspi.Event.Document"_s})
        m_bus.connect({}, {}, interface, {}, this, SLOT(hear(QDBusMessage)));
    const AccessibleAddress registry{
        .service = registryRoot().service, .path = u"/org/a11y/atspi/registry"_s};
    for (const QString &event :
        {u"object:"_s, u"object:property-change:"_s, u"object:property-change:accessible-name"_s,
            u"object:property-change:accessible-description"_s,
            u"object:property-change:accessible-value"_s, u"object:state-changed:"_s,
            u"object:state-changed:focused"_s, u"object:children-changed:"_s,
            u"object:text-changed:"_s, u"object:visible-data-changed:"_s, u"object:announcement"_s,
            u"window:"_s, u"focus:"_s})
        call(registry, u"org.a11y.atspi.Registry"_s, u"RegisterEvent"_s, {event});
}

QStringList AccessibilityBus::heard()
{
    // Messages of one sender arrive in their order: what a program told before it answers is here
    // with the answer.
    const auto roots = childrenOf(registryRoot());
    for (const auto &root : roots)
        call(root, u"org.freedesktop.DBus.Peer"_s, u"Ping"_s);
    QCoreApplication::processEvents();
    QStringList lines;
    const auto events = std::exchange(m_heard, {});
    for (const auto &event : events) {
        const AccessibleAddress address{.service = event.service(), .path = event.path()};
        lines.append(event.member() + u' ' + event.arguments().value(0).toString() + ": "_L1
            + property(address, accessibleInterface(), u"Name"_s).toString());
    }
    return lines;
}

void AccessibilityBus::hear(const QDBusMessage &event)
{
    m_heard.append(event);
}

QDBusMessage AccessibilityBus::call(const AccessibleAddress &address, const QString &interface,
    const QString &member, const QVariantList &arguments) const
{
    auto message = QDBusMessage::createMethodCall(address.service, address.path, interface, member);
    message.setArguments(arguments);
    return m_bus.call(message, QDBus::Block, timeout);
}

QVariant AccessibilityBus::property(
    const AccessibleAddress &address, const QString &interface, const QString &name) const
{
    const auto answer
        = call(address, u"org.freedesktop.DBus.Properties"_s, u"Get"_s, {interface, name});
    return answer.arguments().value(0).value<QDBusVariant>().variant();
}

QList<AccessibleAddress> AccessibilityBus::childrenOf(const AccessibleAddress &address) const
{
    QList<AccessibleAddress> children;
    const auto answer = call(address, accessibleInterface(), u"GetChildren"_s);
    forEachStructure(answer.arguments().value(0), [&children](const QDBusArgument &argument) {
        AccessibleAddress child;
        QDBusObjectPath path;
        argument >> child.service >> path;
        child.path = path.path();
        children.append(child);
    });
    return children;
}

std::optional<AccessibleNode> AccessibilityBus::readNode(
    const AccessibleAddress &address, int depth) const
{
    const auto role = call(address, accessibleInterface(), u"GetRoleName"_s);
    // Gone meanwhile.
    if (role.type() != QDBusMessage::ReplyMessage || depth > deepest)
        return {};
    AccessibleNode node;
    node.address = address;
    node.role = role.arguments().value(0).toString();
    node.name = property(address, accessibleInterface(), u"Name"_s).toString();
    node.description = property(address, accessibleInterface(), u"Description"_s).toString();
    node.states = stateNames(qdbus_cast<QList<quint32>>(
        call(address, accessibleInterface(), u"GetState"_s).arguments().value(0)));
    const auto interfaces = qdbus_cast<QStringList>(
        call(address, accessibleInterface(), u"GetInterfaces"_s).arguments().value(0));

    if (const QString action = u"org.a11y.atspi.Action"_s; interfaces.contains(action)) {
        const auto answer = call(address, action, u"GetActions"_s);
        forEachStructure(answer.arguments().value(0), [&node](const QDBusArgument &argument) {
            QString name;
            QString description;
            QString key;
            argument >> name >> description >> key;
            node.actions.append(name);
        });
    }
    if (const QString value = u"org.a11y.atspi.Value"_s; interfaces.contains(value)) {
        node.range = {.value = property(address, value, u"CurrentValue"_s).toDouble(),
            .least = property(address, value, u"MinimumValue"_s).toDouble(),
            .greatest = property(address, value, u"MaximumValue"_s).toDouble(),
            .step = property(address, value, u"MinimumIncrement"_s).toDouble()};
    }
    if (const QString text = u"org.a11y.atspi.Text"_s; interfaces.contains(text))
        node.text = call(
            address, text, u"GetText"_s, {0, property(address, text, u"CharacterCount"_s).toInt()})
                        .arguments()
                        .value(0)
                        .toString();

    const auto children = childrenOf(address);
    if (children.size() > mostChildren)
        return {};
    for (const auto &child : children) {
        auto read = readNode(child, depth + 1);
        if (!read)
            return {};
        node.children.append(std::move(*read));
    }
    return node;
}

} // namespace brimwatch::test
