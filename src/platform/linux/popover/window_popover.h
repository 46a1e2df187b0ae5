#pragma once

#include "platform/linux/popover/placed_popover.h"

#include <memory>
#include <vector>

namespace brimwatch::platform {

/// The popover as an ordinary window without a frame or an entry in taskbars. It closes when
/// another window becomes the active one. Where it stands is the compositor's choice, which need
/// not be the place that it asks for.
class WindowPopover : public PlacedPopover {
    Q_OBJECT

public:
    WindowPopover(
        PopoverContentFactory factory, WindowSurroundings surroundings, QObject *parent = nullptr);

    void show(const ItemAnchor &anchor) override;
    void makeKey() override;

protected:
    /// Window managers keep the whole window within the work area, and move what is not.
    QRect windowPlace(const QRect &item, const QSize &size, const QMargins &shadow,
        const QRect &screen, const QRect &workArea) const override;
    bool eventFilter(QObject *watched, QEvent *event) override;
};

/// The same through the X server that a Wayland compositor runs for old programs: it stands where
/// it wants. No grab of its own reaches what is not X11, and panels and bare desktops take no
/// focus, so invisible windows over all screens catch the presses elsewhere. Only X11 lets windows
/// be there without the compositor's management, and with a hole where the popover is.
class XwaylandPopover final : public WindowPopover {
    Q_OBJECT

public:
    XwaylandPopover(
        PopoverContentFactory factory, WindowSurroundings surroundings, QObject *parent = nullptr);
    ~XwaylandPopover() override;
    XwaylandPopover(const XwaylandPopover &) = delete;
    XwaylandPopover &operator=(const XwaylandPopover &) = delete;
    XwaylandPopover(XwaylandPopover &&) = delete;
    XwaylandPopover &operator=(XwaylandPopover &&) = delete;

protected:
    void aboutToShow() override;
    void hidden() override;

private:
    class Catcher;

    std::vector<std::unique_ptr<Catcher>> m_catchers;
};

} // namespace brimwatch::platform
