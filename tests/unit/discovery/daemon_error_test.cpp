#include "discovery/daemon_error.h"

#include <QTest>

namespace brimwatch::discovery {

using namespace Qt::Literals::StringLiterals;

class DaemonErrorTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyErrorHasItsText_data();
    void everyErrorHasItsText();
    void withoutASuccessTheLastUpdateIsNever();
    void theLastUpdateFollowsTheLocale();
    void aMessageIsTakenAsItIs();
};

namespace {

const DateStyles &english()
{
    static const DateStyles styles(u"en_US"_s);
    return styles;
}

QDateTime lastUpdate()
{
    return {QDate(2026, 11, 16), QTime(4, 59, 24), Qt::UTC};
}

} // namespace

void DaemonErrorTest::everyErrorHasItsText_data()
{
    QTest::addColumn<DaemonError::Kind>("kind");
    QTest::addColumn<QString>("text");
    using enum DaemonError::Kind;
    // The full stop at the end of the middle two alone is meant so.
    QTest::newRow("directoryNotFound")
        << directoryNotFound
        << u"Antigravity daemon directory not found in ~/.gemini/antigravity/daemon (Last update: %1)"_s;
    QTest::newRow("noDaemonFound")
        << noDaemonFound
        << u"No running Antigravity daemon found. Make sure Antigravity is open (Last update: %1)."_s;
    QTest::newRow("invalidResponse")
        << invalidResponse
        << u"Received invalid or empty response from Antigravity service (Last update: %1)."_s;
    QTest::newRow("daemonUnreachable")
        << daemonUnreachable
        << u"Cannot connect to Antigravity: The request timed out. (Last update: %1)"_s;
}

void DaemonErrorTest::everyErrorHasItsText()
{
    QFETCH(const DaemonError::Kind, kind);
    QFETCH(const QString, text);
    DaemonError error{.kind = kind, .message = u"The request timed out."_s};
    QCOMPARE(error.errorDescription(english()), text.arg(u"Never"_s));
    error.lastUpdate = lastUpdate();
    QCOMPARE(error.errorDescription(english()), text.arg(u"Nov 16, 2026 at 4:59:24 AM"_s));
}

void DaemonErrorTest::withoutASuccessTheLastUpdateIsNever()
{
    QCOMPARE(DaemonError{}.lastUpdateString(english()), u"Never"_s);
}

void DaemonErrorTest::theLastUpdateFollowsTheLocale()
{
    const DaemonError error{.lastUpdate = lastUpdate()};
    QCOMPARE(error.lastUpdateString(DateStyles(u"es_ES"_s)), u"16 nov 2026, 4:59:24"_s);
    // The tests run with LC_ALL=en_US.
    QCOMPARE(error.lastUpdateString(), u"Nov 16, 2026 at 4:59:24 AM"_s);
}

void DaemonErrorTest::aMessageIsTakenAsItIs()
{
    const DaemonError error{
        .kind = DaemonError::Kind::daemonUnreachable, .message = u"%1 %2 <b>&amp;"_s};
    QCOMPARE(error.errorDescription(english()),
        u"Cannot connect to Antigravity: %1 %2 <b>&amp; (Last update: Never)"_s);
}

} // namespace brimwatch::discovery

QTEST_GUILESS_MAIN(brimwatch::discovery::DaemonErrorTest)
#include "daemon_error_test.moc"
