#pragma once

#include "platform/linux/popover/layer_shell.h"
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

/// The popover on a Wayland compositor with a layer shell, where no program learns of places on the
/// screen: an invisible overlay on each output catches every click, and the one that the pointer
/// turns out to be over holds the popover at it.
class LayerPopover final : public Popover {
    Q_OBJECT

public:
    /// The room of panels that the compositor does not keep layers off by itself, on a desktop of
    /// that size.
    using PanelRoom = std::function<QMargins(const QSize &desktop)>;

    explicit LayerPopover(
        PopoverContentFactory factory, PanelRoom panelRoom = {}, QObject *parent = nullptr);
    ~LayerPopover() override;

    bool isShown() const override;
    void prepare() override;
    /// Panels tell places that mean nothing here: the pointer's alone counts.
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

    PopoverContentFactory m_factory;
    PanelRoom m_panelRoom;
    std::unique_ptr<PopoverContent> m_content;
    std::vector<std::unique_ptr<Catcher>> m_catchers; ///< As many as there ever were outputs.
    std::optional<LayerSurface> m_surface; ///< The content's.
    bool m_shown = false;
    bool m_followsPointer = false; ///< Waits for an overlay to learn where the pointer is.
    QTimer m_patience; ///< For that.
    QPointer<QScreen> m_lastScreen; ///< Where it stood the last time.
    LayerPlace m_lastPlace;
};

} // namespace brimwatch::platform
