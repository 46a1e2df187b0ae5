#include "model/toolbar_models.h"
#include "platform/wording.h"
#include "qml/popover_fixture.h"
#include "qml/samples.h"
#include "views/models/settings_model.h"

#include <QQuickItem>
#include <QTest>

#include <algorithm>
#include <cmath>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;
using test::PopoverFixture;

namespace {

bool isOn(const PopoverFixture &fixture, const QString &name)
{
    return fixture.item(name)->property("checked").toBool();
}

void click(const PopoverFixture &fixture, const QString &name)
{
    QTest::mouseClick(&fixture.window(), Qt::LeftButton, {}, fixture.middle(name));
}

/// Brings an item into view, as the keyboard would.
void reveal(const PopoverFixture &fixture, const QString &name)
{
    QQuickItem *list = fixture.item(u"settingsList"_s);
    QVERIFY(QMetaObject::invokeMethod(list, "reveal", Q_ARG(QQuickItem *, fixture.item(name))));
}

/// Whether so many items are there, each below the one before.
bool isLaidOut(const QList<QQuickItem *> &items, qsizetype count)
{
    return items.size() == count
        && std::adjacent_find(items.begin(), items.end(),
               [](const QQuickItem *above, const QQuickItem *below) {
                   return above->y() + above->height() > below->y();
               })
        == items.end();
}

} // namespace

class SettingsViewTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_fixture = std::make_unique<PopoverFixture>();
        m_fixture->show();
        m_fixture->answer(test::sampleSummary());
    }
    void cleanup() { m_fixture.reset(); }

    void theGearTurnsToTheSettingsAndDoneBack()
    {
        QVERIFY(m_fixture->item(u"doneButton"_s) == nullptr);
        click(*m_fixture, u"settingsButton"_s);
        QTRY_VERIFY(m_fixture->item(u"doneButton"_s) != nullptr);
        QTRY_VERIFY(m_fixture->item(u"groupList"_s) == nullptr);
        click(*m_fixture, u"doneButton"_s);
        QTRY_VERIFY(m_fixture->item(u"settingsFace"_s) == nullptr
            || m_fixture->item(u"doneButton"_s) == nullptr);
        QVERIFY(m_fixture->item(u"groupList"_s) != nullptr);
    }

    void dashboardReturnsToo()
    {
        m_fixture->showSettings();
        click(*m_fixture, u"backButton"_s);
        QTRY_VERIFY(m_fixture->item(u"backButton"_s) == nullptr);
        QCOMPARE(m_fixture->item(u"groupList"_s)->mapToScene(QPointF()).x(), 0.0);
    }

    void theFacesSlideOverEachOther()
    {
        // Within one turn of the event loop, in which no time passes for what moves.
        m_fixture->content->showSettings();
        const auto *face = m_fixture->existing(u"settingsFace"_s);
        QVERIFY(face != nullptr);
        QVERIFY(face->x() > 0);
        QVERIFY(face->opacity() < 1);
        QVERIFY(m_fixture->item(u"groupList"_s) != nullptr);
        QTRY_COMPARE(face->x(), 0.0);
        QCOMPARE(face->opacity(), 1.0);
    }

    void withReducedMotionTheSettingsAreThereAtOnce()
    {
        m_fixture->appearance.still = true;
        Q_EMIT m_fixture->appearance.changed();
        m_fixture->content->showSettings();
        QCOMPARE(m_fixture->item(u"settingsFace"_s)->x(), 0.0);
        QVERIFY(m_fixture->item(u"groupList"_s) == nullptr);
    }

    void escapeGoesToTheDashboardAndThenCloses()
    {
        m_fixture->showSettings();
        QTest::keyClick(&m_fixture->window(), Qt::Key_Escape);
        QTRY_VERIFY(m_fixture->item(u"doneButton"_s) == nullptr);
        QCOMPARE(m_fixture->closed, 0);
        QTest::keyClick(&m_fixture->window(), Qt::Key_Escape);
        QCOMPARE(m_fixture->closed, 1);
    }

    void controlCommaShowsTheSettings()
    {
        QTest::keyClick(&m_fixture->window(), Qt::Key_Comma, Qt::ControlModifier);
        QTRY_VERIFY(m_fixture->item(u"doneButton"_s) != nullptr);
    }

    void theOtherShortcutsWorkOnTheSettingsToo()
    {
        m_fixture->showSettings();
        // A refresh is refused while the icon turns.
        QTRY_VERIFY(!m_fixture->model().spin()->isSpinning());
        QTest::keyClick(&m_fixture->window(), Qt::Key_R, Qt::ControlModifier);
        m_fixture->awaitRefresh();
        QTest::keyClick(&m_fixture->window(), Qt::Key_Q, Qt::ControlModifier);
        QCOMPARE(m_fixture->terminated, 1);
    }

    void whatWasSetStaysOnEitherWayBack()
    {
        for (const QString &way : {u"backButton"_s, u"doneButton"_s}) {
            const bool before = m_fixture->service.showClaudeInToolbar();
            m_fixture->showSettings();
            click(*m_fixture, u"showClaude"_s);
            QCOMPARE(m_fixture->service.showClaudeInToolbar(), !before);
            click(*m_fixture, way);
            QTRY_VERIFY(m_fixture->item(u"doneButton"_s) == nullptr);
            QCOMPARE(m_fixture->service.showClaudeInToolbar(), !before);
            m_fixture->showSettings();
            QCOMPARE(isOn(*m_fixture, u"showClaude"_s), !before);
            QTest::keyClick(&m_fixture->window(), Qt::Key_Escape);
            QTRY_VERIFY(m_fixture->item(u"doneButton"_s) == nullptr);
        }
    }

    void theSettingsStayWhileThePopoverIsClosed()
    {
        m_fixture->showSettings();
        m_fixture->hide();
        m_fixture->show();
        QVERIFY(m_fixture->item(u"doneButton"_s) != nullptr);
    }

    void theLoginItemIsAskedEachTimeTheSettingsAreShown()
    {
        const int before = m_fixture->loginItem.asked;
        m_fixture->showSettings();
        QCOMPARE(m_fixture->loginItem.asked, before + 1);
        m_fixture->hide();
        m_fixture->show();
        QCOMPARE(m_fixture->loginItem.asked, before + 2);
        QTest::keyClick(&m_fixture->window(), Qt::Key_Escape);
        m_fixture->hide();
        m_fixture->show();
        QCOMPARE(m_fixture->loginItem.asked, before + 2);
    }

    void eachSwitchIsBoundToItsSetting_data()
    {
        using service::QuotaService;
        QTest::addColumn<bool (*)(const QuotaService &)>("setting");
        const auto row = [](const char *name, bool (*setting)(const QuotaService &)) {
            QTest::newRow(name) << setting;
        };
        row("showGemini", [](const QuotaService &s) { return s.showGeminiInToolbar(); });
        row("showArgon", [](const QuotaService &s) { return s.showArgonInToolbar(); });
        row("showClaude", [](const QuotaService &s) { return s.showClaudeInToolbar(); });
        row("showIcon", [](const QuotaService &s) { return s.showIconInMenuBar(); });
        row("showPercentage", [](const QuotaService &s) { return s.showPercentageInMenuBar(); });
        row("useColor", [](const QuotaService &s) { return s.useColoredStatusIndicator(); });
        row("showFiveHour", [](const QuotaService &s) { return s.showFiveHourInMenuBar(); });
        row("showWeekly", [](const QuotaService &s) { return s.showWeeklyInMenuBar(); });
        row("notify", [](const QuotaService &s) { return s.notifyOnLowQuota(); });
        row("launchAtLogin", [](const QuotaService &s) { return s.launchAtLogin(); });
    }
    void eachSwitchIsBoundToItsSetting()
    {
        using Setting = bool (*)(const service::QuotaService &);
        QFETCH(const Setting, setting);
        const QString name = QString::fromLatin1(QTest::currentDataTag());
        m_fixture->showSettings();
        reveal(*m_fixture, name);
        const bool before = setting(m_fixture->service);
        QCOMPARE(isOn(*m_fixture, name), before);
        click(*m_fixture, name);
        QCOMPARE(setting(m_fixture->service), !before);
        QCOMPARE(isOn(*m_fixture, name), !before);
        click(*m_fixture, name);
        QCOMPARE(setting(m_fixture->service), before);
        QCOMPARE(isOn(*m_fixture, name), before);
    }

    void aLoginItemThatRefusesPutsTheSwitchBack()
    {
        m_fixture->loginItem.afterwards = platform::LoginItem::Status::notRegistered;
        m_fixture->showSettings();
        click(*m_fixture, u"launchAtLogin"_s);
        QVERIFY(!isOn(*m_fixture, u"launchAtLogin"_s));
        m_fixture->setLoginItem(platform::LoginItem::Status::enabled);
        QVERIFY(isOn(*m_fixture, u"launchAtLogin"_s));
    }

    void aLoginItemThatNeedsApprovalSaysSoAndOpensTheSystemsSettings()
    {
        m_fixture->showSettings();
        QVERIFY(m_fixture->item(u"approvalText"_s) == nullptr);
        m_fixture->setLoginItem(platform::LoginItem::Status::requiresApproval);
        QCOMPARE(m_fixture->text(u"approvalText"_s), platform::wording().requiresApproval);
        QCOMPARE(platform::wording(platform::DesktopFamily::macOS).requiresApproval,
            u"Requires approval in macOS System Settings."_s);
        click(*m_fixture, u"openLoginSettings"_s);
        QCOMPARE(m_fixture->loginItem.settingsOpened, 1);
    }

    void withoutAnyModelANoteSaysThatTheIconIsAlone()
    {
        m_fixture->showSettings();
        QVERIFY(m_fixture->item(u"noStatsNote"_s) == nullptr);
        m_fixture->service.setShowGeminiInToolbar(false);
        m_fixture->service.setShowArgonInToolbar(false);
        m_fixture->service.setShowClaudeInToolbar(false);
        QCOMPARE(m_fixture->text(u"noStatsNote"_s),
            u"No stats selected — menu bar will show icon only."_s);
    }

    void thePickersOfferWhatThereIsInOrder()
    {
        m_fixture->showSettings();
        QCOMPARE(m_fixture->item(u"labelStyle"_s)->property("options").toStringList(),
            (QStringList{u"Letters (G, A, C)"_s, u"Icons (Sparkle, CPU, Brain)"_s,
                u"Short Names (Gem, Arg, Cla)"_s}));
        QCOMPARE(m_fixture->item(u"labelStyleBox"_s)->width(), 180.0);
        QCOMPARE(m_fixture->item(u"refreshInterval"_s)->property("options").toStringList(),
            (QStringList{
                u"15 seconds"_s, u"30 seconds"_s, u"1 minute"_s, u"2 minutes"_s, u"5 minutes"_s}));
        QCOMPARE(m_fixture->item(u"refreshIntervalBox"_s)->width(), 130.0);
    }

    void thePickerOpensInThePopoversSceneAndChooses()
    {
        m_fixture->showSettings();
        reveal(*m_fixture, u"labelStyle"_s);
        click(*m_fixture, u"labelStyleBox"_s);
        QTRY_VERIFY(isLaidOut(m_fixture->items(u"pickerOption"_s), 3));
        QCOMPARE(QGuiApplication::allWindows().size(), 1);
        const auto options = m_fixture->items(u"pickerOption"_s);
        QTest::mouseClick(&m_fixture->window(), Qt::LeftButton, {},
            options.at(2)->mapToScene(QPointF(20, 6)).toPoint());
        QCOMPARE(m_fixture->service.toolbarLabelStyle(), u"shortName"_s);
        QTRY_VERIFY(m_fixture->items(u"pickerOption"_s).isEmpty());
        QCOMPARE(m_fixture->item(u"labelStyleBox"_s)->property("displayText").toString(),
            u"Short Names (Gem, Arg, Cla)"_s);
    }

    void aPickerThatIsHalfOutOfViewOpensAtTheFirstClick()
    {
        m_fixture->showSettings();
        reveal(*m_fixture, u"labelStyle"_s);
        QQuickItem *list = m_fixture->item(u"settingsList"_s);
        const QQuickItem *box = m_fixture->item(u"labelStyleBox"_s);
        const double hidden = box->mapToItem(list, QPointF(0, box->height() / 2)).y();
        list->setProperty("contentY", list->property("contentY").toDouble() + hidden);
        QCOMPARE_LT(box->mapToItem(list, QPointF()).y(), 0.0);
        QTest::mouseClick(&m_fixture->window(), Qt::LeftButton, {},
            box->mapToScene(QPointF(20, box->height() - 4)).toPoint());
        QTRY_VERIFY(isLaidOut(m_fixture->items(u"pickerOption"_s), 3));
        QCOMPARE_GE(box->mapToItem(list, QPointF()).y(), 0.0);
    }

    void anOpenListClosesWhenItsPickerIsScrolled()
    {
        m_fixture->showSettings();
        reveal(*m_fixture, u"labelStyle"_s);
        click(*m_fixture, u"labelStyleBox"_s);
        QTRY_VERIFY(isLaidOut(m_fixture->items(u"pickerOption"_s), 3));
        QQuickItem *list = m_fixture->item(u"settingsList"_s);
        list->setProperty("contentY", list->property("contentY").toDouble() - 1);
        QTRY_VERIFY(m_fixture->items(u"pickerOption"_s).isEmpty());
    }

    void thePickerWorksByKeyboard()
    {
        m_fixture->showSettings();
        QQuickItem *box = m_fixture->item(u"refreshIntervalBox"_s);
        box->forceActiveFocus(Qt::TabFocusReason);
        QTest::keyClick(&m_fixture->window(), Qt::Key_Down);
        QCOMPARE(m_fixture->service.refreshInterval(), 120.0);
        QTest::keyClick(&m_fixture->window(), Qt::Key_Space);
        QTRY_COMPARE(m_fixture->items(u"pickerOption"_s).size(), 5);
        QTest::keyClick(&m_fixture->window(), Qt::Key_Down);
        QTest::keyClick(&m_fixture->window(), Qt::Key_Return);
        QCOMPARE(m_fixture->service.refreshInterval(), 300.0);
        QTRY_VERIFY(m_fixture->items(u"pickerOption"_s).isEmpty());
        QTest::keyClick(&m_fixture->window(), Qt::Key_Space);
        QTRY_COMPARE(m_fixture->items(u"pickerOption"_s).size(), 5);
        // Escape closes the list alone.
        QTest::keyClick(&m_fixture->window(), Qt::Key_Escape);
        QTRY_VERIFY(m_fixture->items(u"pickerOption"_s).isEmpty());
        QVERIFY(m_fixture->item(u"doneButton"_s) != nullptr);
        QCOMPARE(m_fixture->service.refreshInterval(), 300.0);
    }

    void theListGrowsWithTheText()
    {
        m_fixture->appearance.scale = 1.5;
        Q_EMIT m_fixture->appearance.changed();
        m_fixture->showSettings();
        reveal(*m_fixture, u"labelStyle"_s);
        click(*m_fixture, u"labelStyleBox"_s);
        QTRY_VERIFY(isLaidOut(m_fixture->items(u"pickerOption"_s), 3));
        const QQuickItem *option = m_fixture->items(u"pickerOption"_s).first();
        QCOMPARE(option->mapToScene(QPointF(option->width(), 0)).x()
                - option->mapToScene(QPointF(0, 0)).x(),
            1.5 * option->width());
        const QQuickItem *box = m_fixture->item(u"labelStyleBox"_s);
        QCOMPARE_LE(option->mapToScene(QPointF()).x() - box->mapToScene(QPointF()).x(), 8.0);
        QCOMPARE_GE(
            option->mapToScene(QPointF()).y(), box->mapToScene(QPointF(0, box->height())).y());
        click(*m_fixture, u"labelStyleBox"_s);
    }

    void anOpenListClosesWithThePopover()
    {
        m_fixture->showSettings();
        reveal(*m_fixture, u"labelStyle"_s);
        click(*m_fixture, u"labelStyleBox"_s);
        QTRY_COMPARE(m_fixture->items(u"pickerOption"_s).size(), 3);
        m_fixture->hide();
        m_fixture->show();
        QVERIFY(m_fixture->items(u"pickerOption"_s).isEmpty());
    }

    void anIntervalThatIsNotOfferedShowsNoneAndStays()
    {
        m_fixture->service.setRefreshInterval(77);
        m_fixture->showSettings();
        QCOMPARE(m_fixture->item(u"refreshIntervalBox"_s)->property("displayText").toString(),
            QString());
        m_fixture->content->setShown(false);
        m_fixture->content->setShown(true);
        QCOMPARE(m_fixture->service.refreshInterval(), 77.0);
    }

    void choosingAnIntervalRestartsTheTimer()
    {
        m_fixture->showSettings();
        m_fixture->clock.advance(std::chrono::seconds(50));
        m_fixture->item(u"refreshIntervalBox"_s)->forceActiveFocus(Qt::TabFocusReason);
        QTest::keyClick(&m_fixture->window(), Qt::Key_Up);
        QCOMPARE(m_fixture->service.refreshInterval(), 30.0);
        m_fixture->clock.advance(std::chrono::seconds(29));
        QVERIFY(!m_fixture->service.isRefreshing());
        m_fixture->clock.advance(std::chrono::seconds(1));
        QVERIFY(m_fixture->service.isRefreshing());
    }

    void theThresholdRowShowsWhileAlertsAreOn()
    {
        m_fixture->service.setNotifyOnLowQuota(true);
        m_fixture->service.setLowQuotaThreshold(35);
        m_fixture->showSettings();
        reveal(*m_fixture, u"threshold"_s);
        QCOMPARE(m_fixture->text(u"thresholdText"_s), u"35%"_s);
        m_fixture->service.setNotifyOnLowQuota(false);
        QVERIFY(m_fixture->item(u"threshold"_s) == nullptr);
        m_fixture->service.setNotifyOnLowQuota(true);
        QCOMPARE(m_fixture->item(u"threshold"_s)->property("value").toDouble(), 35.0);
    }

    void theSliderGivesMultiplesOfFive()
    {
        m_fixture->service.setNotifyOnLowQuota(true);
        m_fixture->showSettings();
        reveal(*m_fixture, u"threshold"_s);
        QQuickItem *slider = m_fixture->item(u"threshold"_s);
        const QPoint left = slider->mapToScene(QPointF(7, slider->height() / 2)).toPoint();
        const int length = static_cast<int>(slider->width()) - 14;
        QList<double> seen;
        QTest::mousePress(&m_fixture->window(), Qt::LeftButton, {}, left);
        for (int x = 0; x <= length; ++x) {
            QTest::mouseMove(&m_fixture->window(), left + QPoint(x, 0));
            const double value = m_fixture->service.lowQuotaThreshold();
            if (seen.isEmpty() || seen.last() != value)
                seen.append(value);
        }
        QTest::mouseRelease(&m_fixture->window(), Qt::LeftButton, {}, left + QPoint(length, 0));
        QCOMPARE(seen.last(), 50.0);
        QVERIFY(seen.contains(5.0));
        for (const double value : seen)
            QCOMPARE(std::fmod(value, 5), 0.0);
        QCOMPARE(seen.size(), 10);
    }

    void aKeyOnTheSliderGoesToTheNextMultipleOfFive()
    {
        m_fixture->service.setNotifyOnLowQuota(true);
        m_fixture->service.setLowQuotaThreshold(22.5);
        m_fixture->showSettings();
        QCOMPARE(m_fixture->text(u"thresholdText"_s), u"22%"_s);
        m_fixture->item(u"threshold"_s)->forceActiveFocus(Qt::TabFocusReason);
        QTest::keyClick(&m_fixture->window(), Qt::Key_Right);
        QCOMPARE(std::fmod(m_fixture->service.lowQuotaThreshold(), 5), 0.0);
        QCOMPARE_GT(m_fixture->service.lowQuotaThreshold(), 22.5);
        m_fixture->service.setLowQuotaThreshold(50);
        QTest::keyClick(&m_fixture->window(), Qt::Key_Right);
        QCOMPARE(m_fixture->service.lowQuotaThreshold(), 50.0);
    }

    void aThresholdThatTheSliderCannotGiveIsShownAndKept_data()
    {
        QTest::addColumn<double>("threshold");
        QTest::addColumn<QString>("text");
        QTest::newRow("below") << 2.0 << u"2%"_s;
        QTest::newRow("above") << 80.0 << u"80%"_s;
    }
    void aThresholdThatTheSliderCannotGiveIsShownAndKept()
    {
        QFETCH(double, threshold);
        m_fixture->service.setNotifyOnLowQuota(true);
        m_fixture->service.setLowQuotaThreshold(threshold);
        m_fixture->showSettings();
        QTEST(m_fixture->text(u"thresholdText"_s), "text");
        QCOMPARE(m_fixture->service.lowQuotaThreshold(), threshold);
    }

    void theDiagnosticsShowTheDaemonWithItsTokenTruncated()
    {
        m_fixture->showSettings();
        reveal(*m_fixture, u"copyDiagnostics"_s);
        QStringList values;
        for (const QQuickItem *item : m_fixture->items(u"diagnosticValue"_s))
            values.append(item->property("text").toString());
        const auto daemon = test::sampleDaemon();
        QCOMPARE(values.size(), 5);
        QCOMPARE(values.at(0), u"Active (PID %1)"_s.arg(daemon.pid.value_or(0)));
        QCOMPARE(values.at(1), u"42424"_s);
        QCOMPARE(values.at(2), daemon.lsVersion.value_or(u"Unknown"_s));
        QCOMPARE(values.at(3), daemon.csrfToken.value_or(QString()).left(8) + "..."_L1);
        QCOMPARE(values.at(4), m_fixture->diagnostics.lastUpdateString());
    }

    void copyingPutsTheReportOnThePasteboard()
    {
        m_fixture->showSettings();
        reveal(*m_fixture, u"copyDiagnostics"_s);
        click(*m_fixture, u"copyDiagnostics"_s);
        QCOMPARE(m_fixture->pasteboard.texts,
            QStringList{m_fixture->diagnostics.generateDiagnosticInfo()});
    }

    void theFolderAndTheMailAreHandedOver()
    {
        m_fixture->showSettings();
        reveal(*m_fixture, u"openFolder"_s);
        click(*m_fixture, u"openFolder"_s);
        QCOMPARE(m_fixture->opener.opened,
            QList<QUrl>{QUrl(u"file:///home/sample/.gemini/antigravity/daemon"_s)});
        reveal(*m_fixture, u"contactSupport"_s);
        click(*m_fixture, u"contactSupport"_s);
        QCOMPARE(m_fixture->opener.opened.last(), m_fixture->diagnostics.supportMailUrl());
    }

    void theFooterShowsTheVersionAndQuits()
    {
        m_fixture->showSettings();
        QCOMPARE(m_fixture->text(u"versionText"_s), u"Brimwatch v1.2.3 (45)"_s);
        click(*m_fixture, u"quitAppButton"_s);
        QCOMPARE(m_fixture->terminated, 1);
    }

    void tabGoesThroughAllControlsInReadingOrderAndEachIsSeen()
    {
        m_fixture->service.setNotifyOnLowQuota(true);
        m_fixture->showSettings();
        const QStringList expected{u"backButton"_s, u"doneButton"_s, u"settingsList"_s,
            u"launchAtLogin"_s, u"showGemini"_s, u"showArgon"_s, u"showClaude"_s,
            u"labelStyleBox"_s, u"showIcon"_s, u"showPercentage"_s, u"useColor"_s,
            u"showFiveHour"_s, u"showWeekly"_s, u"refreshIntervalBox"_s, u"notify"_s,
            u"threshold"_s, u"openFolder"_s, u"copyDiagnostics"_s, u"contactSupport"_s,
            u"quitAppButton"_s};
        const QQuickItem *list = m_fixture->item(u"settingsList"_s);
        QStringList visited;
        for (qsizetype i = 0; i < expected.size(); ++i) {
            QTest::keyClick(&m_fixture->window(), Qt::Key_Tab);
            const QQuickItem *focused = m_fixture->window().activeFocusItem();
            visited.append(focused->objectName());
            const QQuickItem *ring = nullptr;
            for (const QQuickItem *candidate : m_fixture->items(u"focusRing"_s))
                ring = candidate;
            QVERIFY2(ring != nullptr, qPrintable(focused->objectName()));
            if (i > 2 && i + 1 < expected.size()) {
                const double top = focused->mapToItem(list, QPointF()).y();
                QVERIFY2(top >= 0 && top + focused->height() <= list->height(),
                    qPrintable(focused->objectName()));
            }
        }
        QCOMPARE(visited, expected);
    }

    void theKeyboardGoesAlongWithTheFaces()
    {
        m_fixture->item(u"settingsButton"_s)->forceActiveFocus(Qt::TabFocusReason);
        QTest::keyClick(&m_fixture->window(), Qt::Key_Space);
        QTRY_VERIFY(m_fixture->item(u"backButton"_s) != nullptr);
        QTRY_COMPARE(m_fixture->window().activeFocusItem()->objectName(), u"backButton"_s);
        QTest::keyClick(&m_fixture->window(), Qt::Key_Return);
        QTRY_COMPARE(m_fixture->window().activeFocusItem()->objectName(), u"settingsButton"_s);
    }

    void spaceTurnsASwitch()
    {
        m_fixture->showSettings();
        const bool before = m_fixture->service.showIconInMenuBar();
        m_fixture->item(u"showIcon"_s)->forceActiveFocus(Qt::TabFocusReason);
        QTest::keyClick(&m_fixture->window(), Qt::Key_Space);
        QCOMPARE(m_fixture->service.showIconInMenuBar(), !before);
    }

private:
    std::unique_ptr<PopoverFixture> m_fixture;
};

QTEST_MAIN(SettingsViewTest)
#include "settings_view_test.moc"
