#include "app/remote_access.h"

#include "app/state_description.h"
#include "platform/published_state.h"
#include "platform/remote_control.h"
#include "service/quota_service.h"

#include <QTimer>

#include <chrono>
#include <optional>
#include <utility>

namespace brimwatch::app {

using namespace std::chrono_literals;

RemoteAccess::RemoteAccess(service::QuotaService &quotaService,
    const service::Diagnostics &diagnostics, platform::RemoteControl &remoteControl, QString home)
    : m_quotaService(quotaService)
    , m_remoteControl(remoteControl)
    , m_home(std::move(home))
{
    m_remoteControl.setReport(
        [this, &diagnostics] { return reportForOthers(diagnostics, m_quotaService, m_home); });
    connect(
        &m_remoteControl, &platform::RemoteControl::refreshRequested, this, &RemoteAccess::refresh);
    connect(&m_quotaService, &service::QuotaService::stateChanged, this, &RemoteAccess::publish);
    connect(&m_quotaService, &service::QuotaService::refreshFinished, this,
        &RemoteAccess::finishRefresh);
    publish();
}

RemoteAccess::~RemoteAccess()
{
    m_remoteControl.setReport({});
}

void RemoteAccess::refresh()
{
    // The caller joins the refresh that is under way.
    if (m_quotaService.isRefreshing())
        return;
    // Read once: the rest must not run out between the test and the start of the timer.
    if (const auto left = m_pause.remainingTimeAsDuration(); left > 0ns) {
        QTimer::singleShot(
            std::chrono::ceil<std::chrono::milliseconds>(left), this, &RemoteAccess::refresh);
        return;
    }
    m_pause.setRemainingTime(1s);
    m_quotaService.refresh();
}

void RemoteAccess::publish()
{
    const auto state = describeState(m_quotaService, m_home);
    m_failure = state.connection == platform::PublishedState::Connection::Offline
        ? std::optional(state.error)
        : std::nullopt;
    m_remoteControl.publish(state);
}

void RemoteAccess::finishRefresh()
{
    // The callers that wait find the properties current: these were published just before, and say
    // how the last refresh ended even when the next one has begun.
    m_remoteControl.finishRefresh(m_failure);
}

} // namespace brimwatch::app
