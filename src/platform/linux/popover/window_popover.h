#pragma once

#include "platform/linux/popover/placed_popover.h"

#include <memory>
#include <vector>

namespace brimwatch::platform {

/// The popover as an ordinary window without a frame or an entry in taskbars. It closes when
/// another window becomes the active one. The compositor chooses its place, which need not be the
/// one that it asks for.
class WindowPopover : public PlacedPopover {
    Q_OBJECT

public:
    WindowPopover(
        PopoverContentFactory factory, WindowSurroundings surroundings, QObject *parent = nullptr);

    void show(const ItemAnchor &anchor) override;
    void makeKey() override;

protected:
    /// Within the work area with its shadow: window managers move a window that is not.
    QRect windowPlace(const QRect &item, const QSize &size, const QMargins &shadow,
        const QRect &screen, const QRect &workArea) const override;
    bool eventFilter(QObject *watched, QEvent *event) override;
};

/// The same through Xwayland, where it chooses its place. A grab would not reach Wayland windows,
/// and panels and bare desktops take no focus, so invisible windows over all screens catch the
/// presses elsewhere. Only X11 has windows that the compositor does not manage, and with a hole
/// where the popover is.
class XwaylandPopover final : public WindowPopover {
    Q_OBJECT

public:
    XwaylandPopover(
        PopoverContentFactory factory, WindowSurroundings surroundings, QObject *parent = nullptr);
    ~XwaylandPopover() override;

protected:
    void aboutToShow() override;
    void hidden() override;

private:
    class Catcher;

    std::vector<std::unique_ptr<Catcher>> m_catchers;
};

} // namespace brimwatch::platform
