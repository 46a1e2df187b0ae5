#include "cli/fetch/fetch_once.h"

#include "app/state_description.h"
#include "core/clock.h"
#include "discovery/daemon_discovery_service.h"
#include "platform/linux/linux_app_information.h"
#include "service/diagnostics.h"
#include "service/quota_fetch_client.h"
#include "service/quota_service.h"
#include "service/settings.h"

#include <QEventLoop>
#include <QTimer>

#include <chrono>

using namespace brimwatch;
using namespace Qt::Literals::StringLiterals;

extern "C" void brimwatch_fetch_once(cli::FetchOutcome &outcome)
{
    // Each daemon has four seconds, and dead ones may have left their files.
    constexpr std::chrono::seconds timeout{30};
    const QString home = qEnvironmentVariable("HOME");
    SystemClock clock;
    service::SettingsStore settings;
    discovery::DaemonDiscoveryService discovery(home);
    service::QuotaFetchClient client(discovery, clock);
    service::QuotaService quotaService({.clock = clock, .fetching = client, .settings = settings});
    const service::Diagnostics diagnostics(quotaService, platform::linuxAppInformation(), home);

    QEventLoop loop;
    QObject::connect(&quotaService, &service::QuotaService::connectionStatusChanged, &loop,
        &QEventLoop::quit, Qt::QueuedConnection);
    QTimer::singleShot(timeout, &loop, &QEventLoop::quit);
    loop.exec();

    outcome.state = app::describeState(quotaService, home);
    if (outcome.state.connection == platform::PublishedState::Connection::Connecting) {
        outcome.state.connection = platform::PublishedState::Connection::Offline;
        outcome.state.error = u"No daemon has answered in time."_s;
    }
    outcome.report = app::reportForOthers(diagnostics, quotaService, home);
}
