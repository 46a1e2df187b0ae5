#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QList>
#include <QObject>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <optional>

namespace brimwatch::test {

/// An object of a program on the accessibility bus.
struct AccessibleAddress {
    QString service;
    QString path;
};

/// A range with a place in it: that of a slider, say.
struct AccessibleRange {
    double value = 0;
    double least = 0;
    double greatest = 0;
    double step = 0; ///< 0 where it has none.
};

/// An object as a screen reader reads it, with all below it.
struct AccessibleNode {
    AccessibleAddress address;
    QString role; ///< As the protocol's table of roles has it.
    QString name;
    QString description;
    QStringList states; ///< In the order of the protocol.
    QStringList actions;
    std::optional<AccessibleRange> range;
    QString text; ///< To move in, letter by letter; empty where there is none.
    QList<AccessibleNode> children;

    bool is(const QString &state) const { return states.contains(state); }
    /// Itself or the first below it with that role and name; null when there is none.
    const AccessibleNode *find(const QString &wantedRole, const QString &wantedName) const;
};

/// A desktop's accessibility bus, switched on and with its registry, on the session bus of the test
/// and read from outside as a screen reader does. Ends with this object.
///
/// No call here runs the test's event loop, unless it says so.
class AccessibilityBus : public QObject {
    Q_OBJECT

public:
    AccessibilityBus();
    ~AccessibilityBus() override;

    /// The programs that can be read, by their names.
    QStringList programs() const;
    /// All that the program of that name shows, itself the root; absent while it is not there, or
    /// changes too much for one reading.
    std::optional<AccessibleNode> read(const QString &program) const;
    /// Has the object do the action of that name. False where it has none such, or refuses.
    bool act(const AccessibleNode &node, const QString &action) const;
    /// Has the object go to a place in its range. False where it refuses.
    bool setValue(const AccessibleNode &node, double value) const;
    /// The object's place on the screen: left, top, width, height.
    QList<int> extents(const AccessibleNode &node) const;

    /// Asks every program to tell of all that happens to its objects.
    void listen();
    /// What happened since the last question, each as "event detail: object's name". Runs the event
    /// loop; all that the program sent before this question is in.
    QStringList heard();

private Q_SLOTS:
    void hear(const QDBusMessage &event);

private:
    QDBusMessage call(const AccessibleAddress &address, const QString &interface,
        const QString &member, const QVariantList &arguments = {}) const;
    QList<AccessibleAddress> childrenOf(const AccessibleAddress &address) const;
    std::optional<AccessibleNode> readNode(const AccessibleAddress &address, int depth) const;
    QVariant property(
        const AccessibleAddress &address, const QString &interface, const QString &name) const;

    QTemporaryDir m_folder;
    QProcess m_launcher;
    QDBusConnection m_bus;
    QList<QDBusMessage> m_heard;
};

} // namespace brimwatch::test
