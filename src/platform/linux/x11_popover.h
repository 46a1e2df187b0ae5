#pragma once

#include "platform/popover.h"
#include "platform/popover_content.h"

#include <QPointer>
#include <QRect>
#include <QTimer>

class QScreen;
class QWindow;

namespace brimwatch::platform {

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
