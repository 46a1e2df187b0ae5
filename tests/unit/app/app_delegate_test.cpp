#include "app/app_delegate.h"
#include "platform/appearance.h"
#include "platform/application_presence.h"
#include "platform/login_item.h"
#include "platform/notifier.h"
#include "platform/opener.h"
#include "platform/pasteboard.h"
#include "platform/remote_control.h"
#include "platform/symbols.h"
#include "service/settings.h"
#include "views/views_library.h"

#include <QImage>
#include <QTemporaryDir>
#include <QTest>

#include <functional>
#include <memory>
#include <utility>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;

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

class FakeNotifier final : public platform::Notifier {
public:
    explicit FakeNotifier(QStringList &calls)
        : m_calls(calls)
    {
    }
    void requestAuthorization() override { m_calls.append(u"requestAuthorization"_s); }
    void post(const platform::Notification & /*notification*/) override { }

private:
    QStringList &m_calls;
};

class FakePopover final : public platform::Popover {
public:
    explicit FakePopover(QStringList &calls)
        : m_calls(calls)
    {
    }
    bool isShown() const override { return m_shown; }
    void prepare() override { }
    void show(const platform::ItemAnchor & /*anchor*/) override { m_shown = true; }
    void showUnclicked(const std::optional<QRect> & /*item*/) override
    {
        m_shown = true;
        m_calls.append(u"showUnclicked"_s);
    }
    void makeKey() override { }
    void showSettings() override { m_calls.append(u"showSettings"_s); }
    void performClose() override
    {
        m_shown = false;
        m_calls.append(u"performClose"_s);
        Q_EMIT didClose();
    }

private:
    QStringList &m_calls;
    bool m_shown = false;
};

class FakeStatusItem final : public platform::StatusItem {
public:
    bool hasButton() const override { return true; }
    void setLabel(const model::LabelComposition & /*label*/) override { }
    void setDescription(const platform::ItemDescription & /*description*/) override { }
    std::optional<QRect> place() const override { return {}; }
};

class FakeRemoteControl final : public platform::RemoteControl {
public:
    void publish(const platform::PublishedState &state) override { published.append(state); }
    void finishRefresh(const std::optional<QString> & /*error*/) override { }
    void setReport(Report report) override { hasReport = static_cast<bool>(report); }

    QList<platform::PublishedState> published;
    bool hasReport = false;
};

class FakeAppearance final : public platform::Appearance {
public:
    bool isDark() const override { return false; }
    platform::Rgba color(model::ColorToken /*token*/) const override { return {}; }
    QString fontFamily() const override { return {}; }
    double textScale() const override { return 1; }
    bool reducesMotion() const override { return false; }
};

class FakeLoginItem final : public platform::LoginItem {
public:
    Status status() const override { return {}; }
    Result<void, QString> registerItem() override { return {}; }
    Result<void, QString> unregisterItem() override { return {}; }
    void openSystemSettings() override { }
};

class FakeOpener final : public platform::Opener {
public:
    bool openAntigravity() override { return false; }
    void openUrl(const QUrl & /*url*/) override { }
};

class FakePasteboard final : public platform::Pasteboard {
public:
    void setText(const QString & /*text*/) override { }
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
                        return std::make_unique<FakePopover>(m_calls);
                    },
                .remoteControl = m_remoteControl.get()},
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
            (QStringList{u"becomeAccessory"_s, u"closeWindows"_s, u"requestAuthorization"_s,
                u"views"_s, u"item"_s, u"popover"_s}));
        QVERIFY(m_delegate->quotaService() != nullptr);
        QVERIFY(m_delegate->statusBarController() != nullptr);
    }

    void viewsAndOtherProgramsSeeTheOneService()
    {
        m_delegate->applicationDidFinishLaunching();
        QCOMPARE(m_servedViews, m_delegate->quotaService());
        QVERIFY(m_remoteControl->hasReport);
        QVERIFY(!m_remoteControl->published.isEmpty());
    }

    void nothingIsConnectedOnceItIsGone()
    {
        launch();
        m_delegate.reset();
        Q_EMIT m_remoteControl->showRequested();
        Q_EMIT m_remoteControl->quitRequested();
        Q_EMIT m_notifier.activated(u"low"_s);
        QCOMPARE(m_calls, QStringList());
    }

    void otherProgramsOpenAndCloseThePopover()
    {
        launch();
        Q_EMIT m_remoteControl->toggleRequested();
        QCOMPARE(taken(), QStringList{u"showUnclicked"_s});
        Q_EMIT m_remoteControl->toggleRequested();
        QCOMPARE(taken(), QStringList{u"performClose"_s});
        Q_EMIT m_remoteControl->showRequested();
        QCOMPARE(taken(), QStringList{u"showUnclicked"_s});
        Q_EMIT m_remoteControl->showSettingsRequested();
        QVERIFY(taken().contains(u"showSettings"_s));
        Q_EMIT m_remoteControl->quitRequested();
        QCOMPARE(taken(), QStringList{u"terminate"_s});
    }

    void aNotificationOpensThePopoverAndTheViewsCloseIt()
    {
        launch();
        Q_EMIT m_notifier.activated(u"low"_s);
        QCOMPARE(taken(), QStringList{u"showUnclicked"_s});
        m_closeFromViews();
        QCOMPARE(taken(), QStringList{u"performClose"_s});
    }

private:
    void launch()
    {
        m_delegate->applicationDidFinishLaunching();
        m_calls.clear();
    }
    QStringList taken() { return std::exchange(m_calls, {}); }

    QStringList m_calls;
    FakeAppearance m_appearance;
    FakePresence m_presence{m_calls};
    FakeLoginItem m_loginItem;
    FakeNotifier m_notifier{m_calls};
    FakeOpener m_opener;
    FakePasteboard m_pasteboard;
    FakeSymbols m_symbols;
    std::unique_ptr<QTemporaryDir> m_home;
    std::unique_ptr<service::SettingsStore> m_settings;
    std::unique_ptr<FakeRemoteControl> m_remoteControl;
    const service::QuotaService *m_servedViews = nullptr;
    std::function<void()> m_closeFromViews;
    std::unique_ptr<app::AppDelegate> m_delegate;
};

QTEST_GUILESS_MAIN(AppDelegateTest)
#include "app_delegate_test.moc"
