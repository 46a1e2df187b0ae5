#pragma once

#include "platform/linux/popover/placed_popover.h"

#include <QTimer>

namespace brimwatch::platform {

/// The popover as an X11 popup, which no window manager manages. It grabs pointer and keyboard, so
/// that any press elsewhere closes it, on panels and bare desktops too.
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
