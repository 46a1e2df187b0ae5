#include "forecast/csv.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch::forecast;

class CsvTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aLineHasTheseFields_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<QStringList>("fields");
        QTest::newRow("nothing") << QByteArray() << QStringList{QString()};
        QTest::newRow("one") << QByteArray("a") << QStringList{u"a"_s};
        QTest::newRow("several") << QByteArray("a,b c,")
                                 << QStringList{u"a"_s, u"b c"_s, QString()};
        QTest::newRow("quoted") << QByteArray(R"("a,b","c""d",e)")
                                << QStringList{u"a,b"_s, u"c\"d"_s, u"e"_s};
        QTest::newRow("quoted and empty") << QByteArray(R"("","")") << QStringList{{}, {}};
    }
    void aLineHasTheseFields()
    {
        QFETCH(QByteArray, line);
        QFETCH(QStringList, fields);
        const auto read = csvFields(line);
        QVERIFY(read);
        QStringList texts;
        for (const auto &field : *read)
            texts.append(QString::fromUtf8(field));
        QCOMPARE(texts, fields);
    }

    void aBadLineHasNone_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::newRow("open quote") << QByteArray(R"(a,"b)");
        QTest::newRow("open at the end") << QByteArray(R"(a,")");
        QTest::newRow("something behind the quote") << QByteArray(R"("a"b,c)");
    }
    void aBadLineHasNone()
    {
        QFETCH(QByteArray, line);
        QVERIFY(!csvFields(line));
    }

    void whatIsWrittenIsRead_data()
    {
        QTest::addColumn<QByteArray>("text");
        for (const char *text : {"", "plain", "a,b", "a\"b", "\"", "\"\"", ",", " a "})
            QTest::newRow(text) << QByteArray(text);
    }
    void whatIsWrittenIsRead()
    {
        QFETCH(QByteArray, text);
        const QByteArray line = csvField(text) + ',' + csvField(text);
        const auto read = csvFields(line);
        QVERIFY(read);
        QCOMPARE(*read, QList<QByteArray>({text, text}));
    }

    void numbersAndTimesAreWithinTheirBounds()
    {
        QCOMPARE(csvTime("0"), std::chrono::sys_seconds());
        QVERIFY(csvTime("253402300799"));
        for (const char *bad :
            {"", "-1", "253402300800", "1e9", "x", "99999999999999999999", "1.5"})
            QVERIFY2(!csvTime(bad), bad);
        QCOMPARE(csvNumber("0.25"), 0.25);
        QCOMPARE(csvNumber("1e-3"), 0.001);
        for (const char *bad : {"", "nan", "inf", "-inf", "x", "1,5", "1e999"})
            QVERIFY2(!csvNumber(bad), bad);
    }
};

QTEST_APPLESS_MAIN(CsvTest)
#include "csv_test.moc"
