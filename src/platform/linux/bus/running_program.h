#pragma once

#include "core/result.h"
#include "platform/published_state.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>
#include <QVariantMap>

#include <chrono>
#include <optional>

class QDBusMessage;

namespace brimwatch::platform {

/// Why the running program did not do what it was asked to.
struct ProgramError {
    enum class Kind {
        NotRunning, ///< There is none, or no bus over which to ask it.
        Silent, ///< It does not answer.
        Failed, ///< It answered that it could not.
    };

    Kind kind = Kind::NotRunning;
    QString message = {}; ///< For people; of Failed the program's own.

    bool operator==(const ProgramError &) const = default;
};

/// The running program, asked over the bus by a program that has nothing else to do: each call
/// blocks until the answer, within a timeout.
class RunningProgram {
public:
    /// Whether the bus starts a program that does not run, where it is installed for that.
    enum class Start { No, Yes };

    explicit RunningProgram(QDBusConnection bus);

    Result<PublishedState, ProgramError> state() const;
    /// Returns when the refresh has ended.
    Result<void, ProgramError> refresh() const;
    Result<void, ProgramError> toggle() const;
    Result<void, ProgramError> showSettings() const;
    Result<QString, ProgramError> diagnostics() const;

private:
    Result<QDBusMessage, ProgramError> call(
        QDBusMessage message, Start start, std::chrono::milliseconds timeout) const;
    Result<void, ProgramError> callMember(
        const QString &member, Start start, std::chrono::milliseconds timeout) const;

    QDBusConnection m_bus;
};

/// Follows the running program: its state now and after each change, across its ends and starts.
class ProgramFollower final : public QObject {
    Q_OBJECT

public:
    explicit ProgramFollower(QDBusConnection bus, QObject *parent = nullptr);

    /// Absent while none runs.
    const std::optional<PublishedState> &state() const { return m_state; }

Q_SIGNALS:
    /// The state came, changed or went. Emitted once soon after construction.
    void changed();

private Q_SLOTS:
    void propertiesChanged(const QDBusMessage &signal);
    void lose();

private:
    void read();

    QDBusConnection m_bus;
    QDBusServiceWatcher m_watcher;
    QVariantMap m_properties;
    std::optional<PublishedState> m_state;
    int m_reading = 0; ///< The number of the last reading; answers to older ones are ignored.
};

} // namespace brimwatch::platform
