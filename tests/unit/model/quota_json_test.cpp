#include "core/json_fields.h"
#include "model/quota_json.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

#include <algorithm>

namespace brimwatch::model {

using namespace Qt::Literals::StringLiterals;

namespace {

QByteArray bodyWithBucket(const QByteArray &bucket)
{
    return R"({"groups":[{"displayName":"Gemini","buckets":[)" + bucket + "]}]}";
}

const QByteArray fullBody = R"({
        "response": {
            "groups": [{
                "displayName": "Gemini Models",
                "description": "of Google",
                "buckets": [{
                    "bucketId": "gemini-5h", "displayName": "5 hours", "description": "short",
                    "window": "5h", "remainingFraction": 0.8, "resetTime": "2026-11-16T09:00:00Z"
                }, {
                    "bucketId": "gemini-weekly", "displayName": "Week", "remainingFraction": 1
                }]
            }, { "displayName": "Claude", "buckets": [] }],
            "description": "all"
        },
        "code": "ok", "message": "fine"
    })";

} // namespace

class QuotaJsonTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyFieldIsDecoded();
    void everyRecordIsEncodedUnderTheSameKeys();
    void absentOptionalFieldsAreNotEncoded();
    void anEmptyObjectIsAnEnvelopeWithNothingInIt();
    void aResponseWithoutGroupsFailsWhole();
    void anEmptyListOfGroupsIsASummary();
    void aBucketNeedsNeitherWindowNorResetTime();
    void oneBucketWithoutAFractionRefusesTheWholeBody();
    void aFractionAsATextFails();
    void anIntegerIsAFraction();
    void extraKeysAreIgnoredAnywhere();
    void theOrderOfTheDaemonIsKept();

    void aRequiredFieldIsNeeded_data();
    void aRequiredFieldIsNeeded();
    void anOptionalFieldMayBeMissingOrNull_data();
    void anOptionalFieldMayBeMissingOrNull();

    void anAnswerIsAnEnvelopeOrElseABareSummary_data();
    void anAnswerIsAnEnvelopeOrElseABareSummary();

    void hostileBodiesAreRefused_data();
    void hostileBodiesAreRefused();
    void anErrorNamesThePlaceAndHoldsNoValue();
    void theFirstErrorIsTheOneTold();
    void nothingIsReadAfterTheFirstError_data();
    void nothingIsReadAfterTheFirstError();
};

void QuotaJsonTest::everyFieldIsDecoded()
{
    const auto envelope = decodeQuotaSummaryEnvelope(fullBody);
    QVERIFY(envelope.has_value());
    const QuotaSummaryEnvelope expected {
        .response = QuotaSummary {
            .groups = {
                {
                    .displayName = u"Gemini Models"_s,
                    .description = u"of Google"_s,
                    .buckets = {
                        {
                            .bucketId = u"gemini-5h"_s,
                            .displayName = u"5 hours"_s,
                            .description = u"short"_s,
                            .window = u"5h"_s,
                            .remainingFraction = 0.8,
                            .resetTime = u"2026-11-16T09:00:00Z"_s,
                        },
                        {
                            .bucketId = u"gemini-weekly"_s,
                            .displayName = u"Week"_s,
                            .remainingFraction = 1.0,
                        },
                    },
                },
                {.displayName = u"Claude"_s},
            },
            .description = u"all"_s,
        },
        .code = u"ok"_s,
        .message = u"fine"_s,
    };
    QVERIFY(*envelope == expected);
    QCOMPARE(envelope->response->groups.at(0).id(), u"Gemini Models"_s);
    QCOMPARE(envelope->response->groups.at(0).buckets.at(1).id(), u"gemini-weekly"_s);
}

void QuotaJsonTest::everyRecordIsEncodedUnderTheSameKeys()
{
    const auto envelope = decodeQuotaSummaryEnvelope(fullBody);
    QVERIFY(envelope.has_value());
    QCOMPARE(encode(*envelope), QJsonDocument::fromJson(fullBody).object());
}

void QuotaJsonTest::absentOptionalFieldsAreNotEncoded()
{
    QCOMPARE(encode(QuotaSummaryEnvelope{}), QJsonObject{});
    QCOMPARE(encode(QuotaSummary{}), (QJsonObject{{"groups"_L1, QJsonArray{}}}));
    QCOMPARE(encode(QuotaGroup{}).keys(), (QStringList{u"buckets"_s, u"displayName"_s}));
    QCOMPARE(encode(QuotaBucket{}).keys(),
        (QStringList{u"bucketId"_s, u"displayName"_s, u"remainingFraction"_s}));
}

