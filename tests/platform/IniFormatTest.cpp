// SPDX-License-Identifier: AGPL-3.0-or-later
#include "platform/IniFormat.h"

#include "support/Printing.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QSettings>
#include <QSize>
#include <QTemporaryDir>

namespace quillo {
namespace {

QString everyCharacterUpTo(char16_t last)
{
    QString text;
    for (char16_t code = 0; code <= last; ++code)
        text += QChar(code);
    return text;
}

QByteArray everyByte()
{
    return everyCharacterUpTo(0xFF).toLatin1();
}

QString awkwardText()
{
    return QStringLiteral(" h\u00e9, \"q\" \\ \n\t;= \u20ac \U0001F600 f\u0001f@ ");
}

IniValues sampleValues()
{
    return {
        {QStringLiteral("plain"), QStringLiteral("true")},
        {QStringLiteral("com.example.bytes"), everyByte()},
        {QStringLiteral("empty"), QString()},
        {QStringLiteral("at"), QStringLiteral("@foo")},
        {QStringLiteral("awkward"), awkwardText()},
        {QStringLiteral("low"), everyCharacterUpTo(0x17F)},
        {QStringLiteral("section/key 1"), QStringLiteral("2.5")},
        {QStringLiteral("section/sub/key"), QStringLiteral("x")},
        {QStringLiteral("General/key"), QStringLiteral("y")},
        {QStringLiteral("\u00e9=\u20ac;["), QStringLiteral("z")},
    };
}

TEST(IniFormatTest, ReadsBackWhatItWrote)
{
    IniValues values = sampleValues();
    values[QStringLiteral("half")] = QString(QChar(0xD83D)) + QStringLiteral("a");
    const auto readBack = parseIni(formatIni(values));
    ASSERT_TRUE(readBack.has_value());
    EXPECT_EQ(readBack->size(), values.size());
    for (const auto& [key, value] : values)
        EXPECT_TRUE(readBack->contains(key) && readBack->at(key) == value) << key.toStdString();
}

TEST(IniFormatTest, WritesWhatQSettingsReads)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("a.conf")));
    ASSERT_TRUE(file.open(QFile::WriteOnly));
    file.write(formatIni(sampleValues()));
    file.close();
    const QSettings settings(file.fileName(), QSettings::IniFormat);
    EXPECT_EQ(settings.allKeys().size(), static_cast<qsizetype>(sampleValues().size()));
    EXPECT_EQ(settings.status(), QSettings::NoError);
    for (const auto& [key, value] : sampleValues()) {
        const QVariant read = settings.value(key);
        if (const auto* bytes = std::get_if<QByteArray>(&value))
            EXPECT_EQ(read.toByteArray(), *bytes) << key.toStdString();
        else
            EXPECT_EQ(read.toString(), std::get<QString>(value)) << key.toStdString();
    }
}

TEST(IniFormatTest, ReadsWhatQSettingsWrites)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("a.conf")));
    {
        QSettings settings(file.fileName(), QSettings::IniFormat);
        for (const auto& [key, value] : sampleValues()) {
            if (const auto* bytes = std::get_if<QByteArray>(&value))
                settings.setValue(key, *bytes);
            else
                settings.setValue(key, std::get<QString>(value));
        }
        settings.setValue(QStringLiteral("boolean"), true);
        settings.setValue(QStringLiteral("number"), 100.5);
    }
    ASSERT_TRUE(file.open(QFile::ReadOnly));
    const auto read = parseIni(file.readAll());
    ASSERT_TRUE(read.has_value());
    for (const auto& [key, value] : sampleValues())
        EXPECT_TRUE(read->contains(key) && read->at(key) == value) << key.toStdString();
    EXPECT_EQ(std::get<QString>(read->at(QStringLiteral("boolean"))), QStringLiteral("true"));
    EXPECT_EQ(std::get<QString>(read->at(QStringLiteral("number"))), QStringLiteral("100.5"));
}

TEST(IniFormatTest, KeepsValuesOfOtherTypesToTheLetter)
{
    const auto values = parseIni("[General]\nsize=@Size(1 2)\nlist=a, \"b,c\"\nnone=@Invalid()\n");
    ASSERT_TRUE(values.has_value());
    EXPECT_EQ(std::get<ForeignIniValue>(values->at(QStringLiteral("size"))).text, "@Size(1 2)");
    EXPECT_EQ(std::get<ForeignIniValue>(values->at(QStringLiteral("list"))).text, "a, \"b,c\"");
    EXPECT_EQ(parseIni(formatIni(*values)), values);
}

TEST(IniFormatTest, ReadsFilesMadeByHand)
{
    const auto values =
        parseIni("\xef\xbb\xbf; mine\r\n\r\n a = 1 ; one\r\n[General]\r\nb=\" x \"\r\n[s]\r\nc=3");
    ASSERT_TRUE(values.has_value());
    EXPECT_EQ(
        *values, (IniValues{
                     {QStringLiteral("a"), QStringLiteral("1 ")},
                     {QStringLiteral("b"), QStringLiteral(" x ")},
                     {QStringLiteral("s/c"), QStringLiteral("3")}}));
}

TEST(IniFormatTest, ReadsNothingFromAnEmptyFile)
{
    EXPECT_EQ(parseIni(QByteArray()), IniValues());
}

TEST(IniFormatTest, TellsDamagedFiles)
{
    EXPECT_EQ(parseIni("[General]\na=1\ngarbage\n"), std::nullopt);
    EXPECT_EQ(parseIni("[General\na=1\n"), std::nullopt);
    EXPECT_EQ(parseIni("a=\"open\n"), std::nullopt);
    EXPECT_EQ(parseIni("a=\"\\"), std::nullopt);
    EXPECT_EQ(parseIni("a=\\q"), std::nullopt);
    EXPECT_EQ(parseIni("a=\\xfffff"), std::nullopt);
    EXPECT_EQ(parseIni("a=\\x"), std::nullopt);
    EXPECT_EQ(parseIni("%4=1"), std::nullopt);
    EXPECT_EQ(parseIni("%U20A=1"), std::nullopt);
    EXPECT_EQ(parseIni("=1"), std::nullopt);
    EXPECT_EQ(parseIni("a=\xff\xfe"), std::nullopt);
    EXPECT_EQ(parseIni(QByteArray("a=\0b", 4)), std::nullopt);
    EXPECT_EQ(parseIni(everyByte()), std::nullopt);
}

TEST(IniFormatTest, NeverTakesATruncatedFileForAWholeOne)
{
    const IniValues values = {
        {QStringLiteral("analyticsEnabled"), QStringLiteral("true")},
        {QStringLiteral("bytes"), QByteArray("{\"a\": \"b\"}")},
        {QStringLiteral("deviceID"), QStringLiteral("0F1E2D3C")},
    };
    const QByteArray whole = formatIni(values);
    for (qsizetype length = 0; length < whole.size(); ++length) {
        const auto read = parseIni(whole.first(length));
        EXPECT_TRUE(!read || read->empty()) << whole.first(length).toStdString();
    }
}

} // namespace
} // namespace quillo
