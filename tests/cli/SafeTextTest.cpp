// SPDX-License-Identifier: AGPL-3.0-or-later
#include "cli/SafeText.h"

#include "support/Printing.h"

#include <gtest/gtest.h>

namespace quillo::cli {
namespace {

TEST(SafeTextTest, LeavesOrdinaryTextOfAnyScriptAsItIs)
{
    const QString text = QStringLiteral("Grüße, Καλημέρα,\tمرحبا 早餐 😀\nnext line");
    EXPECT_EQ(safeText(text), text);
}

TEST(SafeTextTest, ShowsControlCharactersAsTheirPictures)
{
    EXPECT_EQ(safeText(u"a\x1b[31mred\a\b\x7f"), QStringLiteral("a\u241b[31mred\u2407\u2408\u2421"));
    EXPECT_EQ(safeText(QString(QChar(0))), QStringLiteral("\u2400"));
}

TEST(SafeTextTest, ReplacesEightBitControls)
{
    // U+009B alone introduces a sequence on terminals that know 8-bit controls.
    EXPECT_EQ(safeText(u"\u009b31m\u0080\u009f"), QStringLiteral("\ufffd31m\ufffd\ufffd"));
}

TEST(SafeTextTest, ReplacesWhatTurnsTheDirectionOfWriting)
{
    EXPECT_EQ(
        safeText(u"\u202egnp.exe\u202c \u2066x\u2069"), QStringLiteral("\ufffdgnp.exe\ufffd \ufffdx\ufffd"));
}

TEST(SafeTextTest, DropsTheCarriageReturnOfALineEndAndShowsOthers)
{
    EXPECT_EQ(safeText(u"one\r\ntwo\rover"), QStringLiteral("one\ntwo\u240dover"));
    EXPECT_EQ(safeText(u"end\r"), QStringLiteral("end\u240d"));
}

TEST(SafeTextTest, ShowsAFormFeedInsideAPage)
{
    EXPECT_EQ(safeText(u"a\fb"), QStringLiteral("a\u240cb"));
}

TEST(SafeTextTest, PutsTextOnOneLine)
{
    EXPECT_EQ(safeLine(u"  1 Long \r\n\t Street\x1b[2J "), QStringLiteral("1 Long Street\u241b[2J"));
}

TEST(SafeTextTest, KeepsTheSpacesOfANameButNotItsLineFeeds)
{
    EXPECT_EQ(safeName(QStringLiteral("my  file\n\x1b.pdf")), QStringLiteral("my  file\u240a\u241b.pdf"));
}

} // namespace
} // namespace quillo::cli
