// SPDX-License-Identifier: AGPL-3.0-or-later
#include "cli/ProgramRun.h"
#include "cli/TextLayout.h"
#include "support/Printing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QRegularExpression>

namespace quillo::cli {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

QStringList onInvoice(const char* command)
{
    return {QString::fromUtf8(command), sample("invoice.pdf")};
}

TEST(OnATerminalTest, ReportsAreColoured)
{
    EXPECT_THAT(
        runCliOnTerminal(onInvoice("classify"), 80).toStdString(),
        StartsWith("\x1b[2mDocument type\x1b[0m     \x1b[1;34mBill / Invoice\x1b[0m\n"));
}

TEST(OnATerminalTest, NoColorTurnsColoursOff)
{
    const QByteArray shown = runCliOnTerminal(onInvoice("analyze"), 80, words("NO_COLOR=1"));
    EXPECT_THAT(shown.toStdString(), StartsWith("Document type     Bill / Invoice\n"));
    EXPECT_THAT(shown.toStdString(), Not(HasSubstr("\x1b")));
}

TEST(OnATerminalTest, ADumbTerminalGetsNoColours)
{
    EXPECT_THAT(
        runCliOnTerminal(onInvoice("analyze"), 80, words("TERM=dumb")).toStdString(), Not(HasSubstr("\x1b")));
}

TEST(OnATerminalTest, JsonIsNeverColoured)
{
    EXPECT_THAT(
        runCliOnTerminal({QStringLiteral("classify"), QStringLiteral("--json"), sample("invoice.pdf")}, 80)
            .toStdString(),
        Not(HasSubstr("\x1b")));
}

TEST(OnATerminalTest, ReportsKeepWithinItsWidth)
{
    for (const unsigned short columns : {30, 47, 80, 110}) {
        for (const char* command : {"classify", "actions", "extract", "analyze", "explain"}) {
            const QByteArray shown = runCliOnTerminal(onInvoice(command), columns, words("NO_COLOR=1"));
            for (const QString& line : QString::fromUtf8(shown).split(QLatin1Char('\n')))
                EXPECT_LE(displayWidth(line), columns) << command << ": " << line.toStdString();
        }
    }
}

TEST(OnATerminalTest, EveryPageOfATextHasAHeading)
{
    const QByteArray shown =
        runCliOnTerminal({QStringLiteral("text"), sample("scan.pdf")}, 80, words("NO_COLOR=1"));
    EXPECT_EQ(shown, QByteArray("Page 1 of 2\n(no text)\n\nPage 2 of 2\n(no text)\n"));
}

} // namespace
} // namespace quillo::cli
