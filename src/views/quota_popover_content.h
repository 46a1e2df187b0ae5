#pragma once

#include "platform/popover_content.h"
#include "views/models/popover_model.h"
#include "views/models/settings_model.h"
#include "views/models/theme.h"
#include "views/views_library.h"

#include <QQmlEngine>
#include <QQuickWindow>

#include <memory>

namespace brimwatch::views {

/// The popover's window. It handles all keys that no control accepts: refresh, settings, quit, back
/// or close, and scrolling. A press on the shadow is a press outside of the popover and closes it.
class PopoverWindow final : public QQuickWindow {
public:
    explicit PopoverWindow(PopoverModel &model);

    /// The width of its shadow on each side; none at first.
    QMargins shadow() const { return m_shadow; }
    void setShadow(const QMargins &shadow) { m_shadow = shadow; }

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;

private:
    PopoverModel &m_model;
    QMargins m_shadow;
};

/// The quota popover in a window.
class QuotaPopoverContent final : public platform::PopoverContent {
public:
    /// Where its last one was left.
    explicit QuotaPopoverContent(const PopoverDependencies &dependencies);
    ~QuotaPopoverContent() override;

    /// Whether the views could be created.
    bool isComplete() const { return m_root != nullptr; }

    QWindow &window() override { return m_window; }
    QSize size() const override;
    void setTranslucent(bool translucent) override;
    QMargins shadow() const override;
    void setShown(bool shown) override;
    void showSettings() override;

private:
    void applyTheme();
    void layOut();
    void restore(const PopoverState &state);

    std::shared_ptr<PopoverState> m_state;
    // In this order: each member uses those above it.
    Theme m_theme;
    PopoverModel m_model;
    SettingsModel m_settingsModel;
    QQmlEngine m_engine;
    PopoverWindow m_window;
    std::unique_ptr<QQuickItem> m_root;
    QSize m_size; ///< What the window was resized to last.
};

} // namespace brimwatch::views
