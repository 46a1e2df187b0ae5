#include "service/diagnostics.h"
#include "service/quota_request.h"
#include "support/json_cases.h"

#include <QTest>
#include <QUrl>
#include <QUrlQuery>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;

class ReferenceServiceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aPortMakesAnAddressOrNot_data()
    {
        QTest::addColumn<qint64>("port");
        QTest::addColumn<bool>("parses");
        QTest::addColumn<bool>("required");
        for (const auto &one : test::referenceCases(u"urls.json"_s)) {
            const QString port = one["port"_L1].toString();
            QTest::newRow(qPrintable(port))
                << port.toLongLong() << one["parses"_L1].toBool() << test::isRequired(one);
        }
    }
    void aPortMakesAnAddressOrNot()
    {
        QFETCH(qint64, port);
        QFETCH(bool, parses);
        QFETCH(bool, required);
        for (const bool secure : {false, true}) {
            discovery::DaemonInfo daemon;
            (secure ? daemon.httpsPort : daemon.httpPort) = port;
            const auto url = service::quotaUrl(daemon);
            if (required)
                QCOMPARE(url.has_value(), parses);
            if (!url)
                continue;
            QCOMPARE(url->toString(),
                QString((secure ? u"https"_s : u"http"_s) + u"://127.0.0.1:" + QString::number(port)
                    + u"/exa.language_server_pb.LanguageServerService/RetrieveUserQuotaSummary"));
            QCOMPARE(url->port(), port);
        }
    }

    void aMailIsOpenedByItsAddress_data()
    {
        QTest::addColumn<QString>("body");
        QTest::addColumn<QString>("address");
        QTest::addColumn<bool>("required");
        for (const auto &one : test::referenceCases(u"mailto.json"_s)) {
            const QString body = one["body"_L1].toString();
            QTest::newRow(qPrintable(body))
                << body << one["url"_L1].toString() << test::isRequired(one);
        }
    }
    void aMailIsOpenedByItsAddress()
    {
        QFETCH(QString, body);
        QFETCH(QString, address);
        QFETCH(bool, required);
        const QUrl url = service::mailUrl(u"support@brimwatch.example"_s, u"Brimwatch"_s, body);
        if (required)
            QCOMPARE(QString::fromLatin1(url.toEncoded()), address);
        QCOMPARE(QUrlQuery(url).queryItemValue(u"body"_s, QUrl::FullyDecoded), body);
    }
};

QTEST_GUILESS_MAIN(ReferenceServiceTest)
#include "reference_service_test.moc"
