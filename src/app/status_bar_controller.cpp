#include "app/status_bar_controller.h"

#include "app/item_description.h"
#include "service/quota_service.h"

namespace brimwatch::app {

StatusBarController::StatusBarController(Dependencies dependencies)
    : m_quotaService(dependencies.quotaService)
    , m_clock(dependencies.clock)
    , m_statusItem(std::move(dependencies.statusItem))
    , m_popover(std::move(dependencies.popover))
    , m_symbolExists(std::move(dependencies.symbolExists))
    , m_home(std::move(dependencies.home))
{
    connect(
        m_popover.get(), &platform::Popover::didClose, this, &StatusBarController::popoverDidClose);
    // Between a press and its release most of the loading can be done.
    connect(m_statusItem.get(), &platform::StatusItem::pressed, this,
        &StatusBarController::preparePopover);
    connect(m_statusItem.get(), &platform::StatusItem::clicked, this,
        &StatusBarController::statusItemClicked);
    connect(m_statusItem.get(), &platform::StatusItem::refreshRequested, &m_quotaService,
        &service::QuotaService::refresh);
    connect(m_statusItem.get(), &platform::StatusItem::settingsRequested, this,
        &StatusBarController::showSettings);
    connect(m_statusItem.get(), &platform::StatusItem::quitRequested, this,
        &StatusBarController::quitRequested);
    setupSubscribers();
    updateStatusItem();
}

StatusBarController::~StatusBarController()
{
    // Closing the popover reports to us: not while we are half gone.
    m_popover->disconnect(this);
}

void StatusBarController::statusItemClicked(const platform::ItemAnchor &sender)
{
    togglePopover(sender);
}

void StatusBarController::togglePopover(const platform::ItemAnchor &sender)
{
    if (!m_statusItem->hasButton())
        return;
    if (m_popover->isShown()) {
        m_popover->performClose();
        return;
    }
    if (m_popoverCloseTime) {
        const std::chrono::milliseconds elapsed(m_popoverCloseTime->msecsTo(m_clock.now()));
        // A clock that was set back meanwhile must not lock the popover.
        if (elapsed >= elapsed.zero() && elapsed < reopenGuard)
            return;
    }
    m_popover->show(sender);
    m_popover->makeKey();
}

void StatusBarController::showPopover()
{
    if (!m_popover->isShown())
        m_popover->showUnclicked(m_statusItem->place());
    m_popover->makeKey();
}

void StatusBarController::showSettings()
{
    // Turned before it is shown, it opens on them without the slide.
    preparePopover();
    m_popover->showSettings();
    showPopover();
}

void StatusBarController::preparePopover()
{
    m_popover->prepare();
    // It may never be shown.
    releasePopoverLater();
}

void StatusBarController::popoverDidClose()
{
    m_popoverCloseTime = m_clock.now();
    releasePopoverLater();
}

void StatusBarController::releasePopoverLater()
{
    m_releaseTimer = m_clock.every(contentKept, [this] {
        m_releaseTimer.reset();
        if (!m_popover->isShown())
            m_popover->release();
    });
}

void StatusBarController::setupSubscribers()
{
    using service::QuotaService;
    connect(
        &m_quotaService, &QuotaService::stateChanged, this, &StatusBarController::updateStatusItem);
    connect(
        &m_quotaService, &QuotaService::refreshFinished, this, &StatusBarController::followRefresh);
}

void StatusBarController::updateStatusItem()
{
    if (!m_statusItem->hasButton())
        return;
    m_label = model::composeLabel(m_quotaService.labelInput(), m_label, m_symbolExists);
    m_statusItem->setLabel(m_label);
    describeStatusItem();
}

void StatusBarController::describeStatusItem()
{
    m_describedAt = m_quotaService.currentTime();
    m_statusItem->setDescription(describeItem(m_quotaService, m_home));
    startMinuteTimer();
}

void StatusBarController::followRefresh()
{
    // The label has no time in it, and the tooltip counts in minutes. A minute less what a coarse
    // timer may be early. A clock that was set back counts as a minute too.
    constexpr std::chrono::seconds minute{55};
    const std::chrono::seconds age(m_describedAt.secsTo(m_quotaService.currentTime()));
    if (age < age.zero() || age >= minute)
        describeStatusItem();
    else
        startMinuteTimer();
}

void StatusBarController::startMinuteTimer()
{
    // Restarted with each refresh, so that this timer and the refresh timer expire together.
    m_minuteTimer = m_clock.every(std::chrono::minutes(1), [this] { describeStatusItem(); });
}

} // namespace brimwatch::app
