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
    m_published = describeState(m_quotaService, m_home);
    m_remoteControl.publish(m_published);
}

void RemoteAccess::finishRefresh()
{
    // Publish before answering: a caller reads the properties next. Everything but the time of the
    // update has been published already, with stateChanged().
    if (const auto updated = lastUpdateOf(m_quotaService); updated != m_published.lastUpdate) {
        m_published.lastUpdate = updated;
        m_remoteControl.publish(m_published);
    }
    m_remoteControl.finishRefresh(
        m_published.connection == platform::PublishedState::Connection::Offline
            ? std::optional(m_published.error)
            : std::nullopt);
}

} // namespace brimwatch::app
