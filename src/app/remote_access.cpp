#include "app/remote_access.h"

#include "app/state_description.h"
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
    connect(&m_quotaService, &service::QuotaService::objectWillChange, this, &RemoteAccess::follow);
    connect(&m_quotaService, &service::QuotaService::isRefreshingChanged, this, [this] {
        // What went wrong is stored only after this.
        if (!m_quotaService.isRefreshing())
            QMetaObject::invokeMethod(this, &RemoteAccess::finishRefresh, Qt::QueuedConnection);
    });
    publish();
}

RemoteAccess::~RemoteAccess()
{
    m_remoteControl.setReport({});
}

void RemoteAccess::follow()
{
    if (m_updatePending || m_quotaService.revision() == m_publishedRevision)
        return;
    m_updatePending = true;
    // The signal comes before the value is stored, and a refresh changes several: a turn of the
    // event loop later all are there.
    QMetaObject::invokeMethod(this, &RemoteAccess::publish, Qt::QueuedConnection);
}

void RemoteAccess::refresh()
{
    // Who joins a refresh asks nothing of the daemon.
    if (m_quotaService.isRefreshing())
        return;
    // Asked once: what is left must not have passed between the question and the timer.
    if (const auto left = m_pause.remainingTimeAsDuration(); left > 0ns) {
        QTimer::singleShot(
            std::chrono::ceil<std::chrono::milliseconds>(left), this, &RemoteAccess::refresh);
        return;
    }
    m_pause.setRemainingTime(1s);
    m_quotaService.refresh();
}

platform::PublishedState RemoteAccess::publish()
{
    m_updatePending = false;
    m_publishedRevision = m_quotaService.revision();
    auto state = describeState(m_quotaService, m_home);
    m_remoteControl.publish(state);
    return state;
}

void RemoteAccess::finishRefresh()
{
    // Who waits finds the properties current. They say how the last refresh ended, also when the
    // next one has begun.
    using Connection = platform::PublishedState::Connection;
    const auto state = publish();
    m_remoteControl.finishRefresh(
        state.connection == Connection::Offline ? std::optional(state.error) : std::nullopt);
}

} // namespace brimwatch::app
