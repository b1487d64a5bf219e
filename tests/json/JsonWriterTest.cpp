// SPDX-License-Identifier: AGPL-3.0-or-later
#include "json/JsonWriter.h"

#include "support/Printing.h"
#include "json/StrictJson.h"

#include <gtest/gtest.h>

#include <limits>

namespace quillo {
namespace {

/// What is written by calls to a writer, and the largest piece of it.
class JsonWriterTest : public testing::Test
{
protected:
    QByteArray text()
    {
        m_writer.flush();
        return m_text;
    }

    QByteArray m_text;
    qsizetype m_largestPiece = 0;
    JsonWriter m_writer{[this](QByteArrayView piece) {
        m_text += piece;
        m_largestPiece = std::max(m_largestPiece, piece.size());
    }};
};

TEST_F(JsonWriterTest, PutsCommasBetweenMembersAndElements)
{
    m_writer.beginObject();
    m_writer.key("a");
    m_writer.beginArray();
    m_writer.integer(1);
    m_writer.boolean(false);
    m_writer.beginArray();
    m_writer.endArray();
    m_writer.null();
    m_writer.endArray();
    m_writer.key("b\"");
    m_writer.beginObject();
    m_writer.endObject();
    m_writer.endObject();
    EXPECT_EQ(text(), R"({"a":[1,false,[],null],"b\"":{}})");
}

TEST_F(JsonWriterTest, WritesAnythingAsItsValueIsWritten)
{
    const QString words = QStringLiteral("\"\\/\b\f\n\r\t\u0001\u001f\u007f\u00fc\u4e2d\U0001F600");
    m_writer.beginArray();
    m_writer.text(words);
    m_writer.number(0.1);
    m_writer.number(72.0);
    m_writer.integer(-7);
    m_writer.rect(QRectF(1, 2.5, 3, 4));
    m_writer.endArray();
    const Json value = Json::array({toJson(words), 0.1, 72.0, -7, toJson(QRectF(1, 2.5, 3, 4))});
    EXPECT_EQ(text(), toJsonText(value));
    EXPECT_EQ(parseJson(m_text), value);
}

TEST_F(JsonWriterTest, WritesARectangleAsItsCornerAndItsSize)
{
    m_writer.rect(QRectF(72, 700.5, 30, 12));
    EXPECT_EQ(text(), "[[72,700.5],[30,12]]");
}

TEST_F(JsonWriterTest, WritesNullForNumbersThatAreNotFinite)
{
    m_writer.beginArray();
    m_writer.number(std::numeric_limits<double>::infinity());
    m_writer.number(std::numeric_limits<double>::quiet_NaN());
    m_writer.endArray();
    EXPECT_EQ(text(), "[null,null]");
}

TEST_F(JsonWriterTest, HandsLongTextOnInPiecesAndKeepsItsCharactersWhole)
{
    // Pairs of surrogates at even and at odd places, whatever the size of a piece.
    const QString words = QStringLiteral("\U0001F600").repeated(100'000) + QLatin1Char('x') +
                          QStringLiteral("\U0001F600").repeated(100'000);
    m_writer.text(words);
    EXPECT_TRUE(text() == '"' + words.toUtf8() + '"');
    EXPECT_LT(m_largestPiece, 200'000);
}

TEST_F(JsonWriterTest, ReplacesSurrogatesWithoutAPartner)
{
    m_writer.text(QString(QChar(0xDC80)) + QLatin1Char('a') + QChar(0xD800));
    EXPECT_EQ(text(), "\"\uFFFDa\uFFFD\"");
}

} // namespace
} // namespace quillo
