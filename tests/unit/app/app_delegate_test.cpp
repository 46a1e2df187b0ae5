#include "app/app_delegate.h"
#include "platform/application_presence.h"
#include "platform/symbols.h"
#include "service/settings.h"
#include "support/fake_appearance.h"
#include "support/fake_login_item.h"
#include "support/fake_notifier.h"
#include "support/fake_opener.h"
#include "support/fake_pasteboard.h"
#include "support/fake_popover.h"
#include "support/fake_remote_control.h"
#include "support/fake_status_item.h"
#include "views/views_library.h"

#include <QImage>
#include <QTemporaryDir>
#include <QTest>

#include <functional>
#include <memory>
#include <utility>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;
using namespace brimwatch::test;

namespace {

class FakePresence final : public platform::ApplicationPresence {
public:
    explicit FakePresence(QStringList &calls)
        : m_calls(calls)
    {
    }
    void becomeAccessory() override { m_calls.append(u"becomeAccessory"_s); }
    void closeWindows() override { m_calls.append(u"closeWindows"_s); }
    void terminate() override { m_calls.append(u"terminate"_s); }

private:
    QStringList &m_calls;
};

class FakeSymbols final : public platform::SymbolSource {
public:
    bool has(const QString & /*name*/) const override { return true; }
    QSizeF size(const QString & /*name*/, double /*pointSize*/) const override { return {}; }
    QImage image(const platform::SymbolRequest & /*request*/) const override { return {}; }
};

} // namespace

class AppDelegateTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_calls.clear();
        m_notifier.log = &m_calls;
        m_home = std::make_unique<QTemporaryDir>();
        m_settings = std::make_unique<service::SettingsStore>(m_home->filePath(u"settings.ini"_s));
        m_remoteControl = std::make_unique<FakeRemoteControl>();
        m_delegate = std::make_unique<app::AppDelegate>(*m_settings,
            platform::Desktop{.appearance = m_appearance,
                .presence = m_presence,
                .loginItem = m_loginItem,
                .notifier = m_notifier,
                .opener = m_opener,
                .pasteboard = m_pasteboard,
                .symbols = m_symbols,
                .information = {},
                .makeStatusItem =
                    [this] {
                        m_calls.append(u"item"_s);
                        return std::make_unique<FakeStatusItem>();
                    },
                .makePopover =
                    [this](const platform::PopoverContentFactory & /*views*/) {
                        m_calls.append(u"popover"_s);
                        auto popover = std::make_unique<FakePopover>();
                        m_popover = popover.get();
                        return popover;
                    },
                .remoteControl = m_remoteControl.get(),
                .whenResumed
                = [this](std::function<void()> action) { m_resume = std::move(action); }},
            [this](const views::PopoverDependencies &dependencies) {
                m_calls.append(u"views"_s);
                m_servedViews = &dependencies.quotaService;
                m_closeFromViews = dependencies.close;
                return platform::PopoverContentFactory();
            });
    }

    void cleanup() { m_delegate.reset(); }

    void launchingSetsThePolicyClosesWindowsThenMakesServiceAndController()
    {
        QVERIFY(m_delegate->quotaService() == nullptr);
        QVERIFY(m_delegate->statusBarController() == nullptr);
        QCOMPARE(m_calls, QStringList());
        m_delegate->applicationDidFinishLaunching();
        // The service asks for the authorization while it is made.
        QCOMPARE(m_calls,
            (QStringList{u"becomeAccessory"_s, u"closeWindows"_s, u"permission"_s, u"views"_s,
                u"item"_s, u"popover"_s}));
        QVERIFY(m_delegate->quotaService() != nullptr);
        QVERIFY(m_delegate->statusBarController() != nullptr);
    }

    void viewsAndOtherProgramsSeeTheOneService()
    {
        m_delegate->applicationDidFinishLaunching();
        QCOMPARE(m_servedViews, m_delegate->quotaService());
        QVERIFY(m_remoteControl->report);
        QVERIFY(!m_remoteControl->published.isEmpty());
    }

    void aResumeRefreshes()
    {
        launch();
        const auto *service = m_delegate->quotaService();
        // The first refresh finds no daemon.
        QTRY_VERIFY(service->errorMessage());
        QVERIFY(!service->isRefreshing());
        m_resume();
        QVERIFY(service->isRefreshing());
    }

    void nothingIsConnectedOnceItIsGone()
    {
        launch();
        m_delegate.reset();
        Q_EMIT m_remoteControl->showRequested();
        Q_EMIT m_remoteControl->quitRequested();
        Q_EMIT m_notifier.activated(u"low"_s);
        m_resume();
        QCOMPARE(m_calls, QStringList());
    }

    void otherProgramsOpenAndCloseThePopover()
    {
        launch();
        Q_EMIT m_remoteControl->toggleRequested();
        QCOMPARE(taken(), (QStringList{u"showUnclicked"_s, u"makeKey"_s}));
        Q_EMIT m_remoteControl->toggleRequested();
        QCOMPARE(taken(), QStringList{u"performClose"_s});
        Q_EMIT m_remoteControl->showRequested();
        QCOMPARE(taken(), (QStringList{u"showUnclicked"_s, u"makeKey"_s}));
        Q_EMIT m_remoteControl->showSettingsRequested();
        QVERIFY(taken().contains(u"showSettings"_s));
        Q_EMIT m_remoteControl->quitRequested();
        QCOMPARE(m_calls, QStringList{u"terminate"_s});
    }

    void aNotificationOpensThePopoverAndTheViewsCloseIt()
    {
        launch();
        Q_EMIT m_notifier.activated(u"low"_s);
        QCOMPARE(taken(), (QStringList{u"showUnclicked"_s, u"makeKey"_s}));
        m_closeFromViews();
        QCOMPARE(taken(), QStringList{u"performClose"_s});
    }

private:
    void launch()
    {
        m_delegate->applicationDidFinishLaunching();
        m_calls.clear();
        m_popover->calls.clear();
    }
    /// What the popover was asked since the last time.
    QStringList taken() { return std::exchange(m_popover->calls, {}); }

    QStringList m_calls;
    FakeAppearance m_appearance;
    FakePresence m_presence{m_calls};
    FakeLoginItem m_loginItem;
    FakeNotifier m_notifier;
    FakeOpener m_opener;
    FakePasteboard m_pasteboard;
    FakeSymbols m_symbols;
    std::unique_ptr<QTemporaryDir> m_home;
    std::unique_ptr<service::SettingsStore> m_settings;
    std::unique_ptr<FakeRemoteControl> m_remoteControl;
    FakePopover *m_popover = nullptr;
    std::function<void()> m_resume;
    const service::QuotaService *m_servedViews = nullptr;
    std::function<void()> m_closeFromViews;
    std::unique_ptr<app::AppDelegate> m_delegate;
};

QTEST_GUILESS_MAIN(AppDelegateTest)
#include "app_delegate_test.moc"
