#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QLatin1StringView>
#include <QVariantList>

#include <chrono>
#include <functional>
#include <optional>

class QObject;
class QString;

namespace brimwatch::platform::bus {

/// The bus itself as a service.
inline constexpr QLatin1StringView daemonService("org.freedesktop.DBus");

/// What D-Bus libraries wait by default.
inline constexpr std::chrono::seconds usualTimeout{25};

using Answered = std::function<void(const QDBusMessage &answer)>;

/// Sends the call and hands its answer to `answered` from the event loop: a reply, or an error when
/// there is none in time. Not when `context` is gone by then. QDBusReply reads a typed answer.
///
/// Deliberate: nobody may ask the answer for its sender. QDBusMessage::service() of a reply is its
/// sender in Qt 6.4 and empty from Qt 6.8 on.
void whenAnswered(const QDBusConnection &bus, const QDBusMessage &call, QObject *context,
    std::chrono::milliseconds timeout, Answered answered);

/// Who answered a call.
enum class CallOutcome {
    Replied, ///< The program that was called: a reply, or an error of its own.
    NobodyThere, ///< The bus, because nobody has that name, or there is no bus.
    NoReply, ///< Nobody in time, or the program left the bus before it answered.
};
CallOutcome outcomeOf(const QDBusMessage &answer);

/// A call of a method of the bus itself.
QDBusMessage daemonCall(const QString &member, const QVariantList &arguments);

enum class NameResult {
    Owner, ///< The name is ours now.
    Taken, ///< Another connection has it.
    Refused, ///< The bus does not give it to us, or does not answer.
};

/// Asks the bus for a name, without queueing for it.
void requestName(const QDBusConnection &bus, const QString &name, QObject *context,
    std::chrono::milliseconds timeout, std::function<void(NameResult)> answered);
/// Gives it back, without waiting for the answer.
void releaseName(const QDBusConnection &bus, const QString &name);

/// The connection that owns a name, empty when none does; absent when the bus does not say so in
/// time, as at a slow login.
void findOwner(const QDBusConnection &bus, const QString &name, QObject *context,
    std::chrono::milliseconds timeout,
    std::function<void(const std::optional<QString> &owner)> answered);

} // namespace brimwatch::platform::bus
