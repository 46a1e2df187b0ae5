#include "platform/wording.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch::platform;

class WordingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theDesktopIsNamedInItsOwnWords_data()
    {
        QTest::addColumn<DesktopFamily>("family");
        QTest::addColumn<QString>("refreshToolTip");
        QTest::addColumn<QString>("requiresApproval");
        QTest::addColumn<QString>("systemVersionLabel");
        QTest::newRow("macOS") << DesktopFamily::macOS << u"Refresh Quota (⌘R)"_s
                               << u"Requires approval in macOS System Settings."_s
                               << u"macOS Version"_s;
        QTest::newRow("Linux") << DesktopFamily::Linux << u"Refresh Quota (Ctrl+R)"_s
                               << u"Requires approval in system settings."_s << u"Linux Version"_s;
    }
    void theDesktopIsNamedInItsOwnWords()
    {
        QFETCH(DesktopFamily, family);
        QFETCH(QString, refreshToolTip);
        QFETCH(QString, requiresApproval);
        QFETCH(QString, systemVersionLabel);
        const Wording &words = wording(family);
        QCOMPARE(words.refreshToolTip, refreshToolTip);
        QCOMPARE(words.requiresApproval, requiresApproval);
        QCOMPARE(words.systemVersionLabel, systemVersionLabel);
    }
};

QTEST_GUILESS_MAIN(WordingTest)
#include "wording_test.moc"
