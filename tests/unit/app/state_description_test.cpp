#include "app/state_description.h"
#include "support/quota_samples.h"
#include "support/service_fixture.h"

#include <QTest>

#include <optional>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;
using platform::PublishedState;

class StateDescriptionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_fixture.emplace(); }
    void cleanup() { m_fixture.reset(); }

    void beforeTheFirstAnswerThereIsNothingToTell()
    {
        const auto state = describe();
        QCOMPARE(state.connection, PublishedState::Connection::Connecting);
        QCOMPARE(state.port, 0);
        QVERIFY(!state.lastUpdate);
        QVERIFY(state.error.isEmpty());
        QVERIFY(!state.lowest);
        QVERIFY(state.groups.isEmpty());
    }

    void aGoodAnswerIsToldInTheOrderOfThePopover()
    {
        auto claude = model::sampleGroup(u"Claude Models"_s, 0.9, 0.8);
        auto gemini = model::sampleGroup(u"Gemini Models"_s, 0.5, 0.15);
        gemini.buckets[0].resetTime = u"2026-11-16T12:00:00Z"_s;
        std::reverse(gemini.buckets.begin(), gemini.buckets.end());
        answer({.groups = {claude, gemini}});

        const auto state = describe();
        QCOMPARE(state.connection, PublishedState::Connection::Connected);
        QCOMPARE(state.port, 4711);
        QCOMPARE(state.lastUpdate, m_fixture->clock.now().toSecsSinceEpoch());
        QVERIFY(state.error.isEmpty());
        QCOMPARE(state.title, m_fixture->service.menuBarTitle());
        QCOMPARE(state.groups.size(), 2);
        QCOMPARE(state.groups[0].name, u"Gemini Models"_s);
        QCOMPARE(state.groups[0].family, u"gemini"_s);
        QCOMPARE(state.groups[1].family, u"claude"_s);
        const auto fiveHours = state.groups[0].buckets.at(0);
        QCOMPARE(fiveHours.window, u"5h"_s);
        QCOMPARE(fiveHours.fraction, 0.5);
        QCOMPARE(fiveHours.percentage, 50.0);
        QCOMPARE(fiveHours.tier, model::QuotaTier::warning);
        QCOMPARE(fiveHours.resetTime,
            QDateTime(QDate(2026, 11, 16), QTime(12, 0), Qt::UTC).toSecsSinceEpoch());
        const auto weekly = state.groups[0].buckets.at(1);
        QVERIFY(!weekly.resetTime);
        QVERIFY(state.lowest);
        QCOMPARE(*state.lowest, weekly);
        QCOMPARE(state.lowest->tier, model::QuotaTier::critical);
    }

    void aFailureIsToldBesideTheLastGoodQuota()
    {
        answer({.groups = {model::sampleGroup(u"Gemini Models"_s, 0.5, 0.4)}});
        const auto before = describe();
        m_fixture->service.refresh();
        m_fixture->fail({.kind = discovery::DaemonError::Kind::noDaemonFound});

        const auto state = describe();
        QCOMPARE(state.connection, PublishedState::Connection::Offline);
        QCOMPARE(state.port, 0);
        QCOMPARE(state.error, m_fixture->service.connectionStatus().displayText());
        QCOMPARE(state.lastUpdate, before.lastUpdate);
        QCOMPARE(state.groups, before.groups);
    }

    void aRefreshThatBringsTheSameIsNoChangeWhileItRuns()
    {
        answer({.groups = {model::sampleGroup(u"Gemini Models"_s, 0.5, 0.4)}});
        const auto before = describe();
        m_fixture->service.refresh();
        QVERIFY(m_fixture->service.isRefreshing());
        QCOMPARE(describe(), before);
        m_fixture->fail();
        const auto offline = describe();
        m_fixture->service.refresh();
        QVERIFY(m_fixture->service.isRefreshing());
        QCOMPARE(describe(), offline);
    }

    void neitherTokenNorHomeIsTold()
    {
        const QString leak = u"a SECRET-TOKEN\tand /home/someone/x"_s;
        model::QuotaGroup group{.displayName = leak,
            .buckets = {{.bucketId = leak,
                .displayName = u"SECRET-\x01TOKEN SECRET-TOKEN"_s,
                .window = leak,
                .remainingFraction = 0.5}}};
        answer({.groups = {group}});
        const auto state = describe();
        QCOMPARE(state.groups[0].name, u"a … and ~/x"_s);
        QCOMPARE(state.groups[0].buckets[0].id, u"a … and ~/x"_s);
        QCOMPARE(state.groups[0].buckets[0].window, u"a … and ~/x"_s);
        QVERIFY(!state.groups[0].buckets[0].name.contains(u"SECRET-TOKEN"_s));
    }

    void aTokenThatOnlyALineBreakHidesIsFoundToo()
    {
        answer({.groups = {{.displayName = u"the SECRET\nTOKEN"_s, .buckets = {}}}},
            u"SECRET TOKEN"_s);
        QCOMPARE(describe().groups[0].name, u"the …"_s);
    }

    void whatIsTooLongOrTooMuchIsLeftOut()
    {
        model::QuotaSummary summary;
        for (int g = 0; g < 100; ++g) {
            model::QuotaGroup group{.displayName = QString(1000, u'x'), .buckets = {}};
            for (int b = 0; b < 10; ++b)
                group.buckets.append(model::sampleBucket(QString(1000, u'y'), u"5h"_s, 0.5));
            summary.groups.append(group);
        }
        answer(summary);
        const auto state = describe();
        QCOMPARE(state.groups.size(), PublishedState::mostGroups);
        qsizetype buckets = 0;
        for (const auto &group : state.groups) {
            QVERIFY(group.name.size() <= PublishedState::longestName);
            for (const auto &bucket : group.buckets)
                QVERIFY(bucket.id.size() <= PublishedState::longestName);
            buckets += group.buckets.size();
        }
        QCOMPARE(buckets, PublishedState::mostBuckets);
        QVERIFY(state.title.size() <= PublishedState::longestText);
    }

private:
    PublishedState describe() const
    {
        return app::describeState(m_fixture->service, u"/home/someone"_s);
    }

    void answer(const model::QuotaSummary &summary, const QString &token = u"SECRET-TOKEN"_s)
    {
        m_fixture->answer(summary, {.httpPort = 4711, .csrfToken = token});
    }

    std::optional<test::ServiceFixture> m_fixture;
};

QTEST_GUILESS_MAIN(StateDescriptionTest)

#include "state_description_test.moc"
