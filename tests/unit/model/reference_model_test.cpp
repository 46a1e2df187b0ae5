#include "model/family_names.h"
#include "model/iso8601.h"
#include "model/percent.h"
#include "model/quota_json.h"
#include "model/toolbar_stat_items.h"
#include "support/json_cases.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>
#include <QTimeZone>

namespace brimwatch::model {

using namespace Qt::Literals::StringLiterals;
using test::isRequired;
using test::referenceCases;

namespace {

void addCases(const QString &fileName, QLatin1StringView nameKey)
{
    QTest::addColumn<QJsonObject>("c");
    int number = 0;
    for (const auto &c : referenceCases(fileName)) {
        const QString name = c[nameKey].toVariant().toString().left(80);
        QTest::addRow("%d%s %s", number++, isRequired(c) ? "" : " (observed)", qUtf8Printable(name))
            << c;
    }
}

QJsonValue textOrNull(const std::optional<QString> &text)
{
    return text ? QJsonValue(*text) : QJsonValue(QJsonValue::Null);
}

template <typename Record> QJsonValue encodedOrNull(const Result<Record, DecodingError> &record)
{
    return record ? QJsonValue(encode(*record)) : QJsonValue(QJsonValue::Null);
}

QString tierName(QuotaTier tier)
{
    switch (tier) {
    case QuotaTier::healthy:
        return u"healthy"_s;
    case QuotaTier::warning:
        return u"warning"_s;
    case QuotaTier::critical:
        break;
    }
    return u"critical"_s;
}

QString colorName(ColorToken color)
{
    switch (color) {
    case ColorToken::SystemGreen:
    case ColorToken::AdaptiveHealthyGreen:
        return u"green"_s;
    case ColorToken::SystemOrange:
        return u"orange"_s;
    case ColorToken::SystemRed:
        return u"red"_s;
    case ColorToken::SecondaryLabel:
        return u"secondary"_s;
    default:
        return u"another"_s;
    }
}

/// One member of `all` by its index; absent for null.
template <typename Record>
std::optional<Record> chosen(const QList<Record> &all, const QJsonValue &index)
{
    return index.isNull() ? std::nullopt : std::optional(all.at(index.toInt()));
}

template <typename Record>
QList<Record> chosenInOrder(const QList<Record> &all, const QJsonValue &indices)
{
    QList<Record> records;
    for (const auto &index : indices.toArray())
        records.append(all.at(index.toInt()));
    return records;
}

ToolbarSettings toolbarSettings(const QJsonObject &settings)
{
    return {
        .showGeminiInToolbar = settings["showGeminiInToolbar"_L1].toBool(),
        .showArgonInToolbar = settings["showArgonInToolbar"_L1].toBool(),
        .showClaudeInToolbar = settings["showClaudeInToolbar"_L1].toBool(),
        .showFiveHourInMenuBar = settings["showFiveHourInMenuBar"_L1].toBool(),
        .showWeeklyInMenuBar = settings["showWeeklyInMenuBar"_L1].toBool(),
        .toolbarLabelStyle = settings["toolbarLabelStyle"_L1].toString(),
    };
}

} // namespace

class ReferenceModelTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void momentsAreParsed_data() { addCases(u"iso8601.json"_s, "text"_L1); }
    void momentsAreParsed();
    void percentagesAreWritten_data() { addCases(u"percent.json"_s, "fraction"_L1); }
    void percentagesAreWritten();
    void wordsAreFoundInNames_data() { addCases(u"contains.json"_s, "name"_L1); }
    void wordsAreFoundInNames();
    void windowsAreUpperCased_data() { addCases(u"upper.json"_s, "text"_L1); }
    void windowsAreUpperCased();
    void bodiesAreDecoded_data() { addCases(u"decode_summary.json"_s, "body"_L1); }
    void bodiesAreDecoded();
    void everythingIsDerived_data() { addCases(u"derivations.json"_s, "menuBarTitle"_L1); }
    void everythingIsDerived();
};

void ReferenceModelTest::momentsAreParsed()
{
    QFETCH(const QJsonObject, c);
    const auto moment = parseInternetDateTime(c["text"_L1].toString());
    const auto expected = c["epoch_ms"_L1];
    if (!moment && !isRequired(c))
        return;
    QCOMPARE(moment.has_value(), !expected.isNull());
    if (moment)
        QVERIFY(qAbs(moment->toMSecsSinceEpoch() - expected.toInteger()) <= 1);
}

void ReferenceModelTest::percentagesAreWritten()
{
    QFETCH(const QJsonObject, c);
    const double percentage = clampedPercentage(c["fraction"_L1].toDouble());
    QCOMPARE(percentWithOneDecimal(percentage), c["percent_1f"_L1].toString());
    QCOMPARE(wholePercent(percentage), c["percent_0f"_L1].toString());
}

void ReferenceModelTest::wordsAreFoundInNames()
{
    QFETCH(const QJsonObject, c);
    const QString name = c["name"_L1].toString();
    for (const auto *word : {"Gemini", "argon", "claude", "gpt", "3p"}) {
        const auto part = QString::fromLatin1(word);
        QCOMPARE(containsIgnoringCase(name, part), c["ci_"_L1 + part].toBool());
        QCOMPARE(lowerCasedContains(name, part.toLower()), c["lower_"_L1 + part].toBool());
    }
    QCOMPARE(name.toLower(), c["lower"_L1].toString());
    QCOMPARE(name.toUpper(), c["upper"_L1].toString());
}

void ReferenceModelTest::windowsAreUpperCased()
{
    QFETCH(const QJsonObject, c);
    QuotaBucket bucket;
    bucket.window = c["text"_L1].toString();
    QCOMPARE(bucket.windowText(), c["upper"_L1].toString());
}

