#include "views/dashboard/refresh_spin.h"

namespace brimwatch::views {

RefreshSpin::RefreshSpin(std::function<bool()> goesOn, QObject *parent)
    : QObject(parent)
    , m_goesOn(std::move(goesOn))
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.setInterval(turn);
    connect(&m_timer, &QTimer::timeout, this, &RefreshSpin::endTurn);
}

void RefreshSpin::trigger()
{
    if (m_isSpinning)
        return;
    m_isSpinning = true;
    Q_EMIT isSpinningChanged();
    startTurn(true);
}

void RefreshSpin::startTurn(bool easesInOut)
{
    // The curve first: the angle's change starts the animation.
    if (m_easesInOut != easesInOut) {
        m_easesInOut = easesInOut;
        Q_EMIT easesInOutChanged();
    }
    m_rotationDegrees += 360;
    Q_EMIT rotationDegreesChanged();
    m_timer.start();
}

void RefreshSpin::endTurn()
{
    if (m_goesOn()) {
        startTurn(false);
        return;
    }
    m_isSpinning = false;
    Q_EMIT isSpinningChanged();
}

} // namespace brimwatch::views