void QuotaJsonTest::anEmptyObjectIsAnEnvelopeWithNothingInIt()
{
    const auto envelope = decodeQuotaSummaryEnvelope("{}");
    QVERIFY(envelope.has_value());
    QVERIFY(!envelope->response);
    QVERIFY(!envelope->code);
    QVERIFY(!envelope->message);
}

void QuotaJsonTest::aResponseWithoutGroupsFailsWhole()
{
    QVERIFY(!decodeQuotaSummaryEnvelope(R"({"response":{}, "code":"c"})"));
}

void QuotaJsonTest::anEmptyListOfGroupsIsASummary()
{
    const auto envelope = decodeQuotaSummaryEnvelope(R"({"response":{"groups":[]}})");
    QVERIFY(envelope && envelope->response);
    QVERIFY(envelope->response->groups.isEmpty());
}

void QuotaJsonTest::aBucketNeedsNeitherWindowNorResetTime()
{
    const auto summary = decodeQuotaSummary(
        bodyWithBucket(R"({"bucketId":"b","displayName":"B","remainingFraction":0.5})"));
    QVERIFY(summary.has_value());
    QVERIFY(!summary->groups.at(0).buckets.at(0).window);
    QVERIFY(!summary->groups.at(0).buckets.at(0).resetTime);
}

void QuotaJsonTest::oneBucketWithoutAFractionRefusesTheWholeBody()
{
    const QByteArray good = R"({"bucketId":"a","displayName":"A","remainingFraction":0.5})";
    const QByteArray bad = R"({"bucketId":"b","displayName":"B"})";
    QVERIFY(decodeQuotaSummary(bodyWithBucket(good + ',' + good)));
    QVERIFY(!decodeQuotaSummary(bodyWithBucket(good + ',' + bad)));
    QVERIFY(!decodeQuotaSummary(bodyWithBucket(bad + ',' + good)));
}

void QuotaJsonTest::aFractionAsATextFails()
{
    QVERIFY(!decodeQuotaSummary(
        bodyWithBucket(R"({"bucketId":"b","displayName":"B","remainingFraction":"0.5"})")));
}

void QuotaJsonTest::anIntegerIsAFraction()
{
    const auto summary = decodeQuotaSummary(
        bodyWithBucket(R"({"bucketId":"b","displayName":"B","remainingFraction":1})"));
    QVERIFY(summary.has_value());
    QCOMPARE(summary->groups.at(0).buckets.at(0).remainingFraction, 1.0);
}

void QuotaJsonTest::extraKeysAreIgnoredAnywhere()
{
    const auto summary = decodeAnswer(R"({"x":[1],"response":{"y":{"z":null},"groups":[
        {"displayName":"G","n":1e300,"buckets":[
            {"bucketId":"b","displayName":"B","remainingFraction":0.5,"modelIds":["a",{}]}]}]}})");
    QVERIFY(summary.has_value());
    QCOMPARE(summary->groups.at(0).buckets.size(), 1);
}

void QuotaJsonTest::theOrderOfTheDaemonIsKept()
{
    const auto summary = decodeQuotaSummary(R"({"groups":[
        {"displayName":"z","buckets":[]},{"displayName":"a","buckets":[]},{"displayName":"z","buckets":[]}]})");
    QVERIFY(summary.has_value());
    QCOMPARE(summary->groups.at(0).displayName, u"z"_s);
    QCOMPARE(summary->groups.at(1).displayName, u"a"_s);
    QCOMPARE(summary->groups.at(2).displayName, u"z"_s);
}

void QuotaJsonTest::aRequiredFieldIsNeeded_data()
{
    QTest::addColumn<QStringList>("path");
    QTest::newRow("groups") << QStringList{u"groups"_s};
    QTest::newRow("group name") << QStringList{u"groups"_s, u"displayName"_s};
    QTest::newRow("buckets") << QStringList{u"groups"_s, u"buckets"_s};
    QTest::newRow("bucket id") << QStringList{u"groups"_s, u"buckets"_s, u"bucketId"_s};
    QTest::newRow("bucket name") << QStringList{u"groups"_s, u"buckets"_s, u"displayName"_s};
    QTest::newRow("fraction") << QStringList{u"groups"_s, u"buckets"_s, u"remainingFraction"_s};
}

