#include "platform/linux/bus/bus_calls.h"

#include <QDBusError>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QDBusReply>
#include <QString>
#include <QVariantList>

#include <utility>

namespace brimwatch::platform::bus {

using namespace Qt::Literals::StringLiterals;

void whenAnswered(const QDBusConnection &bus, const QDBusMessage &call, QObject *context,
    std::chrono::milliseconds timeout, Answered answered)
{
    // A connection that does not exist never answers.
    const auto pending = bus.isConnected()
        ? bus.asyncCall(call, static_cast<int>(timeout.count()))
        : QDBusPendingCall::fromError(QDBusError(QDBusError::Disconnected, u"no bus"_s));
    auto *watcher = new QDBusPendingCallWatcher(pending, context);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context,
        [answered = std::move(answered)](QDBusPendingCallWatcher *finished) {
            finished->deleteLater();
            answered(finished->reply());
        });
}

CallOutcome outcomeOf(const QDBusMessage &answer)
{
    switch (QDBusError(answer).type()) {
    case QDBusError::ServiceUnknown:
    case QDBusError::Disconnected:
    case QDBusError::NoServer:
    case QDBusError::InternalError:
        return CallOutcome::NobodyThere;
    case QDBusError::NoReply:
    case QDBusError::Timeout:
    case QDBusError::TimedOut:
        return CallOutcome::NoReply;
    default:
        // The bus's error for a name that it was told not to start; QtDBus has no number for it.
        return answer.errorName() == "org.freedesktop.DBus.Error.NameHasNoOwner"_L1
            ? CallOutcome::NobodyThere
            : CallOutcome::Replied;
    }
}

QDBusMessage daemonCall(const QString &member, const QVariantList &arguments)
{
    auto call = QDBusMessage::createMethodCall(
        daemonService, u"/org/freedesktop/DBus"_s, daemonService, member);
    call.setArguments(arguments);
    return call;
}

void requestName(const QDBusConnection &bus, const QString &name, QObject *context,
    std::chrono::milliseconds timeout, std::function<void(NameResult)> answered)
{
    constexpr uint doNotQueue = 4;
    constexpr uint primaryOwner = 1;
    constexpr uint exists = 3;
    constexpr uint alreadyOwner = 4;
    whenAnswered(bus, daemonCall(u"RequestName"_s, {name, doNotQueue}), context, timeout,
        [answered = std::move(answered)](const QDBusReply<uint> &reply) {
            const uint result = reply.isValid() ? reply.value() : 0;
            if (result == primaryOwner || result == alreadyOwner)
                answered(NameResult::Owner);
            else
                answered(result == exists ? NameResult::Taken : NameResult::Refused);
        });
}

void releaseName(const QDBusConnection &bus, const QString &name)
{
    bus.send(daemonCall(u"ReleaseName"_s, {name}));
}

void findOwner(const QDBusConnection &bus, const QString &name, QObject *context,
    std::chrono::milliseconds timeout,
    std::function<void(const std::optional<QString> &owner)> answered)
{
    whenAnswered(bus, daemonCall(u"GetNameOwner"_s, {name}), context, timeout,
        [answered = std::move(answered)](const QDBusMessage &answer) {
            if (outcomeOf(answer) == CallOutcome::NoReply)
                answered(std::nullopt);
            else
                answered(QDBusReply<QString>(answer).value());
        });
}

} // namespace brimwatch::platform::bus
