// SPDX-License-Identifier: AGPL-3.0-or-later
#include "analytics/AnalyticsJson.h"

#include "support/Printing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QPoint>
#include <QTimeZone>

#include <limits>

namespace quillo {
namespace {

using testing::HasSubstr;

AnalyticsEvent eventWith(const QVariantMap& metadata)
{
    return {QStringLiteral("ID"), EventType::zoom, metadata, PointInTime{0}};
}

QByteArray encoded(const AnalyticsEvent& event)
{
    return toJsonText(toJson(event));
}

QByteArray encodedMetadata(const QVariant& value)
{
    const Json event = toJson(eventWith({{QStringLiteral("k"), value}}));
    return QByteArray::fromStdString(event["metadata"].get<std::string>());
}

std::string decodingErrorOf(const Json& value)
{
    try {
        analyticsEventFromJson(value);
    } catch (const DecodingError& error) {
        return error.what();
    }
    return "no error";
}

QVariantMap decodedMetadata(const char* text)
{
    Json value = toJson(eventWith({}));
    value["metadata"] = text;
    return analyticsEventFromJson(value).metadata;
}

TEST(AnalyticsJsonTest, WritesAnEventInItsWireForm)
{
    AnalyticsEvent event = eventWith(
        {{QStringLiteral("direction"), QStringLiteral("in \"x\"")},
         {QStringLiteral("level"), 1.25},
         {QStringLiteral("ok"), true}});
    event.timestamp = PointInTime{1.25};
    EXPECT_EQ(
        encoded(event),
        QByteArray(R"({"deviceID":"ID","eventType":"zoom","timestamp":1.25,)"
                   R"("metadata":"{\"direction\":\"in \\\"x\\\"\",\"level\":1.25,\"ok\":true}"})"));
}

TEST(AnalyticsJsonTest, WritesEmptyMetadataAsAnEmptyObject)
{
    EXPECT_EQ(toJson(eventWith({}))["metadata"].get<std::string>(), "{}");
}

TEST(AnalyticsJsonTest, CountsSecondsFromTheReferenceDate)
{
    AnalyticsEvent event = eventWith({});
    EXPECT_THAT(encoded(event).toStdString(), HasSubstr("\"timestamp\":0,"));
    event.timestamp = PointInTime{-978307200};
    EXPECT_THAT(encoded(event).toStdString(), HasSubstr("\"timestamp\":-978307200,"));
    event.timestamp = PointInTime{725846400.123};
    EXPECT_THAT(encoded(event).toStdString(), HasSubstr("\"timestamp\":725846400.123,"));
}

TEST(AnalyticsJsonTest, KeepsEveryDigitOfATime)
{
    AnalyticsEvent event = eventWith({});
    event.timestamp = PointInTime{725846400.1234567};
    EXPECT_THAT(encoded(event).toStdString(), HasSubstr("\"timestamp\":725846400.1234567,"));
    EXPECT_EQ(analyticsEventFromJson(toJson(event)).timestamp, event.timestamp);
}

TEST(AnalyticsJsonTest, WritesEveryMetadataTypeInItsOwnForm)
{
    EXPECT_EQ(encodedMetadata(true), "{\"k\":true}");
    EXPECT_EQ(encodedMetadata(false), "{\"k\":false}");
    EXPECT_EQ(encodedMetadata(42), "{\"k\":42}");
    EXPECT_EQ(encodedMetadata(qint64(-9'007'199'254'740'993)), "{\"k\":-9007199254740993}");
    EXPECT_EQ(encodedMetadata(std::numeric_limits<quint64>::max()), "{\"k\":18446744073709551615}");
    EXPECT_EQ(encodedMetadata(0.1), "{\"k\":0.1}");
    EXPECT_EQ(encodedMetadata(3.0), "{\"k\":3}");
    EXPECT_EQ(encodedMetadata(-30364933696218072.0), "{\"k\":-30364933696218072}");
    EXPECT_EQ(encodedMetadata(2.522923758208279e-228), "{\"k\":2.522923758208279e-228}");
    EXPECT_EQ(
        encodedMetadata(QStringLiteral("gr\u00fc\u00df\n\u0001/")), "{\"k\":\"gr\u00fc\u00df\\n\\u0001/\"}");
    EXPECT_EQ(encodedMetadata(QVariant()), "{\"k\":null}");
    EXPECT_EQ(encodedMetadata(QVariantList{1, QStringLiteral("a"), QVariantList()}), "{\"k\":[1,\"a\",[]]}");
    EXPECT_EQ(encodedMetadata(QVariantMap{{QStringLiteral("b"), 1.5}}), "{\"k\":{\"b\":1.5}}");
}

TEST(AnalyticsJsonTest, RefusesMetadataThatJsonCannotHold)
{
    EXPECT_THROW(encodedMetadata(QPoint(1, 2)), EncodingError);
    EXPECT_THROW(encodedMetadata(QByteArray("bytes")), EncodingError);
    EXPECT_THROW(encodedMetadata(QDateTime::currentDateTimeUtc()), EncodingError);
    EXPECT_THROW(encodedMetadata(std::numeric_limits<double>::quiet_NaN()), EncodingError);
    EXPECT_THROW(encodedMetadata(-std::numeric_limits<double>::infinity()), EncodingError);
    EXPECT_THROW(encodedMetadata(QVariantList{QVariantMap{{QStringLiteral("p"), QPoint()}}}), EncodingError);
    const AnalyticsBatch batch{
        QStringLiteral("ID"), {eventWith({}), eventWith({{QStringLiteral("p"), QPoint()}})}};
    EXPECT_THROW(toJson(batch), EncodingError) << "one event spoils its batch";
}

TEST(AnalyticsJsonTest, WritesTextThatIsNoUnicodeAllTheSame)
{
    EXPECT_EQ(encodedMetadata(QString(QChar(0xD800))), "{\"k\":\"\uFFFD\"}");
}

TEST(AnalyticsJsonTest, ReadsBackWhatItWrote)
{
    AnalyticsBatch batch{QStringLiteral("ID"), {}};
    for (const EventType type : allEventTypes()) {
        AnalyticsEvent event = eventWith(
            {{QStringLiteral("bool"), true},
             {QStringLiteral("integer"), qint64(7)},
             {QStringLiteral("double"), 0.1},
             {QStringLiteral("text"), QStringLiteral("\U0001F600")},
             {QStringLiteral("list"), QVariantList{qint64(1), QVariant::fromValue(nullptr)}},
             {QStringLiteral("map"), QVariantMap{{QStringLiteral("a"), 1.5}}}});
        event.eventType = type;
        event.timestamp = PointInTime{-0.001};
        batch.events.push_back(event);
    }
    EXPECT_EQ(analyticsBatchFromJson(parseJson(toJsonText(toJson(batch)))), batch);
    const AnalyticsBatch empty{QStringLiteral("ID"), {}};
    EXPECT_EQ(toJsonText(toJson(empty)), "{\"deviceID\":\"ID\",\"events\":[]}");
    EXPECT_EQ(analyticsBatchFromJson(toJson(empty)), empty);
}

TEST(AnalyticsJsonTest, RequiresEveryMemberOfAnEvent)
{
    const Json whole = toJson(eventWith({}));
    for (const char* key : {"deviceID", "eventType", "timestamp", "metadata"}) {
        Json value = whole;
        value.erase(key);
        EXPECT_THAT(decodingErrorOf(value), HasSubstr(key));
        value[key] = true;
        EXPECT_THAT(decodingErrorOf(value), HasSubstr(key));
    }
}

TEST(AnalyticsJsonTest, RefusesAnUnknownEventType)
{
    Json value = toJson(eventWith({}));
    value["eventType"] = "Zoom";
    EXPECT_THAT(decodingErrorOf(value), HasSubstr("eventType"));
}

TEST(AnalyticsJsonTest, RefusesABatchOfTheWrongShape)
{
    EXPECT_THROW(analyticsBatchFromJson(parseJson("{\"deviceID\":\"ID\"}")), DecodingError);
    EXPECT_THROW(analyticsBatchFromJson(parseJson("{\"deviceID\":1,\"events\":[]}")), DecodingError);
    EXPECT_THROW(analyticsBatchFromJson(parseJson("{\"deviceID\":\"ID\",\"events\":[1]}")), DecodingError);
    EXPECT_THROW(analyticsBatchFromJson(parseJson("[]")), DecodingError);
}

TEST(AnalyticsJsonTest, TakesMalformedMetadataForNone)
{
    EXPECT_EQ(decodedMetadata(""), QVariantMap());
    EXPECT_EQ(decodedMetadata("no JSON"), QVariantMap());
    EXPECT_EQ(decodedMetadata("[1]"), QVariantMap());
    EXPECT_EQ(decodedMetadata("\"text\""), QVariantMap());
    EXPECT_EQ(decodedMetadata("{\"a\":1"), QVariantMap());
    const std::string deep = "{\"a\":" + std::string(100'000, '[') + std::string(100'000, ']') + "}";
    EXPECT_EQ(decodedMetadata(deep.c_str()), QVariantMap());
}

TEST(AnalyticsJsonTest, AcceptsAnEscapedSolidus)
{
    EXPECT_EQ(
        decodedMetadata("{\"a\":\"b\\/c\"}").value(QStringLiteral("a")).toString(), QStringLiteral("b/c"));
}

} // namespace
} // namespace quillo