namespace {

/// The object with the value at the path replaced, in the first member of each array; Undefined
/// removes it.
QJsonObject replaced(QJsonObject object, const QStringList &path, const QJsonValue &value)
{
    const QString &key = path.first();
    if (path.size() == 1) {
        object.insert(key, value);
        return object;
    }
    auto array = object[key].toArray();
    array.replace(0, replaced(array.at(0).toObject(), path.mid(1), value));
    object.insert(key, array);
    return object;
}

Result<QuotaSummary, DecodingError> decodeWith(const QStringList &path, const QJsonValue &value)
{
    const auto full = QJsonDocument::fromJson(fullBody).object()["response"_L1].toObject();
    return decodeQuotaSummary(QJsonDocument(replaced(full, path, value)).toJson());
}

} // namespace

void QuotaJsonTest::aRequiredFieldIsNeeded()
{
    QFETCH(const QStringList, path);
    QVERIFY(!decodeWith(path, QJsonValue(QJsonValue::Undefined)));
    QVERIFY(!decodeWith(path, QJsonValue(QJsonValue::Null)));
    // No field takes an object; each takes one of text, number and array, so two of these three are
    // wrong.
    QVERIFY(!decodeWith(path, QJsonObject{}));
    const QList<QJsonValue> others{u"text"_s, 0.5, QJsonArray{}};
    QCOMPARE(std::count_if(others.begin(), others.end(),
                 [&path](const QJsonValue &value) { return decodeWith(path, value).has_value(); }),
        1);
    QVERIFY(!decodeWith(path, true));
}

void QuotaJsonTest::anOptionalFieldMayBeMissingOrNull_data()
{
    QTest::addColumn<QStringList>("path");
    QTest::newRow("description") << QStringList{u"description"_s};
    QTest::newRow("group description") << QStringList{u"groups"_s, u"description"_s};
    QTest::newRow("bucket description") << QStringList{u"groups"_s, u"buckets"_s, u"description"_s};
    QTest::newRow("window") << QStringList{u"groups"_s, u"buckets"_s, u"window"_s};
    QTest::newRow("reset time") << QStringList{u"groups"_s, u"buckets"_s, u"resetTime"_s};
}

void QuotaJsonTest::anOptionalFieldMayBeMissingOrNull()
{
    QFETCH(const QStringList, path);
    const auto missing = decodeWith(path, QJsonValue(QJsonValue::Undefined));
    const auto null = decodeWith(path, QJsonValue(QJsonValue::Null));
    const auto empty = decodeWith(path, QString());
    QVERIFY(missing && null && empty);
    QVERIFY(*missing == *null);
    QVERIFY(*missing != *empty);
    QVERIFY(!decodeWith(path, 5));
    QVERIFY(!decodeWith(path, false));
    QVERIFY(!decodeWith(path, QJsonArray{}));
}

void QuotaJsonTest::anAnswerIsAnEnvelopeOrElseABareSummary_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<qsizetype>("groups"); // -1: refused
    const QByteArray one = R"([{"displayName":"G","buckets":[]}])";
    QTest::newRow("envelope") << R"({"response":{"groups":)" + one + "}}" << qsizetype{1};
    QTest::newRow("bare") << R"({"groups":)" + one + "}" << qsizetype{1};
    QTest::newRow("the envelope wins")
        << R"({"response":{"groups":[]},"groups":)" + one + "}" << qsizetype{0};
    QTest::newRow("null response and bare")
        << R"({"response":null,"groups":)" + one + "}" << qsizetype{1};
    QTest::newRow("broken response and bare")
        << R"({"response":5,"groups":)" + one + "}" << qsizetype{1};
    QTest::newRow("numeric code and bare")
        << R"({"response":{"groups":[]},"code":5,"groups":)" + one + "}" << qsizetype{1};
    QTest::newRow("numeric code") << QByteArray(R"({"response":{"groups":[]},"code":5})")
                                  << qsizetype{-1};
    QTest::newRow("an error of the daemon")
        << QByteArray(R"({"code":"unauthenticated","message":"m"})") << qsizetype{-1};
    QTest::newRow("nothing in it") << QByteArray("{}") << qsizetype{-1};
}

void QuotaJsonTest::anAnswerIsAnEnvelopeOrElseABareSummary()
{
    QFETCH(const QByteArray, body);
    QFETCH(const qsizetype, groups);
    const auto summary = decodeAnswer(body);
    QCOMPARE(summary ? summary->groups.size() : -1, groups);
}

