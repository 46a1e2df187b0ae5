#include "platform/macos/mac_popover.h"

#include <QCoreApplication>
#include <QMouseEvent>
#include <QWindow>

namespace brimwatch::platform {
namespace {

std::unique_ptr<QWindow> foreignWindow(std::uintptr_t view)
{
    return std::unique_ptr<QWindow>(QWindow::fromWinId(view));
}

} // namespace

MacPopover::MacPopover(
    PopoverContentFactory factory, std::function<void *()> button, QObject *parent)
    : MacPopover(std::move(factory), std::move(button), foreignWindow, parent)
{
}

MacPopover::MacPopover(PopoverContentFactory factory, std::function<void *()> button,
    WindowOfView windowOfView, QObject *parent)
    : Popover(parent)
    , m_factory(std::move(factory))
    , m_windowOfView(std::move(windowOfView))
    , m_native(
          contentWidth, contentHeight, std::move(button), [this] { closed(); },
          [this](std::optional<NativePoint> place) { hovered(place); })
{
}

MacPopover::~MacPopover() = default;

bool MacPopover::isShown() const
{
    return m_native.isShown();
}

void MacPopover::prepare()
{
    load();
}

void MacPopover::release()
{
    if (isShown())
        return;
    m_window = nullptr;
    m_content.reset();
}

void MacPopover::show(const ItemAnchor & /*anchor*/)
{
    open();
}

void MacPopover::showUnclicked(const std::optional<QRect> & /*item*/)
{
    open();
}

void MacPopover::makeKey()
{
    if (isShown())
        m_native.makeKey();
}

void MacPopover::showSettings()
{
    if (m_content)
        m_content->showSettings();
}

void MacPopover::performClose()
{
    m_native.performClose();
}

bool MacPopover::load()
{
    if (m_content)
        return true;
    auto content = m_factory();
    if (!content)
        return false;
    if (!m_container)
        m_container = m_windowOfView(m_native.contentView());
    if (!m_container)
        return false;
    m_content = std::move(content);
    m_window = &m_content->window();
    m_window->setParent(m_container.get());
    connect(m_window, &QWindow::widthChanged, this, &MacPopover::followSize);
    connect(m_window, &QWindow::heightChanged, this, &MacPopover::followSize);
    followSize();
    return true;
}

void MacPopover::open()
{
    if (isShown() || !load())
        return;
    m_content->setShown(true);
    m_native.show();
    if (!m_native.isShown()) {
        m_content->setShown(false);
        return;
    }
    // Not before its container is in a window, from which it has its position and scale.
    m_window->setVisible(true);
}

void MacPopover::closed()
{
    // The system reports a close after its animation; by then the popover may be open again.
    if (!isShown()) {
        if (m_window != nullptr)
            m_window->setVisible(false);
        if (m_content)
            m_content->setShown(false);
    }
    Q_EMIT didClose();
}

/// What Qt's own window would be told if the program were the active one.
void MacPopover::hovered(std::optional<NativePoint> place)
{
    if (m_window == nullptr)
        return;
    if (!place) {
        QEvent leave(QEvent::Leave);
        QCoreApplication::sendEvent(m_window, &leave);
        return;
    }
    const QPointF local(place->x, place->y);
    QMouseEvent move(QEvent::MouseMove, local, local, m_window->mapToGlobal(local), Qt::NoButton,
        Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(m_window, &move);
}

void MacPopover::followSize()
{
    m_window->setPosition(0, 0);
    m_native.setContentSize(m_window->width(), m_window->height());
}

} // namespace brimwatch::platform
