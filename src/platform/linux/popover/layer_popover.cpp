#include "platform/linux/popover/layer_popover.h"

#include "platform/linux/popover/freed_memory.h"
#include "platform/linux/popover/layer_place.h"

#include <QBackingStore>
#include <QEnterEvent>
#include <QGuiApplication>
#include <QLoggingCategory>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <QWindow>

#include <chrono>
#include <cstddef>
#include <utility>

namespace brimwatch::platform {

Q_DECLARE_LOGGING_CATEGORY(popoverLog)

namespace {

// Compositors say where the pointer is as soon as an overlay shows. A seat without a pointer never
// does.
constexpr std::chrono::milliseconds pointerTimeout{400};

} // namespace

/// An invisible window over a whole output, panels included.
class LayerPopover::Catcher final : public QWindow {
public:
    explicit Catcher(LayerPopover &popover)
        : m_popover(popover)
        , m_surface(popover.m_shell, *this)
    {
        QSurfaceFormat transparent = format();
        transparent.setAlphaBufferSize(8);
        setFormat(transparent);
        connect(&m_surface, &LayerSurface::closed, &m_popover, &LayerPopover::performClose);
        // They cover a whole output: freed while it is hidden.
        connect(&m_surface, &LayerSurface::gone, this, [this] { m_pixels.reset(); });
    }

    /// False when the compositor does not take it.
    bool cover(QScreen *screen)
    {
        m_screen = screen;
        return m_surface.show(screen, {.coversPanels = true});
    }
    void uncover() { m_surface.hide(); }

protected:
    void exposeEvent(QExposeEvent * /*event*/) override
    {
        if (!isExposed())
            return;
        const QRect all(QPoint(), size());
        if (!m_pixels)
            m_pixels = std::make_unique<QBackingStore>(this);
        m_pixels->resize(size());
        m_pixels->beginPaint(all);
        {
            QPainter painter(m_pixels->paintDevice());
            painter.setCompositionMode(QPainter::CompositionMode_Source);
            painter.fillRect(all, Qt::transparent);
        }
        m_pixels->endPaint();
        m_pixels->flush(all);
    }
    bool event(QEvent *event) override
    {
        // NOLINTBEGIN(cppcoreguidelines-pro-type-static-cast-downcast): type() says so
        if (event->type() == QEvent::Enter)
            m_popover.pointerFound(
                m_screen, static_cast<QEnterEvent *>(event)->position().toPoint());
        else if (event->type() == QEvent::MouseMove)
            m_popover.pointerFound(
                m_screen, static_cast<QMouseEvent *>(event)->position().toPoint());
        // NOLINTEND(cppcoreguidelines-pro-type-static-cast-downcast)
        else if (event->type() == QEvent::MouseButtonPress)
            // Queued: it frees what this window is drawn on.
            QMetaObject::invokeMethod(&m_popover, &Popover::performClose, Qt::QueuedConnection);
        return QWindow::event(event);
    }

private:
    LayerPopover &m_popover;
    QPointer<QScreen> m_screen;
    std::unique_ptr<QBackingStore> m_pixels; ///< While it shows.
    LayerSurface m_surface;
};

LayerPopover::LayerPopover(
    const LayerShell &shell, PopoverContentFactory factory, PanelRoom panelRoom, QObject *parent)
    : Popover(parent)
    , m_shell(shell)
    , m_factory(std::move(factory))
    , m_panelRoom(std::move(panelRoom))
{
    m_pointerTimeout.setSingleShot(true);
    m_pointerTimeout.setInterval(pointerTimeout);
    connect(&m_pointerTimeout, &QTimer::timeout, this, &LayerPopover::showAtLikelyPlace);
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, [this] { performClose(); });
}

LayerPopover::~LayerPopover() = default;

bool LayerPopover::isShown() const
{
    return m_shown;
}

void LayerPopover::prepare()
{
    load();
}

void LayerPopover::release()
{
    if (m_shown || !m_content)
        return;
    m_catchers.clear();
    m_surface.reset();
    m_content.reset();
    returnFreedMemory(*this);
}

void LayerPopover::show(const ItemAnchor & /*anchor*/)
{
    if (m_shown || !open())
        return;
    m_followsPointer = true;
    m_pointerTimeout.start();
}

void LayerPopover::showUnclicked(const std::optional<QRect> & /*item*/)
{
    if (m_shown || !open())
        return;
    if (!m_lastScreen.isNull())
        showContent(m_lastScreen, m_lastPlace);
    else
        showAtLikelyPlace();
}

void LayerPopover::showSettings()
{
    if (m_content)
        m_content->showSettings();
}

void LayerPopover::performClose()
{
    if (!m_shown)
        return;
    m_shown = false;
    m_followsPointer = false;
    m_pointerTimeout.stop();
    for (const auto &catcher : m_catchers)
        catcher->uncover();
    m_surface->hide();
    m_content->setShown(false);
    Q_EMIT didClose();
}

bool LayerPopover::load()
{
    if (m_content)
        return true;
    m_content = m_factory();
    if (!m_content)
        return false;
    // Every Wayland compositor blends windows.
    m_content->setTranslucent(true);
    m_surface.emplace(m_shell, m_content->window());
    connect(&*m_surface, &LayerSurface::closed, this, &LayerPopover::performClose);
    return true;
}

bool LayerPopover::open()
{
    if (!load())
        return false;
    const auto screens = QGuiApplication::screens();
    bool covers = false;
    for (qsizetype i = 0; i < screens.size(); ++i) {
        const auto index = static_cast<std::size_t>(i);
        if (index == m_catchers.size())
            m_catchers.push_back(std::make_unique<Catcher>(*this));
        covers = m_catchers[index]->cover(screens[i]) || covers;
    }
    if (!covers) {
        qCWarning(popoverLog) << "the compositor shows no overlay of ours - no popover";
        return false;
    }
    m_shown = true;
    m_content->setShown(true);
    return true;
}

void LayerPopover::pointerFound(QScreen *screen, QPoint place)
{
    if (!std::exchange(m_followsPointer, false) || screen == nullptr)
        return;
    showContent(screen, popoverLayer(place, m_content->size(), screen->size()));
}

void LayerPopover::showAtLikelyPlace()
{
    m_followsPointer = false;
    // A null screen: the compositor knows which output the user is at.
    const QScreen *screen = QGuiApplication::primaryScreen();
    showContent(
        nullptr, cornerLayer(m_content->size(), screen != nullptr ? screen->size() : QSize()));
}

void LayerPopover::showContent(QScreen *screen, const LayerPlace &place)
{
    m_pointerTimeout.stop();
    LayerPlace wanted = place;
    // Read each time: panels come, go and move.
    const QScreen *any = QGuiApplication::primaryScreen();
    if (any != nullptr)
        wanted = keptOff(m_panelRoom(any->virtualSize()), place);
    wanted = grownBy(m_content->shadow(), wanted);
    wanted.takesKeyboard = true;
    if (!m_surface->show(screen, wanted)) {
        performClose();
        return;
    }
    m_lastScreen = screen;
    m_lastPlace = place;
}

} // namespace brimwatch::platform
