#include "platform/linux/bus/running_program.h"

#include "core/plain_text.h"
#include "platform/linux/bus/bus_calls.h"
#include "platform/linux/bus/bus_names.h"
#include "platform/linux/bus/bus_state.h"

#include <QDBusArgument>
#include <QDBusMessage>

#include <utility>

namespace brimwatch::platform {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr auto propertiesInterface = "org.freedesktop.DBus.Properties"_L1;

constexpr std::chrono::seconds answerTimeout{5};
// A refresh tries each daemon for four seconds.
constexpr std::chrono::seconds refreshTimeout{60};

QDBusMessage memberCall(const QString &member)
{
    return QDBusMessage::createMethodCall(bus::service, bus::path, bus::interface, member);
}

QDBusMessage readingCall()
{
    auto call
        = QDBusMessage::createMethodCall(bus::service, bus::path, propertiesInterface, u"GetAll"_s);
    call << QString(bus::interface);
    return call;
}

ProgramError errorOf(const QDBusMessage &answer)
{
    switch (bus::outcomeOf(answer)) {
    case bus::CallOutcome::NobodyThere:
        return {.kind = ProgramError::Kind::NotRunning, .message = u"Brimwatch is not running"_s};
    case bus::CallOutcome::NoReply:
        return {.kind = ProgramError::Kind::Silent,
            .message = u"Brimwatch is running, but it does not answer"_s};
    case bus::CallOutcome::Replied:
        break;
    }
    return {.kind = ProgramError::Kind::Failed,
        .message = asOneLine(answer.errorMessage(), PublishedState::longestText)};
}

} // namespace

RunningProgram::RunningProgram(QDBusConnection bus)
    : m_bus(std::move(bus))
{
}

Result<PublishedState, ProgramError> RunningProgram::state() const
{
    return call(readingCall(), Start::No, answerTimeout).map([](const QDBusMessage &answer) {
        return fromBusProperties(qdbus_cast<QVariantMap>(answer.arguments().value(0)));
    });
}

Result<void, ProgramError> RunningProgram::refresh() const
{
    return callMember(u"Refresh"_s, Start::No, refreshTimeout);
}

Result<void, ProgramError> RunningProgram::toggle() const
{
    return callMember(u"Toggle"_s, Start::Yes, refreshTimeout);
}

Result<void, ProgramError> RunningProgram::showSettings() const
{
    return callMember(u"ShowSettings"_s, Start::Yes, refreshTimeout);
}

Result<QString, ProgramError> RunningProgram::diagnostics() const
{
    return call(memberCall(u"Diagnostics"_s), Start::No, answerTimeout)
        .map([](const QDBusMessage &answer) { return answer.arguments().value(0).toString(); });
}

Result<QDBusMessage, ProgramError> RunningProgram::call(
    QDBusMessage message, Start start, std::chrono::milliseconds timeout) const
{
    message.setAutoStartService(start == Start::Yes);
    auto answer = m_bus.call(message, QDBus::Block, static_cast<int>(timeout.count()));
    if (answer.type() != QDBusMessage::ReplyMessage)
        return fail(errorOf(answer));
    return answer;
}

Result<void, ProgramError> RunningProgram::callMember(
    const QString &member, Start start, std::chrono::milliseconds timeout) const
{
    return call(memberCall(member), start, timeout).map([](const QDBusMessage &) { });
}

ProgramFollower::ProgramFollower(QDBusConnection bus, QObject *parent)
    : QObject(parent)
    , m_bus(std::move(bus))
    , m_watcher(bus::service, m_bus, QDBusServiceWatcher::WatchForOwnerChange)
{
    connect(&m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
        [this](const QString &, const QString &, const QString &newOwner) {
            if (newOwner.isEmpty())
                lose();
            else
                read();
        });
    m_bus.connect(bus::service, bus::path, propertiesInterface, u"PropertiesChanged"_s, this,
        SLOT(propertiesChanged(QDBusMessage)));
    m_bus.connect({}, u"/org/freedesktop/DBus/Local"_s, u"org.freedesktop.DBus.Local"_s,
        u"Disconnected"_s, this, SLOT(lose()));
    read();
}

void ProgramFollower::read()
{
    const int reading = ++m_reading;
    auto call = readingCall();
    call.setAutoStartService(false);
    bus::whenAnswered(
        m_bus, call, this, answerTimeout, [this, reading](const QDBusMessage &answer) {
            if (reading != m_reading)
                return;
            if (answer.type() != QDBusMessage::ReplyMessage) {
                lose();
                return;
            }
            // Deliberate: nothing is merged. What was signalled before this answer is in it.
            m_properties = qdbus_cast<QVariantMap>(answer.arguments().value(0));
            m_state = fromBusProperties(m_properties);
            Q_EMIT changed();
        });
}

void ProgramFollower::propertiesChanged(const QDBusMessage &signal)
{
    const auto arguments = signal.arguments();
    if (arguments.value(0).toString() != bus::interface)
        return;
    if (!m_state) {
        // It did not answer the last reading, and works again.
        read();
        return;
    }
    const auto changes = qdbus_cast<QVariantMap>(arguments.value(1));
    for (auto change = changes.cbegin(); change != changes.cend(); ++change) {
        // Names that the interface does not have would only take memory.
        if (m_properties.contains(change.key()))
            m_properties.insert(change.key(), change.value());
    }
    m_state = fromBusProperties(m_properties);
    Q_EMIT changed();
}

void ProgramFollower::lose()
{
    ++m_reading;
    m_properties.clear();
    m_state.reset();
    Q_EMIT changed();
}

} // namespace brimwatch::platform
