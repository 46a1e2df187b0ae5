#include "discovery/daemon_info.h"

#include <QJsonDocument>
#include <QTest>

#include <limits>

namespace brimwatch::discovery {

using namespace Qt::Literals::StringLiterals;

class DaemonInfoTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyFieldIsDecodedAndEncodedBack();
    void everyFieldMayBeMissingOrNull();
    void aFieldOfTheWrongTypeRefusesTheFile_data();
    void aFieldOfTheWrongTypeRefusesTheFile();
    void anIntegerOf64BitsIsKept_data();
    void anIntegerOf64BitsIsKept();
    void unknownKeysAreIgnored();
    void whatIsNoObjectIsRefused_data();
    void whatIsNoObjectIsRefused();
    void anErrorHoldsNothingOfTheToken();
};

void DaemonInfoTest::everyFieldIsDecodedAndEncodedBack()
{
    const QByteArray json
        = R"({"pid":7,"httpsPort":1,"httpPort":2,"lsVersion":"v","csrfToken":"t","filePath":"/x"})";
    const auto info = decodeDaemonInfo(json);
    QVERIFY(info.has_value());
    const DaemonInfo expected{.pid = 7,
        .httpsPort = 1,
        .httpPort = 2,
        .lsVersion = u"v"_s,
        .csrfToken = u"t"_s,
        .filePath = u"/x"_s};
    QVERIFY(*info == expected);
    QCOMPARE(encode(*info), QJsonDocument::fromJson(json).object());
}

void DaemonInfoTest::everyFieldMayBeMissingOrNull()
{
    const auto missing = decodeDaemonInfo("{}");
    const auto null = decodeDaemonInfo(
        R"({"pid":null,"httpsPort":null,"httpPort":null,"lsVersion":null,"csrfToken":null,"filePath":null})");
    QVERIFY(missing && null);
    QVERIFY(*missing == DaemonInfo{});
    QVERIFY(*null == DaemonInfo{});
    QCOMPARE(encode(*missing), QJsonObject{});
}

void DaemonInfoTest::aFieldOfTheWrongTypeRefusesTheFile_data()
{
    QTest::addColumn<QByteArray>("json");
    for (const QByteArray key : {"pid", "httpsPort", "httpPort"}) {
        for (const QByteArray value :
            {"\"1\"", "1.5", "true", "[]", "{}", "9223372036854775808", "-1e30", "1e400", "1e30"}) {
            const QByteArray json = "{\"" + key + "\":" + value + "}";
            QTest::newRow(json.constData()) << json;
        }
    }
    for (const QByteArray key : {"lsVersion", "csrfToken", "filePath"}) {
        for (const QByteArray value : {"1", "true", "[]", "{}", R"("\ud83e")"}) {
            const QByteArray json = "{\"" + key + "\":" + value + "}";
            QTest::newRow(json.constData()) << json;
        }
    }
}

void DaemonInfoTest::aFieldOfTheWrongTypeRefusesTheFile()
{
    QFETCH(const QByteArray, json);
    QVERIFY(!decodeDaemonInfo(json));
}

void DaemonInfoTest::anIntegerOf64BitsIsKept_data()
{
    QTest::addColumn<QByteArray>("number");
    QTest::addColumn<qint64>("value");
    QTest::newRow("zero") << QByteArray("0") << qint64{0};
    // One and zero are what reading tells integers by.
    QTest::newRow("one") << QByteArray("1") << qint64{1};
    QTest::newRow("negative") << QByteArray("-8080") << qint64{-8080};
    QTest::newRow("whole with a fraction of zero") << QByteArray("8080.0") << qint64{8080};
    QTest::newRow("beyond 32 bits") << QByteArray("2147483648") << qint64{2147483648};
    QTest::newRow("beyond a double") << QByteArray("9007199254740993") << qint64{9007199254740993};
    QTest::newRow("the largest") << QByteArray("9223372036854775807")
                                 << std::numeric_limits<qint64>::max();
    QTest::newRow("the smallest") << QByteArray("-9223372036854775808")
                                  << std::numeric_limits<qint64>::min();
}

void DaemonInfoTest::anIntegerOf64BitsIsKept()
{
    QFETCH(const QByteArray, number);
    QFETCH(const qint64, value);
    const auto info = decodeDaemonInfo("{\"httpPort\":" + number + "}");
    QVERIFY(info && info->httpPort);
    QCOMPARE(qint64{*info->httpPort}, value);
}

void DaemonInfoTest::unknownKeysAreIgnored()
{
    const auto info = decodeDaemonInfo(R"({"PID":"x","workspace":{"a":[1]},"pid":5})");
    QVERIFY(info.has_value());
    QVERIFY(*info == DaemonInfo{.pid = 5});
}

void DaemonInfoTest::whatIsNoObjectIsRefused_data()
{
    QTest::addColumn<QByteArray>("json");
    for (const QByteArray json : {"", "null", "[]", "7", "\"x\"", "{", "{\"pid\":1} x", "\xff\xfe"})
        QTest::addRow("%s", json.toPercentEncoding().constData()) << json;
}

void DaemonInfoTest::whatIsNoObjectIsRefused()
{
    QFETCH(const QByteArray, json);
    QVERIFY(!decodeDaemonInfo(json));
}

void DaemonInfoTest::anErrorHoldsNothingOfTheToken()
{
    const auto info = decodeDaemonInfo(R"({"csrfToken":["secret"],"pid":1})");
    QVERIFY(!info);
    QCOMPARE(info.error().description, u"csrfToken: a text is needed"_s);
}

} // namespace brimwatch::discovery

QTEST_GUILESS_MAIN(brimwatch::discovery::DaemonInfoTest)
#include "daemon_info_test.moc"
