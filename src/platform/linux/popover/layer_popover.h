#pragma once

#include "platform/linux/popover/layer_surface.h"
#include "platform/popover.h"
#include "platform/popover_content.h"

#include <QMargins>
#include <QPointer>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

class QScreen;
class QWindow;

namespace brimwatch::platform {

/// The popover on a Wayland compositor with a layer shell, where programs do not learn where on the
/// screen things are: an invisible overlay on each output catches every click, and when the pointer
/// enters one of them, the popover is shown there, at the pointer.
class LayerPopover final : public Popover {
    Q_OBJECT

public:
    /// The room of the panels that the compositor lets layers cover, on a desktop of that size.
    using PanelRoom = std::function<QMargins(const QSize &desktop)>;

    /// The shell outlives it.
    LayerPopover(const LayerShell &shell, PopoverContentFactory factory, PanelRoom panelRoom,
        QObject *parent = nullptr);
    ~LayerPopover() override;

    bool isShown() const override;
    void prepare() override;
    void release() override;
    /// Shows it at the pointer: the places that panels report mean nothing here.
    void show(const ItemAnchor &anchor) override;
    void showUnclicked(const std::optional<QRect> &item) override;
    void makeKey() override { }
    void showSettings() override;
    void performClose() override;

private:
    class Catcher;

    bool load();
    bool open();
    void pointerFound(QScreen *screen, QPoint place);
    void showContent(QScreen *screen, const LayerPlace &place);
    void showAtLikelyPlace();

    const LayerShell &m_shell;
    PopoverContentFactory m_factory;
    PanelRoom m_panelRoom;
    std::unique_ptr<PopoverContent> m_content;
    std::vector<std::unique_ptr<Catcher>>
        m_catchers; ///< As many as there have ever been outputs at once.
    std::optional<LayerSurface> m_surface; ///< The content's.
    bool m_shown = false;
    bool m_followsPointer = false; ///< Waits until an overlay reports the pointer.
    QTimer m_pointerTimeout; ///< Runs meanwhile.
    QPointer<QScreen> m_lastScreen; ///< Where it was shown the last time.
    LayerPlace m_lastPlace;
};

} // namespace brimwatch::platform
