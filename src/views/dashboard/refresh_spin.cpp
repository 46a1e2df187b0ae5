#include "views/dashboard/refresh_spin.h"

#include "views/models/assign.h"

#include <utility>

namespace brimwatch::views {

RefreshSpin::RefreshSpin(std::function<bool()> shouldContinue, QObject *parent)
    : QObject(parent)
    , m_shouldContinue(std::move(shouldContinue))
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.setInterval(turn);
    connect(&m_timer, &QTimer::timeout, this, &RefreshSpin::endTurn);
}

void RefreshSpin::trigger()
{
    if (!assign(m_isSpinning, true))
        return;
    Q_EMIT isSpinningChanged();
    startTurn(true);
}

void RefreshSpin::startTurn(bool easesInOut)
{
    // The easing first, since the change of the angle starts the animation.
    if (assign(m_easesInOut, easesInOut))
        Q_EMIT easesInOutChanged();
    m_rotationDegrees += 360;
    Q_EMIT rotationDegreesChanged();
    m_timer.start();
}

void RefreshSpin::endTurn()
{
    if (m_shouldContinue()) {
        startTurn(false);
        return;
    }
    m_isSpinning = false;
    Q_EMIT isSpinningChanged();
}

} // namespace brimwatch::views
