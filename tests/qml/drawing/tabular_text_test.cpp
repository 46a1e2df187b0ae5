#include "views/drawing/tabular_text.h"

#include <QFontDatabase>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;

class TabularTextTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void allDigitsAreEquallyWide();
};

void TabularTextTest::allDigitsAreEquallyWide()
{
    const auto families = QFontDatabase::families();
    QVERIFY(!families.isEmpty());
    for (const QString &family : families) {
        QFont font(family);
        font.setPixelSize(11);
        const qreal zeros = views::TabularText::advance(font, u"Resets in 00m 00s"_s);
        QCOMPARE(views::TabularText::advance(font, u"Resets in 11m 74s"_s), zeros);
        QVERIFY(views::TabularText::advance(font, u"Resets in 111m 74s"_s) > zeros);
    }
}

QTEST_MAIN(TabularTextTest)
#include "tabular_text_test.moc"
