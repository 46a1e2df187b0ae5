#include "views/models/quota_entries.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;

class QuotaEntriesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void shownTextsAreOneLineOfLimitedLength();
};

void QuotaEntriesTest::shownTextsAreOneLineOfLimitedLength()
{
    QCOMPARE(views::shownText(u"a\nb\u2028c\td"_s), u"a b c d"_s);
    QCOMPARE(views::shownText(u"x"_s.repeated(100000)).size(), 1000);
    // What a reader sees as one character is not cut in two.
    const QString fits = u"x"_s.repeated(999);
    QCOMPARE(views::shownText(fits + u"🟢🟢"_s), fits);
    QCOMPARE(views::shownText(fits + u"e\u0301e"_s), fits);
    QCOMPARE(views::shownText(u"<b>&amp;  two blanks"_s), u"<b>&amp;  two blanks"_s);
}

QTEST_MAIN(QuotaEntriesTest)
#include "quota_entries_test.moc"
