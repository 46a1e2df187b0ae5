#include "platform/linux/popover/placed_popover.h"

#include "platform/linux/popover/freed_memory.h"
#include "platform/linux/popover/popover_place.h"
#include "platform/linux/popover/undecorated_window.h"
#include "platform/linux/x11/native_geometry.h"

#include <QCursor>
#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QWindow>

#include <utility>

namespace brimwatch::platform {

namespace {

// How far the pointer may be from where it was clicked by the time that we hear of it.
constexpr int near = 100;

bool areNear(QPoint a, QPoint b)
{
    return (a - b).manhattanLength() <= near;
}

/// Where the item was clicked, in device-independent pixels, by what the panel tells of it. Panels
/// on a scaled screen tell it in native pixels (Plasma) or in their own (LXQt, with Qt's scale
/// factor), so the pointer decides where it agrees with either. It does not when the item was
/// chosen by a key.
QPoint placeOfClick(QPoint told)
{
    const QScreen *screen = screenAtNative(told);
    const QPoint scaled = screen != nullptr ? fromNative(told, screen) : told;
    const QPoint pointer = QCursor::pos();
    return areNear(pointer, scaled) || areNear(pointer, told) ? pointer : scaled;
}

} // namespace

PlacedPopover::PlacedPopover(PopoverContentFactory factory, WindowSurroundings surroundings,
    Qt::WindowFlags flags, QObject *parent)
    : Popover(parent)
    , m_factory(std::move(factory))
    , m_surroundings(std::move(surroundings))
    , m_flags(flags)
{
    // The item has moved with its panel, or is gone with it.
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, &PlacedPopover::performClose);
}

PlacedPopover::~PlacedPopover()
{
    if (m_window != nullptr)
        m_window->removeEventFilter(this);
}

QWindow *PlacedPopover::window() const
{
    return m_window;
}

QRect PlacedPopover::frame() const
{
    return m_window->geometry() - m_content->shadow();
}

void PlacedPopover::prepare()
{
    load();
}

void PlacedPopover::release()
{
    if (m_shown || m_window == nullptr)
        return;
    m_window->removeEventFilter(this);
    m_content.reset();
    returnFreedMemory(*this);
}

void PlacedPopover::show(const ItemAnchor &anchor)
{
    if (!anchor.bounds && !anchor.pointer) {
        // Qt knows the pointer's position on every panel tried, also where the panel reports a
        // wrong one.
        const QPoint cursor = QCursor::pos();
        showBeside(QRect(cursor, QSize(1, 1)), QGuiApplication::screenAt(cursor));
        return;
    }
    if (!anchor.bounds) {
        const QPoint place = placeOfClick(*anchor.pointer);
        showBeside(QRect(place, QSize(1, 1)), QGuiApplication::screenAt(place));
        return;
    }
    QScreen *screen = screenAtNative(anchor.pointer.value_or(anchor.bounds->center()));
    showBeside(fromNative(*anchor.bounds, screen), screen);
}

void PlacedPopover::showUnclicked(const std::optional<QRect> &item)
{
    if (item) {
        PlacedPopover::show({.bounds = item, .pointer = {}});
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
    showBeside(likelyItemPlace(screen->geometry(), m_surroundings.workArea(*screen)), screen);
}

void PlacedPopover::showBeside(const QRect &item, QScreen *screen)
{
    if (m_shown || !load())
        return;
    m_shown = true;
    m_content->setTranslucent(m_surroundings.isComposited());
    m_content->setShown(true);
    m_lastItem = item;
    if (screen == nullptr)
        screen = QGuiApplication::primaryScreen();
    if (screen != nullptr) {
        m_window->setScreen(screen);
        closeWith(screen);
        m_window->setGeometry(windowPlace(item, m_content->size(), m_content->shadow(),
            screen->geometry(), m_surroundings.workArea(*screen)));
    }
    aboutToShow();
    showUndecorated(*m_window);
}

QRect PlacedPopover::windowPlace(const QRect &item, const QSize &size, const QMargins &shadow,
    const QRect &screen, const QRect &workArea) const
{
    return popoverPlace(item, size, screen, workArea) + shadow;
}

void PlacedPopover::showSettings()
{
    if (m_content)
        m_content->showSettings();
}

void PlacedPopover::performClose()
{
    if (m_window != nullptr)
        m_window->hide();
}

/// When the screen changes its size, its panels move, and the item with them.
void PlacedPopover::closeWith(QScreen *screen)
{
    if (m_screen == screen)
        return;
    if (m_screen != nullptr)
        disconnect(m_screen, nullptr, this, nullptr);
    m_screen = screen;
    connect(screen, &QScreen::geometryChanged, this, &PlacedPopover::performClose);
}

bool PlacedPopover::load()
{
    if (m_window != nullptr)
        return true;
    m_content = m_factory();
    if (!m_content)
        return false;
    m_window = &m_content->window();
    m_window->setFlags(m_flags);
    m_window->installEventFilter(this);
    return true;
}

bool PlacedPopover::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_window && event->type() == QEvent::Hide && m_shown) {
        m_shown = false;
        hidden();
        m_content->setShown(false);
        Q_EMIT didClose();
    }
    return Popover::eventFilter(watched, event);
}

} // namespace brimwatch::platform
