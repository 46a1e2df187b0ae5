#pragma once

#include "support/fake_watcher.h"

#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <functional>

namespace brimwatch::test {

/// A server of desktop notifications. Gone from the bus at its end.
class FakeNotificationServer final : public QDBusVirtualObject {
public:
    enum class Manners { Answers, Holds, Refuses, AnswersNonsense };

    /// A call of Notify as it came.
    struct Call {
        QString signature;
        QString application;
        uint replaces = 0;
        QString icon;
        QString title;
        QString body;
        QStringList actions;
        QVariantMap hints;
        int expires = 0;
    };

    /// The first notification gets `firstId`; one that replaces a known one keeps its id.
    explicit FakeNotificationServer(uint firstId = 1);
    ~FakeNotificationServer() override;

    /// Stays on the bus, for another one to take its place.
    void giveUpName();
    /// Answers the oldest call of Notify that is held, with that id.
    void answerHeld(uint id);
    void signal(const QString &member, const QVariantList &arguments);
    void close(uint id);
    void invoke(uint id, const QString &action);
    QStringList titles() const;

    QString introspect(const QString &path) const override;
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;

    QStringList capabilities{QStringLiteral("actions"), QStringLiteral("body"),
        QStringLiteral("body-markup"), QStringLiteral("sound")};
    Manners onGetCapabilities = Manners::Answers;
    Manners onNotify = Manners::Answers;
    int asked = 0; ///< How often for its capabilities.
    QList<Call> calls;
    QList<QDBusMessage> held; ///< Calls of Notify that have no answer yet.
    std::function<void()> onCall; ///< After each call of Notify.

private:
    void send(const QDBusMessage &message);
    void answer(Manners manners, const QDBusMessage &call, const QVariant &value);

    OtherProgram m_program;
    uint m_nextId;
};

} // namespace brimwatch::test
