#include "discovery/daemon_discovery_service.h"
#include "discovery/daemon_info.h"
#include "support/json_cases.h"

#include <QJsonDocument>
#include <QTest>

namespace brimwatch::discovery {

using namespace Qt::Literals::StringLiterals;
using test::isRequired;

class ReferenceDiscoveryTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void announcementsAreDecoded_data();
    void announcementsAreDecoded();
    void namesOfAnnouncementsAreKnown_data();
    void namesOfAnnouncementsAreKnown();
};

void ReferenceDiscoveryTest::announcementsAreDecoded_data()
{
    QTest::addColumn<QJsonObject>("c");
    int number = 0;
    for (const auto &c : test::referenceCases(u"decode_daemon.json"_s))
        QTest::addRow("%d%s %s", number++, isRequired(c) ? "" : " (observed)",
            qUtf8Printable(c["body"_L1].toString()))
            << c;
}

void ReferenceDiscoveryTest::announcementsAreDecoded()
{
    QFETCH(const QJsonObject, c);
    const auto info = decodeDaemonInfo(c["body"_L1].toString().toUtf8());
    if (isRequired(c)) {
        QCOMPARE(info ? QJsonValue(encode(*info)) : QJsonValue(QJsonValue::Null), c["decoded"_L1]);
    } else if (info) {
        // Whatever was read, it is a whole record that can be written and read again.
        const auto again = decodeDaemonInfo(QJsonDocument(encode(*info)).toJson());
        QVERIFY(again.has_value());
        QCOMPARE(*again, *info);
    }
}

void ReferenceDiscoveryTest::namesOfAnnouncementsAreKnown_data()
{
    QTest::addColumn<QJsonObject>("c");
    int number = 0;
    for (const auto &c : test::referenceCases(u"names_of_files.json"_s))
        QTest::addRow("%d %s", number++, qUtf8Printable(c["name"_L1].toString())) << c;
}

void ReferenceDiscoveryTest::namesOfAnnouncementsAreKnown()
{
    QFETCH(const QJsonObject, c);
    QCOMPARE(isCandidateName(c["name"_L1].toString()), c["candidate"_L1].toBool());
}

} // namespace brimwatch::discovery

QTEST_GUILESS_MAIN(brimwatch::discovery::ReferenceDiscoveryTest)
#include "reference_discovery_test.moc"