void QuotaJsonTest::hostileBodiesAreRefused_data()
{
    QTest::addColumn<QByteArray>("body");
    const auto withFraction = [](const QByteArray &fraction) {
        return bodyWithBucket(
            R"({"bucketId":"b","displayName":"B","remainingFraction":)" + fraction + "}");
    };
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("a null byte") << QByteArray(1, '\0');
    QTest::newRow("no JSON") << QByteArray("<html>");
    QTest::newRow("cut short") << QByteArray(R"({"groups":[)");
    QTest::newRow("something behind it") << QByteArray(R"({"groups":[]}x)");
    QTest::newRow("another value") << QByteArray("[]");
    QTest::newRow("a number beyond all") << withFraction("1e400");
    QTest::newRow("a number below all") << withFraction("-1e400");
    QTest::newRow("not a number") << withFraction("NaN");
    QTest::newRow("infinity") << withFraction("Infinity");
    QTest::newRow("deep arrays") << QByteArray(R"({"groups":)" + QByteArray(200'000, '['));
    QTest::newRow("deep arrays, closed") << QByteArray(
        R"({"groups":[],"deep":)" + QByteArray(200'000, '[') + QByteArray(200'000, ']') + "}");
    QByteArray objects;
    for (int i = 0; i < 100'000; ++i)
        objects += R"({"a":)";
    QTest::newRow("deep objects") << objects;
    QTest::newRow("no UTF-8") << QByteArray("{\"groups\":[],\"x\":\"\xe9\"}");
    QTest::newRow("half a surrogate pair")
        << QByteArray(R"({"groups":[{"displayName":"\ud83e","buckets":[]}]})");
}

void QuotaJsonTest::hostileBodiesAreRefused()
{
    QFETCH(const QByteArray, body);
    QVERIFY(!decodeAnswer(body));
}

void QuotaJsonTest::anErrorNamesThePlaceAndHoldsNoValue()
{
    const auto summary = decodeAnswer(R"({"response":{"groups":[
        {"displayName":"G","buckets":[
            {"bucketId":"b","displayName":"B","remainingFraction":1},
            {"bucketId":"b","displayName":"B","remainingFraction":"secret"}]}]}})");
    QVERIFY(!summary);
    QCOMPARE(summary.error().description,
        u"response.groups[0].buckets[1].remainingFraction: a number is needed"_s);
    const auto noJson = decodeAnswer(R"({"groups": secret})");
    QVERIFY(!noJson);
    QVERIFY(!noJson.error().description.contains(u"secret"_s));
}

void QuotaJsonTest::theFirstErrorIsTheOneTold()
{
    const auto summary
        = decodeQuotaSummary(R"({"groups":[{"displayName":1,"buckets":2}],"description":3})");
    QVERIFY(!summary);
    QCOMPARE(summary.error().description, u"groups[0].displayName: a text is needed"_s);
}

void QuotaJsonTest::nothingIsReadAfterTheFirstError_data()
{
    QTest::addColumn<QByteArray>("inners");
    QTest::addColumn<int>("read");
    QTest::addColumn<QString>("error");
    const QByteArray good = R"({"name":"n"},)";
    QTest::newRow("none wrong") << QByteArray(good.repeated(999) + R"({"name":"n"})") << 4000
                                << QString();
    QTest::newRow("all wrong") << QByteArray(QByteArray("{},").repeated(999) + "{}") << 1
                               << u"outers[0].inners[0].name: a text is needed"_s;
    QTest::newRow("no objects") << QByteArray(QByteArray("5,").repeated(999) + "5") << 1
                                << u"outers[0].inners[0]: an object is needed"_s;
    QTest::newRow("one wrong") << QByteArray(
        good.repeated(10) + R"({"name":5},)" + good.repeated(988) + R"({"name":"n"})")
                               << 11 << u"outers[0].inners[10].name: a text is needed"_s;
}

void QuotaJsonTest::nothingIsReadAfterTheFirstError()
{
    QFETCH(const QByteArray, inners);
    QFETCH(const int, read);
    QFETCH(const QString, error);
    const QByteArray outer = R"({"inners":[)" + inners + "]}";
    const auto object = parseJsonObject(
        R"({"outers":[)" + QByteArray(outer + ',').repeated(3) + outer + R"(],"late":"text"})");
    QVERIFY(object.has_value());

    int innersRead = 0;
    QString late;
    const auto names = decodeRecord(*object, [&](JsonFields body) {
        auto outers = body.records("outers"_L1, [&](JsonFields fields) {
            return fields.records("inners"_L1, [&](JsonFields inner) {
                ++innersRead;
                return inner.text("name"_L1);
            });
        });
        late = body.text("late"_L1);
        return outers;
    });
    QCOMPARE(innersRead, read);
    QCOMPARE(names ? QString() : names.error().description, error);
    QCOMPARE(late, names ? u"text"_s : QString());
}

} // namespace brimwatch::model

QTEST_GUILESS_MAIN(brimwatch::model::QuotaJsonTest)
#include "quota_json_test.moc"
