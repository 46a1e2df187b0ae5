#include "platform/linux/popover/window_popover.h"

#include "platform/linux/popover/popover_place.h"

#include <QEvent>
#include <QGuiApplication>
#include <QPainter>
#include <QRasterWindow>
#include <QScreen>

#include <utility>

namespace brimwatch::platform {

WindowPopover::WindowPopover(
    PopoverContentFactory factory, WindowSurroundings surroundings, QObject *parent)
    : PlacedPopover(
          std::move(factory), std::move(surroundings), Qt::Tool | Qt::FramelessWindowHint, parent)
{
}

void WindowPopover::show(const ItemAnchor &anchor)
{
    // Deliberate: not at QCursor::pos(). Over windows of other programs Qt does not know where the
    // pointer is, and reports where it was last.
    if (!anchor.bounds && !anchor.pointer)
        showUnclicked(std::nullopt);
    else
        PlacedPopover::show(anchor);
}

void WindowPopover::makeKey()
{
    if (isShown())
        window()->requestActivate();
}

QRect WindowPopover::windowPlace(const QRect &item, const QSize &size, const QMargins &shadow,
    const QRect &screen, const QRect &workArea) const
{
    return popoverPlace(item, size.grownBy(shadow), screen, workArea);
}

bool WindowPopover::eventFilter(QObject *watched, QEvent *event)
{
    // Queued: the window still handles the event.
    if (watched == window() && event->type() == QEvent::FocusOut)
        QMetaObject::invokeMethod(this, &WindowPopover::performClose, Qt::QueuedConnection);
    return PlacedPopover::eventFilter(watched, event);
}

/// An invisible window over a whole screen, except where the popover is.
class XwaylandPopover::Catcher final : public QRasterWindow {
public:
    Catcher(XwaylandPopover &popover, QScreen *screen, const QRect &hole)
        : m_popover(popover)
    {
        QSurfaceFormat transparent = format();
        transparent.setAlphaBufferSize(8);
        setFormat(transparent);
        setFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint
            | Qt::WindowDoesNotAcceptFocus);
        setScreen(screen);
        setGeometry(screen->geometry());
        setMask(QRegion(QRect(QPoint(), screen->size()))
                .subtracted(hole.translated(-screen->geometry().topLeft())));
        show();
    }

protected:
    void paintEvent(QPaintEvent * /*event*/) override
    {
        QPainter painter(this);
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.fillRect(QRect(QPoint(), size()), Qt::transparent);
    }
    void mousePressEvent(QMouseEvent * /*event*/) override
    {
        // Queued: it deletes this window.
        QMetaObject::invokeMethod(&m_popover, &Popover::performClose, Qt::QueuedConnection);
    }

private:
    XwaylandPopover &m_popover;
};

XwaylandPopover::XwaylandPopover(
    PopoverContentFactory factory, WindowSurroundings surroundings, QObject *parent)
    : WindowPopover(std::move(factory), std::move(surroundings), parent)
{
}

XwaylandPopover::~XwaylandPopover() = default;

void XwaylandPopover::aboutToShow()
{
    const auto screens = QGuiApplication::screens();
    for (QScreen *screen : screens)
        m_catchers.push_back(std::make_unique<Catcher>(*this, screen, frame()));
}

void XwaylandPopover::hidden()
{
    m_catchers.clear();
}

} // namespace brimwatch::platform
