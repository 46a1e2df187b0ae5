#include "platform/linux/x11_popover.h"

#include "platform/linux/native_geometry.h"
#include "platform/linux/popover_place.h"

#include <QCursor>
#include <QGuiApplication>
#include <QLoggingCategory>
#include <QMouseEvent>
#include <QScreen>
#include <QWindow>

#include <utility>

namespace brimwatch::platform {

Q_LOGGING_CATEGORY(popoverLog, "brimwatch.platform", QtInfoMsg)

namespace {

// A panel may hold the pointer for a moment after it has told us of the click.
constexpr int grabAttempts = 50;
constexpr int grabInterval = 10;

} // namespace

X11Popover::X11Popover(PopoverContentFactory factory, QObject *parent)
    : Popover(parent)
    , m_factory(std::move(factory))
{
    m_grabTimer.setInterval(grabInterval);
    connect(&m_grabTimer, &QTimer::timeout, this, &X11Popover::grab);
}

X11Popover::~X11Popover()
{
    if (m_window != nullptr)
        m_window->removeEventFilter(this);
}

bool X11Popover::isShown() const
{
    return m_shown;
}

void X11Popover::prepare()
{
    load();
}

void X11Popover::show(const ItemAnchor &anchor)
{
    if (!anchor.bounds && !anchor.pointer) {
        // The toolkit's idea of the pointer is right on every panel tried, also where the panel's
        // is not.
        const QPoint cursor = QCursor::pos();
        showBeside(QRect(cursor, QSize(1, 1)), QGuiApplication::screenAt(cursor));
        return;
    }
    const QPoint pointer = anchor.pointer ? *anchor.pointer : anchor.bounds->center();
    QScreen *screen = screenAtNative(pointer);
    const QRect item = anchor.bounds ? fromNative(*anchor.bounds, screen)
                                     : QRect(fromNative(pointer, screen), QSize(1, 1));
    showBeside(item, screen);
}

void X11Popover::showUnclicked(const std::optional<QRect> &item)
{
    if (item) {
        show({.bounds = item, .pointer = {}});
        return;
    }
    if (m_lastItem) {
        // Its screen may be gone by now.
        if (QScreen *screen = QGuiApplication::screenAt(m_lastItem->center())) {
            showBeside(*m_lastItem, screen);
            return;
        }
    }
    QScreen *screen = QGuiApplication::screenAt(QCursor::pos());
    if (screen == nullptr)
        screen = QGuiApplication::primaryScreen();
    if (screen == nullptr)
        return;
    showBeside(likelyItemPlace(screen->geometry(), screen->availableGeometry()), screen);
}

void X11Popover::showBeside(const QRect &item, QScreen *screen)
{
    if (m_shown || !load())
        return;
    m_shown = true;
    m_content->setShown(true);
    m_lastItem = item;
    if (screen == nullptr)
        screen = QGuiApplication::primaryScreen();
    if (screen != nullptr) {
        m_window->setScreen(screen);
        m_window->setGeometry(
            popoverPlace(item, m_content->size(), screen->geometry(), screen->availableGeometry()));
    }
    m_window->show();
}

void X11Popover::makeKey()
{
    if (!m_shown)
        return;
    m_grabAttemptsLeft = grabAttempts;
    grab();
}

void X11Popover::showSettings()
{
    if (m_content)
        m_content->showSettings();
}

void X11Popover::performClose()
{
    if (m_window != nullptr)
        m_window->hide();
}

bool X11Popover::load()
{
    if (m_window != nullptr)
        return true;
    m_content = m_factory();
    if (!m_content)
        return false;
    m_window = &m_content->window();
    m_window->setFlags(Qt::Popup | Qt::FramelessWindowHint);
    m_window->installEventFilter(this);
    return true;
}

void X11Popover::grab()
{
    if (!m_shown || m_window == nullptr) {
        m_grabTimer.stop();
        return;
    }
    const bool pointer = m_window->setMouseGrabEnabled(true);
    const bool keyboard = m_window->setKeyboardGrabEnabled(true);
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

bool X11Popover::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_window)
        return Popover::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::MouseButtonPress: {
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-static-cast-downcast): told by type()
        const auto *press = static_cast<QMouseEvent *>(event);
        if (!QRectF(QPointF(), m_window->size()).contains(press->position())) {
            performClose();
            return true;
        }
        break;
    }
    case QEvent::Hide:
        if (m_shown) {
            m_shown = false;
            m_grabTimer.stop();
            m_window->setMouseGrabEnabled(false);
            m_window->setKeyboardGrabEnabled(false);
            m_content->setShown(false);
            Q_EMIT didClose();
        }
        break;
    default:
        break;
    }
    return Popover::eventFilter(watched, event);
}

} // namespace brimwatch::platform
