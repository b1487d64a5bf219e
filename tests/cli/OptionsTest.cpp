// SPDX-License-Identifier: AGPL-3.0-or-later
#include "cli/Options.h"

#include "cli/ProgramRun.h"
#include "support/Printing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillo::cli {
namespace {

Options optionsOf(const char* line)
{
    const auto parsed = parseArguments(words(line));
    if (const auto* const error = std::get_if<UsageError>(&parsed)) {
        ADD_FAILURE() << line << ": " << error->message.toStdString();
        return {};
    }
    return std::get<Options>(parsed);
}

QString complaintOf(const QStringList& arguments)
{
    const auto parsed = parseArguments(arguments);
    const auto* const error = std::get_if<UsageError>(&parsed);
    return error ? error->message : QStringLiteral("no complaint");
}

QString complaintOf(const char* line)
{
    return complaintOf(words(line));
}

TEST(OptionsTest, TakesOptionsBeforeBetweenAndAfterFiles)
{
    const Options options = optionsOf("--password secret classify one.pdf --json two.pdf --plain three.txt");
    EXPECT_EQ(options.command, Command::classify);
    EXPECT_TRUE(options.json);
    EXPECT_EQ(options.password, QStringLiteral("secret"));
    ASSERT_EQ(options.inputs.size(), 3U);
    EXPECT_EQ(options.inputs[0].path, QStringLiteral("one.pdf"));
    EXPECT_FALSE(options.inputs[1].isPlain);
    EXPECT_EQ(options.inputs[2].path, QStringLiteral("three.txt"));
    EXPECT_TRUE(options.inputs[2].isPlain);
}

TEST(OptionsTest, TakesValuesBehindAnEqualsSign)
{
    const Options options = optionsOf("text --password=a=b --plain=-");
    EXPECT_EQ(options.password, QStringLiteral("a=b"));
    EXPECT_TRUE(options.inputs.at(0).isStandardInput());
}

TEST(OptionsTest, TakesAnEmptyPassword)
{
    EXPECT_EQ(optionsOf("text --password= a.pdf").password, QString());
    EXPECT_EQ(optionsOf("text a.pdf").password, std::nullopt);
}

TEST(OptionsTest, TakesEverythingBehindTwoDashesAsFiles)
{
    const Options options = optionsOf("text -- --json -x.pdf");
    EXPECT_FALSE(options.json);
    ASSERT_EQ(options.inputs.size(), 2U);
    EXPECT_EQ(options.inputs[1].path, QStringLiteral("-x.pdf"));
}

TEST(OptionsTest, ExplainNeedsNoFile)
{
    EXPECT_TRUE(optionsOf("explain").inputs.empty());
    EXPECT_EQ(optionsOf("explain --text=hereby").passage, QStringLiteral("hereby"));
}

TEST(OptionsTest, HelpAndVersionWinOverEverythingElse)
{
    EXPECT_EQ(std::get<Notice>(parseArguments(words("--help"))), Notice::help);
    EXPECT_EQ(std::get<Notice>(parseArguments(words("text -h"))), Notice::help);
    EXPECT_EQ(std::get<Notice>(parseArguments(words("--version"))), Notice::version);
    EXPECT_EQ(std::get<Notice>(parseArguments(words("--version --help"))), Notice::help);
}

TEST(OptionsTest, NamesWhatIsWrong)
{
    EXPECT_EQ(complaintOf(""), QStringLiteral("a command is missing"));
    EXPECT_EQ(complaintOf("--json"), QStringLiteral("a command is missing"));
    EXPECT_EQ(complaintOf("read a.pdf"), QStringLiteral("there is no command 'read'"));
    EXPECT_EQ(complaintOf("text"), QStringLiteral("a file is missing"));
    EXPECT_EQ(complaintOf("text --fast a.pdf"), QStringLiteral("there is no option --fast"));
    EXPECT_EQ(complaintOf("text --json=yes a.pdf"), QStringLiteral("there is no option --json=yes"));
    EXPECT_EQ(complaintOf("- text"), QStringLiteral("there is no command '-'"));
    EXPECT_EQ(complaintOf("text a.pdf --password"), QStringLiteral("--password needs a value"));
    EXPECT_EQ(complaintOf("text --plain"), QStringLiteral("--plain needs a value"));
    EXPECT_EQ(complaintOf("text --text=x a.pdf"), QStringLiteral("--text goes with explain only"));
    EXPECT_EQ(complaintOf("explain --text=x a.pdf"), QStringLiteral("a file and --text do not go together"));
    EXPECT_EQ(
        complaintOf("text --plain - --plain -"), QStringLiteral("standard input can be read only once"));
    EXPECT_EQ(
        complaintOf("text --password x --password-file y a.pdf"),
        QStringLiteral("--password and --password-file do not go together"));
    for (const char* line :
         {"text - -", "text - --plain -", "text --password-file - -", "text --password-file - --plain -",
          "explain --password-file -"})
        EXPECT_EQ(complaintOf(line), QStringLiteral("standard input can be read only once")) << line;
}

TEST(OptionsTest, TakesADashForADocumentFromStandardInput)
{
    const Options options = optionsOf("text a.pdf - --password-file b");
    ASSERT_EQ(options.inputs.size(), 2U);
    EXPECT_FALSE(options.inputs[0].isStandardInput());
    EXPECT_TRUE(options.inputs[1].isStandardInput());
    EXPECT_FALSE(options.inputs[1].isPlain);
    EXPECT_EQ(options.passwordFile, QStringLiteral("b"));
}

TEST(OptionsTest, TakesAnEmptyWordForNoCommand)
{
    EXPECT_EQ(complaintOf(QStringList(QString())), QStringLiteral("there is no command ''"));
}

} // namespace
} // namespace quillo::cli
