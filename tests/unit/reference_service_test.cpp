#include "service/quota_request.h"
#include "support/json_cases.h"

#include <QTest>
#include <QUrl>

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
};

QTEST_GUILESS_MAIN(ReferenceServiceTest)
#include "reference_service_test.moc"
