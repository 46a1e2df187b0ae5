#pragma once

#include "platform/macos/native_popover.h"
#include "platform/popover.h"
#include "platform/popover_content.h"

#include <QPointer>

class QWindow;

namespace brimwatch::platform {

/// The views in the system's popover. The window of the views becomes a child of the popover's
/// view, which is how Qt embeds its windows in those of others.
class MacPopover final : public Popover {
    Q_OBJECT

public:
    /// Qt's window for a view that Qt did not make.
    using WindowOfView = std::function<std::unique_ptr<QWindow>(std::uintptr_t view)>;

    /// `button` returns the status item's view; null while there is none.
    MacPopover(
        PopoverContentFactory factory, std::function<void *()> button, QObject *parent = nullptr);
    MacPopover(PopoverContentFactory factory, std::function<void *()> button,
        WindowOfView windowOfView, QObject *parent = nullptr);
    ~MacPopover() override;

    bool isShown() const override;
    void prepare() override;
    void release() override;
    /// At the button, wherever that is now: the anchor adds nothing that the system does not know.
    void show(const ItemAnchor &anchor) override;
    void showUnclicked(const std::optional<QRect> &item) override;
    void makeKey() override;
    void showSettings() override;
    void performClose() override;

private:
    bool load();
    void open();
    void closed();
    void hovered(std::optional<NativePoint> place);
    void followSize();

    PopoverContentFactory m_factory;
    WindowOfView m_windowOfView;
    NativePopover m_native;
    // The content's window is the container's child, and the content's own to delete: it goes
    // first.
    std::unique_ptr<QWindow> m_container;
    std::unique_ptr<PopoverContent> m_content;
    QPointer<QWindow> m_window;
};

} // namespace brimwatch::platform
