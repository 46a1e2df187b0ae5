#pragma once

#include "platform/popover.h"
#include "platform/popover_content.h"

#include <QPointer>
#include <QRect>
#include <QScreen>
#include <QWindow>

#include <functional>

namespace brimwatch::platform {

/// What windows that choose their place have to know of the screen.
struct WindowSurroundings {
    /// The part of a screen that panels leave free, in device-independent pixels.
    std::function<QRect(const QScreen &)> workArea;
    /// Whether windows may be translucent now.
    std::function<bool()> isComposited;
};

/// What the popovers have in common that are windows at a place that they ask for: they compute the
/// place, load the content and announce that they have closed. How they get their input, and what
/// closes them, differs.
class PlacedPopover : public Popover {
    Q_OBJECT

public:
    ~PlacedPopover() override;

    bool isShown() const override { return m_shown; }
    void prepare() override;
    void release() override;
    void show(const ItemAnchor &anchor) override;
    void showUnclicked(const std::optional<QRect> &item) override;
    void showSettings() override;
    void performClose() override;

protected:
    PlacedPopover(PopoverContentFactory factory, WindowSurroundings surroundings,
        Qt::WindowFlags flags, QObject *parent);

    /// The geometry of the window, shadow included, for a popover of `size` beside `item`. Unless
    /// it is overridden, only the popover itself stays within the work area.
    virtual QRect windowPlace(const QRect &item, const QSize &size, const QMargins &shadow,
        const QRect &screen, const QRect &workArea) const;

    /// Null until the content is loaded.
    QWindow *window() const;
    /// The geometry of the popover, without its shadow.
    QRect frame() const;
    /// Shows it beside `item`, in device-independent pixels, on that screen.
    void showBeside(const QRect &item, QScreen *screen);

    /// The window is about to be shown, and has its place.
    virtual void aboutToShow() { }
    /// The window was hidden; didClose() follows.
    virtual void hidden() { }

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool load();
    void closeWith(QScreen *screen);

    PopoverContentFactory m_factory;
    WindowSurroundings m_surroundings;
    Qt::WindowFlags m_flags;
    std::unique_ptr<PopoverContent> m_content;
    QPointer<QWindow> m_window;
    QPointer<QScreen> m_screen; ///< Where it was shown the last time.
    std::optional<QRect> m_lastItem; ///< What it was shown beside the last time.
    bool m_shown = false;
};

} // namespace brimwatch::platform
