#include "platform/linux/popover/x11_popover.h"

#include <QLoggingCategory>
#include <QMouseEvent>
#include <QWindow>

#include <chrono>
#include <utility>

namespace brimwatch::platform {

Q_LOGGING_CATEGORY(popoverLog, "brimwatch.popover", QtInfoMsg)

namespace {

// A panel may keep its grab of the pointer for a moment after it has reported the click.
constexpr int grabAttempts = 50;
constexpr std::chrono::milliseconds grabInterval{10};

} // namespace

X11Popover::X11Popover(
    PopoverContentFactory factory, WindowSurroundings surroundings, QObject *parent)
    : PlacedPopover(
          std::move(factory), std::move(surroundings), Qt::Popup | Qt::FramelessWindowHint, parent)
{
    m_grabTimer.setInterval(grabInterval);
    connect(&m_grabTimer, &QTimer::timeout, this, &X11Popover::grab);
}

void X11Popover::makeKey()
{
    if (!isShown())
        return;
    m_grabAttemptsLeft = grabAttempts;
    grab();
}

void X11Popover::grab()
{
    if (!isShown() || window() == nullptr) {
        m_grabTimer.stop();
        return;
    }
    const bool pointer = window()->setMouseGrabEnabled(true);
    const bool keyboard = window()->setKeyboardGrabEnabled(true);
    if (pointer && keyboard) {
        m_grabTimer.stop();
        return;
    }
    if (--m_grabAttemptsLeft > 0) {
        m_grabTimer.start();
    } else {
        m_grabTimer.stop();
        qCDebug(popoverLog) << "pointer or keyboard stay with another program; a press elsewhere "
                               "will not close the popover";
    }
}

void X11Popover::hidden()
{
    m_grabTimer.stop();
    window()->setMouseGrabEnabled(false);
    window()->setKeyboardGrabEnabled(false);
}

bool X11Popover::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == window() && event->type() == QEvent::MouseButtonPress) {
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-static-cast-downcast): type() says so
        const auto *press = static_cast<QMouseEvent *>(event);
        if (!QRectF(QPointF(), window()->size()).contains(press->position())) {
            performClose();
            return true;
        }
    }
    return PlacedPopover::eventFilter(watched, event);
}

} // namespace brimwatch::platform
