#include "core/plain_text.h"

#include <QTest>

namespace brimwatch {

using namespace Qt::Literals::StringLiterals;

class PlainTextTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aTextThatFitsIsItsOwnBeginning();
    void aCutIsBetweenCharacters_data();
    void aCutIsBetweenCharacters();
    void aCharacterThatIsTooLongIsCutBetweenCodePoints();
    void aLineHasNoControlsAndSingleBlanks_data();
    void aLineHasNoControlsAndSingleBlanks();
    void aLineThatIsCutSaysSo();
    void blanksAreNotWhatIsCutOff();
};

void PlainTextTest::aTextThatFitsIsItsOwnBeginning()
{
    QCOMPARE(truncated(u"four"_s, 4), u"four"_s);
    QCOMPARE(truncated(QString(), 4), QString());
    QCOMPARE(truncated(u"four"_s, 0), QString());
}

void PlainTextTest::aCutIsBetweenCharacters_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("beginning"); // Of at most 4 units.
    QTest::newRow("letters") << u"abcdef"_s << u"abcd"_s;
    QTest::newRow("behind a pair") << u"ab🟢c"_s << u"ab🟢"_s;
    QTest::newRow("within a pair") << u"abc🟢c"_s << u"abc"_s;
    QTest::newRow("before a pair") << u"abcd🟢"_s << u"abcd"_s;
    QTest::newRow("within a pair behind a Burmese letter") << u"a\u1000b🟢c"_s << u"a\u1000b"_s;
    QTest::newRow("before an accent") << u"abcd\u0301e"_s << u"abc"_s;
    QTest::newRow("within a flag") << u"ab🇫🇷"_s << u"ab"_s;
    QTest::newRow("within a family") << u"a👩\u200d👧"_s << u"a"_s;
    QTest::newRow("before an accent outside the basic plane") << u"abcd\U0001e8d0"_s << u"abc"_s;
    QTest::newRow("half a pair") << QString(u"abc"_s % QChar(0xd83d) % u"xy"_s)
                                 << QString(u"abc"_s % QChar(0xd83d));
}

void PlainTextTest::aCutIsBetweenCharacters()
{
    QFETCH(const QString, text);
    QFETCH(const QString, beginning);
    QCOMPARE(truncated(text, 4), beginning);
    QCOMPARE(truncated(text + u"x"_s.repeated(1'000'000), 4), beginning);
}

void PlainTextTest::aCharacterThatIsTooLongIsCutBetweenCodePoints()
{
    QCOMPARE(truncated(u"e"_s + u"\u0301"_s.repeated(1000), 4), u"e\u0301\u0301\u0301"_s);
    QCOMPARE(truncated(u"e"_s + u"\U0001e8d0"_s.repeated(1000), 4), u"e\U0001e8d0"_s);
}

void PlainTextTest::aLineHasNoControlsAndSingleBlanks_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("line");
    QTest::newRow("plain") << u"a b"_s << u"a b"_s;
    QTest::newRow("nothing") << QString() << QString();
    QTest::newRow("blanks alone") << u" \n\t "_s << QString();
    QTest::newRow("controls") << u"a\u0007b\u0000c\u001bd\u0085e"_s << u"a b c d e"_s;
    QTest::newRow("line ends") << u"a\r\nb\u2028c\u2029d\ve\n"_s << u"a b c d e"_s;
    QTest::newRow("blanks at the ends") << u"  a  b  "_s << u"a b"_s;
    QTest::newRow("markup is text") << u"<b>&amp;"_s << u"<b>&amp;"_s;
}

void PlainTextTest::aLineHasNoControlsAndSingleBlanks()
{
    QFETCH(const QString, text);
    QFETCH(const QString, line);
    QCOMPARE(asOneLine(text, 400), line);
}

void PlainTextTest::aLineThatIsCutSaysSo()
{
    QCOMPARE(asOneLine(u"four"_s, 4), u"four"_s);
    QCOMPARE(asOneLine(u"fives"_s, 4), u"fiv…"_s);
    QCOMPARE(asOneLine(u"ab🟢🟢"_s, 4), u"ab…"_s);
    QCOMPARE(asOneLine(u"x"_s.repeated(1'000'000), 400), QString(u"x"_s.repeated(399) + u'…'));
}

void PlainTextTest::blanksAreNotWhatIsCutOff()
{
    QCOMPARE(asOneLine(u"four"_s + u" "_s.repeated(1'000'000), 4), u"four"_s);
    QCOMPARE(asOneLine(u" "_s.repeated(1'000'000) + u"four"_s, 4), u"four"_s);
    QCOMPARE(asOneLine(u"four"_s + u" "_s.repeated(1'000'000) + u"x"_s, 4), u"fou…"_s);
}

} // namespace brimwatch

QTEST_GUILESS_MAIN(brimwatch::PlainTextTest)
#include "plain_text_test.moc"
