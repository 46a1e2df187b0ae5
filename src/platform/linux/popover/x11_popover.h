#pragma once

#include "platform/linux/popover/placed_popover.h"

#include <QTimer>

namespace brimwatch::platform {

/// The popover as an X11 popup: no window manager in between, pointer and keyboard grabbed, so that
/// any press elsewhere closes it, panels and bare desktops included.
class X11Popover final : public PlacedPopover {
    Q_OBJECT

public:
    X11Popover(
        PopoverContentFactory factory, WindowSurroundings surroundings, QObject *parent = nullptr);

    void makeKey() override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void hidden() override;

private:
    void grab();

    QTimer m_grabTimer;
    int m_grabAttemptsLeft = 0;
};

} // namespace brimwatch::platform
