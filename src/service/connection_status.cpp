#include "service/connection_status.h"

namespace brimwatch::service {

using namespace Qt::Literals::StringLiterals;

QString ConnectionStatus::displayText() const
{
    if (const auto *connected = std::get_if<Connected>(&m_state))
        return u"Connected (Port "_s + QString::number(connected->port) + u')';
    if (const auto *offline = std::get_if<Offline>(&m_state))
        return offline->message;
    return u"Connecting..."_s;
}

model::ColorToken ConnectionStatus::statusDotColor() const
{
    // Views draw it, so the healthy green is the system's: see ColorToken.
    if (isConnected())
        return model::ColorToken::SystemGreen;
    return isOffline() ? model::ColorToken::SystemRed : model::ColorToken::SystemOrange;
}

} // namespace brimwatch::service
