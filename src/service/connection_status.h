#pragma once

#include "model/color_token.h"

#include <QObject>
#include <QString>

#include <cstdint>
#include <variant>

namespace brimwatch::service {

/// The state of the connection to the daemon.
class ConnectionStatus {
public:
    struct Connected {
        std::int64_t port = 0;
        bool operator==(const Connected &) const = default;
    };
    struct Offline {
        QString message;
        bool operator==(const Offline &) const = default;
    };
    struct Connecting {
        bool operator==(const Connecting &) const = default;
    };
    using State = std::variant<Connecting, Connected, Offline>;

    ConnectionStatus() = default; ///< Connecting.

    static ConnectionStatus connected(std::int64_t port)
    {
        return ConnectionStatus(Connected{port});
    }
    static ConnectionStatus offline(const QString &message)
    {
        return ConnectionStatus(Offline{message});
    }
    static ConnectionStatus connecting() { return {}; }

    const State &state() const { return m_state; }
    bool isConnected() const { return std::holds_alternative<Connected>(m_state); }
    bool isOffline() const { return std::holds_alternative<Offline>(m_state); }
    bool isConnecting() const { return std::holds_alternative<Connecting>(m_state); }

    /// "Connected (Port 42)", the failure's message, or "Connecting..."
    QString displayText() const;
    model::ColorToken statusDotColor() const;

    bool operator==(const ConnectionStatus &) const = default;

private:
    explicit ConnectionStatus(State state)
        : m_state(std::move(state))
    {
    }

    State m_state;
};

} // namespace brimwatch::service
