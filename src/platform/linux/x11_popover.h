#pragma once

#include "platform/popover.h"
#include "platform/popover_content.h"

#include <QPointer>
#include <QRect>
#include <QTimer>

class QScreen;
class QWindow;

namespace brimwatch::platform {

/// Where a popover of `size` goes: below `item` when that stands in the upper half of `screen`,
/// else above it, its middle at the item's, within `workArea`. All in one coordinate system. A
/// popover larger than the work area keeps its top left in it.
QRect popoverPlace(
    const QRect &item, const QSize &size, const QRect &screen, const QRect &workArea);

/// Where an item most likely stands when nobody says: at the end of the panel that keeps
/// `workArea` from filling `screen`, its right end or, of an upright one, its lower; without a
/// panel in the top right corner. A place one unit wide and high.
QRect likelyItemPlace(const QRect &screen, const QRect &workArea);

/// The popover as an X11 popup: no window manager in between, pointer and keyboard grabbed, so that
/// any press elsewhere closes it, panels and bare desktops included.
class X11Popover final : public Popover {
    Q_OBJECT

public:
    explicit X11Popover(PopoverContentFactory factory, QObject *parent = nullptr);
    ~X11Popover() override;

    bool isShown() const override;
    void prepare() override;
    void show(const ItemAnchor &anchor) override;
    void showUnclicked(const std::optional<QRect> &item) override;
    void makeKey() override;
    void showSettings() override;
    void performClose() override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool load();
    /// Shows it beside `item`, in the toolkit's coordinates, on that screen.
    void showBeside(const QRect &item, QScreen *screen);
    void grab();

    PopoverContentFactory m_factory;
    std::unique_ptr<PopoverContent> m_content;
    QPointer<QWindow> m_window;
    std::optional<QRect> m_lastItem; ///< What it was shown beside the last time.
    bool m_shown = false;
    QTimer m_grabTimer;
    int m_grabAttemptsLeft = 0;
};

} // namespace brimwatch::platform