void ReferenceModelTest::bodiesAreDecoded()
{
    QFETCH(const QJsonObject, c);
    const QByteArray body = c.contains("body"_L1)
        ? c["body"_L1].toString().toUtf8()
        : QByteArray::fromBase64(c["body_base64"_L1].toString().toLatin1());
    const auto envelope = decodeQuotaSummaryEnvelope(body);
    const auto bare = decodeQuotaSummary(body);
    const auto summary = decodeAnswer(body);
    if (isRequired(c)) {
        QCOMPARE(encodedOrNull(envelope), c["envelope"_L1]);
        QCOMPARE(encodedOrNull(bare), c["bare"_L1]);
        QCOMPARE(encodedOrNull(summary), c["summary"_L1]);
    } else if (bare) {
        // Whatever was read, it is a whole record that can be written and read again.
        const auto again = decodeQuotaSummary(QJsonDocument(encode(*bare)).toJson());
        QVERIFY(again && summary);
        QCOMPARE(*again, *bare);
        QCOMPARE(*summary, *bare);
    }
}

void ReferenceModelTest::everythingIsDerived()
{
    QFETCH(const QJsonObject, c);
    const QTimeZone zone(c["timezone"_L1].toString().toLatin1());
    QVERIFY(zone.isValid());
    const auto now = QDateTime::fromMSecsSinceEpoch(c["now_ms"_L1].toInteger(), zone);
    const DateStyles styles(c["locale"_L1].toString());

    std::optional<QuotaSummary> summary;
    if (!c["summary"_L1].isNull()) {
        const auto decoded = decodeQuotaSummary(QJsonDocument(c["summary"_L1].toObject()).toJson());
        QVERIFY(decoded.has_value());
        summary = *decoded;

        const auto &groups = summary->groups;
        const auto expectedGroups = c["groups"_L1].toArray();
        QCOMPARE(groups.size(), expectedGroups.size());
        for (qsizetype g = 0; g < groups.size(); ++g) {
            const auto &group = groups.at(g);
            const auto expected = expectedGroups.at(g).toObject();
            QCOMPARE(group.iconName(), expected["iconName"_L1].toString());
            QCOMPARE(group.groupSortPriority(), expected["priority"_L1].toInt());
            QCOMPARE(
                group.sortedBuckets(), chosenInOrder(group.buckets, expected["sortedBuckets"_L1]));
            const auto expectedBuckets = expected["buckets"_L1].toArray();
            QCOMPARE(group.buckets.size(), expectedBuckets.size());
            for (qsizetype b = 0; b < group.buckets.size(); ++b) {
                const auto &bucket = group.buckets.at(b);
                QCOMPARE((QJsonObject{
                             {"compactPercentage"_L1, bucket.compactPercentage()},
                             {"formattedPercentage"_L1, bucket.formattedPercentage()},
                             {"formattedResetTimestamp"_L1,
                                 textOrNull(bucket.formattedResetTimestamp(now, styles))},
                             {"resetCountdownString"_L1, bucket.resetCountdownString(now)},
                             {"statusTier"_L1, tierName(bucket.statusTier())},
                         }),
                    expectedBuckets.at(b).toObject());
            }
        }

        QCOMPARE(summary->sortedGroups(), chosenInOrder(groups, c["sortedGroups"_L1]));
        QCOMPARE(summary->geminiGroup(), chosen(groups, c["geminiGroup"_L1]));
        QCOMPARE(summary->argonGroup(), chosen(groups, c["argonGroup"_L1]));
        QCOMPARE(summary->claudeGroup(), chosen(groups, c["claudeGroup"_L1]));
        auto primaryGroup = summary->geminiGroup();
        if (!primaryGroup && !groups.isEmpty())
            primaryGroup = groups.front();
        QCOMPARE(summary->primaryBucket(),
            chosen(primaryGroup.value_or(QuotaGroup()).buckets, c["primaryBucket"_L1]));
        QCOMPARE(summary->lowestGeminiBucket(),
            chosen(
                summary->geminiGroup().value_or(QuotaGroup()).buckets, c["lowestGeminiBucket"_L1]));
    }

    const auto settings = c["settings"_L1].toObject();
    const auto items = toolbarStatItems(summary, toolbarSettings(settings));
    QJsonArray encodedItems;
    for (const auto &item : items) {
        QCOMPARE(colorName(item.nsColor), colorName(item.color));
        encodedItems.append(QJsonObject{
            {"color"_L1, colorName(item.color)},
            {"formattedValue"_L1, item.formattedValue},
            {"id"_L1, item.id()},
            {"text"_L1, item.text},
        });
    }
    QCOMPARE(encodedItems, c["toolbarStatItems"_L1].toArray());

    const auto lowest = lowestSelectedBucket(summary, items);
    QCOMPARE(lowest.has_value(), !c["lowestSelectedFraction"_L1].isNull());
    if (lowest)
        QCOMPARE(QJsonValue(lowest->remainingFraction), c["lowestSelectedFraction"_L1]);
    QCOMPARE(colorName(menuBarTint(lowest)), c["menuBarTint"_L1].toString());
    const auto phase = c["connectionStatus"_L1] == "connecting"_L1 ? ConnectionPhase::Connecting
                                                                   : ConnectionPhase::Settled;
    const auto star
        = settings["showIconInMenuBar"_L1].toBool() ? StarAtStart::Yes : StarAtStart::No;
    QCOMPARE(menuBarTitle(summary, items, star, phase), c["menuBarTitle"_L1].toString());
}

} // namespace brimwatch::model

QTEST_GUILESS_MAIN(brimwatch::model::ReferenceModelTest)
#include "reference_model_test.moc"
