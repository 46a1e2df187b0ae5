#include "core/redactor.h"

#include <QTest>

namespace brimwatch {

using namespace Qt::Literals::StringLiterals;

class RedactorTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void tokenAndHomeAreReplaced_data();
    void tokenAndHomeAreReplaced();
    void aLineIsRedactedBeforeAndAfterItIsMadeOne();
};

void RedactorTest::tokenAndHomeAreReplaced_data()
{
    using Token = std::optional<QString>;
    QTest::addColumn<Token>("token");
    QTest::addColumn<QString>("home");
    QTest::addColumn<QString>("redacted");
    const QString text = u"abcd in /home/me/a, abcd"_s;
    QTest::newRow("neither") << Token() << QString() << text;
    QTest::newRow("the token") << Token(u"abcd"_s) << QString() << u"… in /home/me/a, …"_s;
    QTest::newRow("the home") << Token() << u"/home/me"_s << u"abcd in ~/a, abcd"_s;
    QTest::newRow("a home with a slash at its end")
        << Token() << u"/home/me/"_s << u"abcd in ~/a, abcd"_s;
    QTest::newRow("both") << Token(u"abcd"_s) << u"/home/me"_s << u"… in ~/a, …"_s;
    QTest::newRow("a token too short to hide") << Token(u"abc"_s) << QString() << text;
    QTest::newRow("an empty token") << Token(QString()) << QString() << text;
    QTest::newRow("the root is nobody's home") << Token() << u"/"_s << text;
}

void RedactorTest::tokenAndHomeAreReplaced()
{
    QFETCH(const std::optional<QString>, token);
    QFETCH(const QString, home);
    QFETCH(const QString, redacted);
    QCOMPARE(Redactor(token, home).redacted(u"abcd in /home/me/a, abcd"_s), redacted);
}

void RedactorTest::aLineIsRedactedBeforeAndAfterItIsMadeOne()
{
    const Redactor redactor(u"SECRET TOKEN"_s, {});
    QCOMPARE(redactor.line(u"the SECRET\nTOKEN"_s, 400), u"the …"_s);
    QCOMPARE(redactor.line(u"a  SECRET TOKEN\n"_s, 400), u"a …"_s);
    // A cut through the token would leave the beginning of it.
    QCOMPARE(redactor.line(u"SECRET TOKEN and more"_s, 8), u"… and m…"_s);
}

} // namespace brimwatch

QTEST_GUILESS_MAIN(brimwatch::RedactorTest)
#include "redactor_test.moc"
