#pragma once

#include "core/clock.h"
#include "model/label_composition.h"
#include "platform/popover.h"
#include "platform/status_item.h"

#include <QDateTime>
#include <QObject>

#include <chrono>
#include <memory>
#include <optional>

namespace brimwatch::service {
class QuotaService;
}

namespace brimwatch::app {

/// Owns the item in the panel and the popover under it: keeps the label current, and opens and
/// closes the popover.
class StatusBarController final : public QObject {
    Q_OBJECT

public:
    /// After it has closed, the popover stays closed for this long: the click that closed it must
    /// not open it again.
    static constexpr std::chrono::milliseconds reopenGuard{250};

    /// The content of a popover that has not been used for this long is let go.
    static constexpr std::chrono::minutes contentKept{5};

    /// What the controller uses. References outlive it.
    struct Dependencies {
        service::QuotaService &quotaService;
        Clock &clock;
        std::unique_ptr<platform::StatusItem> statusItem;
        std::unique_ptr<platform::Popover> popover;
        model::SymbolExists symbolExists;
        QString home = {}; ///< The user's home directory, which the tooltip does not show.
    };

    explicit StatusBarController(Dependencies dependencies);
    ~StatusBarController() override;

    /// Closes the popover when it is shown; else opens it, unless it closed just now.
    void togglePopover(const platform::ItemAnchor &sender);

    /// Opens the popover without a click on the item; with or without an item. One that is shown
    /// stays, and gets the keyboard.
    void showPopover();
    /// The same on its settings.
    void showSettings();

Q_SIGNALS:
    /// Chosen from the item's menu.
    void quitRequested();

private:
    void statusItemClicked(const platform::ItemAnchor &sender);
    void preparePopover();
    void popoverDidClose();
    void releasePopoverLater();
    void setupSubscribers();
    void updateStatusItem();
    void describeStatusItem();
    void followRefresh();
    void startMinuteTimer();

    service::QuotaService &m_quotaService;
    Clock &m_clock;
    std::unique_ptr<platform::StatusItem> m_statusItem;
    std::unique_ptr<platform::Popover> m_popover;
    model::SymbolExists m_symbolExists;
    QString m_home;
    model::LabelComposition m_label;
    QDateTime m_describedAt; ///< The moment from which the tooltip's countdowns were computed.
    std::unique_ptr<RepeatingTimer> m_minuteTimer;
    std::unique_ptr<RepeatingTimer> m_releaseTimer; ///< Since the popover was used last.
    std::optional<QDateTime> m_popoverCloseTime; ///< Absent: in the distant past.
};

} // namespace brimwatch::app
