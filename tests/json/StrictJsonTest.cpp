// SPDX-License-Identifier: AGPL-3.0-or-later
#include "json/StrictJson.h"

#include "support/Printing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillo {
namespace {

template <typename Read>
std::string decodingErrorOf(Read&& read)
{
    try {
        read();
    } catch (const DecodingError& error) {
        return error.what();
    }
    return "no error";
}

TEST(StrictJsonTest, NamesTheMissingKey)
{
    const Json value = parseJson("{}");
    EXPECT_THAT(
        decodingErrorOf([&] { JsonObjectReader(value, "Thing").string("title"); }),
        testing::HasSubstr("title"));
}

TEST(StrictJsonTest, RefusesEverySilentConversion)
{
    const Json value =
        parseJson(R"({"flag": true, "text": "1", "fraction": 1.5, "number": 1, "nothing": null})");
    const JsonObjectReader reader(value, "Thing");
    EXPECT_THROW(reader.number("flag"), DecodingError);
    EXPECT_THROW(reader.integer("flag"), DecodingError);
    EXPECT_THROW(reader.number("text"), DecodingError);
    EXPECT_THROW(reader.integer("text"), DecodingError);
    EXPECT_THROW(reader.integer("fraction"), DecodingError);
    EXPECT_THROW(reader.boolean("number"), DecodingError);
    EXPECT_THROW(reader.string("number"), DecodingError);
    EXPECT_THROW(reader.string("nothing"), DecodingError);
    EXPECT_THROW(reader.array("number"), DecodingError);
    EXPECT_THROW(reader.object("number"), DecodingError);
}

TEST(StrictJsonTest, ReadsAnIntegerHoweverItIsWritten)
{
    const Json value = parseJson(R"({"a": 3, "b": 3.0, "c": 3e0, "d": -9223372036854775808})");
    const JsonObjectReader reader(value, "Thing");
    EXPECT_EQ(reader.integer("a"), 3);
    EXPECT_EQ(reader.integer("b"), 3);
    EXPECT_EQ(reader.integer("c"), 3);
    EXPECT_EQ(reader.integer("d"), INT64_MIN);
}

TEST(StrictJsonTest, RefusesIntegersOutOfRange)
{
    const Json value = parseJson(R"({"a": 9223372036854775808, "b": 9.3e18, "c": -9.3e18})");
    const JsonObjectReader reader(value, "Thing");
    EXPECT_THROW(reader.integer("a"), DecodingError);
    EXPECT_THROW(reader.integer("b"), DecodingError);
    EXPECT_THROW(reader.integer("c"), DecodingError);
}

TEST(StrictJsonTest, TreatsNullAndMissingOptionalsAlike)
{
    const Json value = parseJson(R"({"nothing": null, "number": 2.5, "text": "x"})");
    const JsonObjectReader reader(value, "Thing");
    EXPECT_EQ(reader.optionalNumber("nothing"), std::nullopt);
    EXPECT_EQ(reader.optionalNumber("absent"), std::nullopt);
    EXPECT_EQ(reader.optionalNumber("number"), 2.5);
    EXPECT_THROW(reader.optionalNumber("text"), DecodingError);
}

TEST(StrictJsonTest, ReadsStrictBase64)
{
    const Json value = parseJson(R"({"good": "AP8=", "bad": "A*8=", "short": "AP8"})");
    const JsonObjectReader reader(value, "Thing");
    EXPECT_EQ(reader.base64("good"), QByteArray("\x00\xff", 2));
    EXPECT_THROW(reader.base64("bad"), DecodingError);
    EXPECT_THROW(reader.base64("short"), DecodingError);
    EXPECT_EQ(reader.optionalBase64("absent"), std::nullopt);
}

TEST(StrictJsonTest, RefusesTextThatIsNotJson)
{
    EXPECT_THROW(parseJson("{"), DecodingError);
    EXPECT_THROW(parseJson(""), DecodingError);
    EXPECT_THROW(parseJson("{\"a\": 1e999}"), DecodingError);
}

TEST(StrictJsonTest, WritesCompactTextWithShortestDoubles)
{
    Json value = Json::object();
    value["a"] = 0.1;
    value["b"] = toJson(QStringLiteral("Gr\u00fc\u00dfe \U0001F600"));
    EXPECT_EQ(toJsonText(value), QByteArray("{\"a\":0.1,\"b\":\"Gr\u00fc\u00dfe \U0001F600\"}"));
}

TEST(StrictJsonTest, ReplacesUnpairedSurrogates)
{
    const QString broken = QStringLiteral("a") + QChar(0xD800) + QStringLiteral("b");
    const Json readBack = parseJson(toJsonText(Json::array({toJson(broken)})));
    EXPECT_EQ(stringFromJson(readBack[0], "text"), QStringLiteral("a\uFFFDb"));
}

TEST(StrictJsonTest, WritesDoublesInTheirShortestForm)
{
    EXPECT_EQ(toJsonText(2.522923758208279e-228), "2.522923758208279e-228");
    EXPECT_EQ(toJsonText(-0.1), "-0.1");
    EXPECT_EQ(toJsonText(1e300), "1e+300");
    EXPECT_EQ(parseJson(toJsonText(5e-324)).get<double>(), 5e-324);
}

TEST(StrictJsonTest, WritesWholeNumbersWithoutAFraction)
{
    EXPECT_EQ(toJsonText(3.0), "3");
    EXPECT_EQ(toJsonText(-978307200.0), "-978307200");
    EXPECT_EQ(toJsonText(1e15), "1000000000000000");
    EXPECT_EQ(toJsonText(3), "3");
}

TEST(StrictJsonTest, WritesNestedValuesCompactly)
{
    const char* text = R"({"a":[],"b":{},"c":[1,[true,null],{"d":"\"\n"}],"e":-7})";
    EXPECT_EQ(toJsonText(parseJson(text)), text);
}

} // namespace
} // namespace quillo
