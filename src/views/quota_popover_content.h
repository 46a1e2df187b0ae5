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

/// The popover's window. Keys that no control takes are its own: refresh, settings, quit and close.
/// A press on the shadow is one beside the popover, which closes it.
class PopoverWindow final : public QQuickWindow {
public:
    explicit PopoverWindow(PopoverModel &model);

    /// How wide its shadow is on each side; none at first.
    QMargins shadow() const { return m_shadow; }
    void setShadow(const QMargins &shadow) { m_shadow = shadow; }

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;

private:
    PopoverModel &m_model;
    QMargins m_shadow;
};

/// The quota popover in a window: 380 by 490, times the text scale.
class QuotaPopoverContent final : public platform::PopoverContent {
public:
    static constexpr int width = 380;
    static constexpr int height = 490;

    explicit QuotaPopoverContent(const PopoverDependencies &dependencies);
    ~QuotaPopoverContent() override;
    QuotaPopoverContent(const QuotaPopoverContent &) = delete;
    QuotaPopoverContent &operator=(const QuotaPopoverContent &) = delete;
    QuotaPopoverContent(QuotaPopoverContent &&) = delete;
    QuotaPopoverContent &operator=(QuotaPopoverContent &&) = delete;

    /// Whether the views could be made.
    bool isComplete() const { return m_root != nullptr; }

    QWindow &window() override { return m_window; }
    QSize size() const override;
    void setTranslucent(bool translucent) override;
    QMargins shadow() const override;
    void setShown(bool shown) override;
    void showSettings() override;

private:
    void followTheme();
    void layOut();

    // Made in this order: what is below uses what is above.
    Theme m_theme;
    PopoverModel m_model;
    SettingsModel m_settingsModel;
    QQmlEngine m_engine;
    PopoverWindow m_window;
    std::unique_ptr<QQuickItem> m_root;
    QSize m_size; ///< As it was asked for last.
};

} // namespace brimwatch::views
