#pragma once

#include "service/launch_at_login_service.h"
#include "service/low_quota_alerts.h"
#include "service/quota_service.h"
#include "service/settings.h"
#include "support/fake_fetching.h"
#include "support/fake_login_item.h"
#include "support/fake_notifier.h"
#include "support/test_clock.h"

#include <QStringList>
#include <QTemporaryDir>
#include <QTest>

namespace brimwatch::test {

/// Everything that a QuotaService needs, all of it under the test's control.
struct ServiceParts {
    static QDateTime nineOClock() { return {QDate(2026, 11, 16), QTime(9, 0), Qt::UTC}; }

    /// The settings are kept in `settingsFile`, or in one that is gone with these parts.
    explicit ServiceParts(
        const QDateTime &now = nineOClock(), const QString &settingsFile = QString())
        : settings(settingsFile.isEmpty() ? folder.filePath(QStringLiteral("settings.ini"))
                                          : settingsFile)
        , clock(now)
    {
        clock.log = &log;
        fetching.log = &log;
        notifier.log = &log;
        loginItem.log = &log;
    }

    service::QuotaService::Dependencies dependencies()
    {
        return {.clock = clock,
            .fetching = fetching,
            .settings = settings,
            .alerts = &alerts,
            .launchAtLogin = &launchAtLogin};
    }

    /// The system says something else of the login item now.
    void setLoginItem(platform::LoginItem::Status status)
    {
        loginItem.held = status;
        launchAtLogin.refresh();
    }

    QStringList log; ///< What was asked of the parts, in order.
    QTemporaryDir folder;
    service::SettingsStore settings;
    TestClock clock;
    FakeFetching fetching;
    FakeNotifier notifier;
    service::LowQuotaAlerts alerts{
        clock, settings, notifier, [](const QString &text) { return text; }};
    FakeLoginItem loginItem;
    service::LaunchAtLoginService launchAtLogin{loginItem};
};

/// A QuotaService on parts of its own.
struct ServiceFixture : ServiceParts {
    using ServiceParts::ServiceParts;

    /// Waits until a fetch is under way, answers it, and waits until that is told.
    void answer(const service::FetchResult &result)
    {
        if (!QTest::qWaitFor([this] { return fetching.isWaiting(); }))
            qFatal("nothing is fetched");
        bool isFinished = false;
        const auto connection = QObject::connect(&service, &service::QuotaService::refreshFinished,
            &service, [&isFinished] { isFinished = true; });
        fetching.answer(result);
        if (!QTest::qWaitFor([&isFinished] { return isFinished; }))
            qFatal("the refresh does not end");
        QObject::disconnect(connection);
    }
    void answer(
        const model::QuotaSummary &summary, const discovery::DaemonInfo &daemon = {.httpPort = 1})
    {
        answer(service::FetchedQuota{.summary = summary, .daemon = daemon});
    }
    void fail(const discovery::DaemonError &error = {}) { answer(brimwatch::fail(error)); }

    service::QuotaService service{dependencies()};
};

} // namespace brimwatch::test
