// SPDX-License-Identifier: AGPL-3.0-or-later
#include "cli/ProgramRun.h"
#include "document/PDFTextExtractor.h"
#include "insight/InsightJson.h"
#include "support/Printing.h"
#include "understanding/ActionDetection.h"
#include "understanding/DocumentClassification.h"
#include "understanding/InformationExtraction.h"
#include "understanding/TextExplanation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillo::cli {
namespace {

using testing::HasSubstr;
using testing::Not;

Json jsonOf(const ProgramRun& run)
{
    EXPECT_EQ(run.status, 0) << run.errors.toStdString();
    return parseJson(run.output);
}

Json jsonOf(const char* command, const QString& path)
{
    return jsonOf(runCli({QString::fromUtf8(command), QStringLiteral("--json"), path}));
}

ProgramRun runOnText(const char* line, const QByteArray& text)
{
    return runCli(words(line), {.input = text});
}

PageTexts pagesOf(const QString& path)
{
    auto reading = PDFTextExtractor::readDocument(path, std::nullopt, {});
    EXPECT_TRUE(reading);
    return std::move(reading->pageTexts);
}

/// Items have fresh identities, so they are compared without.
Json withoutIdentities(Json items)
{
    for (Json& item : items)
        item.erase("id");
    return items;
}

Json expectedItems(const PageTexts& pages)
{
    Json items = Json::array();
    for (const PageText& page : pages) {
        for (const ExtractedItem& item : extractItems(page.text, page.pageNumber))
            items.push_back(toJson(item));
    }
    return withoutIdentities(items);
}

class EverySampleTest : public testing::TestWithParam<const char*>
{
};

TEST_P(EverySampleTest, ClassifyPrintsTheClassifiersInsight)
{
    const QString path = sample(GetParam());
    EXPECT_EQ(jsonOf("classify", path), toJson(classifyText(PDFTextExtractor::getAllText(pagesOf(path)))));
}

TEST_P(EverySampleTest, ExtractPrintsTheArrayOfItems)
{
    const QString path = sample(GetParam());
    EXPECT_EQ(withoutIdentities(jsonOf("extract", path)), expectedItems(pagesOf(path)));
}

TEST_P(EverySampleTest, ActionsPrintsWhatTheDetectorFinds)
{
    const QString path = sample(GetParam());
    EXPECT_EQ(jsonOf("actions", path), toJson(detectActions(pagesOf(path), DateSettings::system())));
}

TEST_P(EverySampleTest, AnalyzePrintsOneInsightWithAllThree)
{
    const QString path = sample(GetParam());
    const PageTexts pages = pagesOf(path);
    Json insight = jsonOf("analyze", path);
    EXPECT_EQ(withoutIdentities(insight.at("extractedItems")), expectedItems(pages));
    EXPECT_NO_THROW(documentInsightFromJson(insight)) << "it reads back as an insight";
    insight["extractedItems"] = Json::array();
    DocumentInsight expected = classifyText(PDFTextExtractor::getAllText(pages));
    expected.actionRequired = detectActions(pages, DateSettings::system());
    EXPECT_EQ(insight, toJson(expected));
}

INSTANTIATE_TEST_SUITE_P(
    AllSamples, EverySampleTest,
    testing::Values(
        "contract.pdf", "form.pdf", "invoice.pdf", "letter.pdf", "manual.pdf", "multilingual.pdf",
        "scan.pdf"),
    [](const auto& parameter) {
        return std::string(parameter.param).substr(0, std::string(parameter.param).find('.'));
    });

TEST(ClassifyCommandTest, TellsTheKindsOfTheSamples)
{
    EXPECT_EQ(jsonOf("classify", sample("invoice.pdf")).at("documentType"), "Bill / Invoice");
    EXPECT_EQ(jsonOf("classify", sample("letter.pdf")).at("documentType"), "Letter");
    EXPECT_EQ(jsonOf("classify", sample("form.pdf")).at("documentType"), "Form");
    EXPECT_EQ(jsonOf("classify", sample("manual.pdf")).at("documentType"), "Manual / Guide");
    EXPECT_EQ(jsonOf("classify", sample("contract.pdf")).at("documentType"), "Unknown");
}

TEST(ClassifyCommandTest, ReportsAlignedAndWrappedTo80Columns)
{
    const ProgramRun run =
        runCli({QStringLiteral("classify"), sample("invoice.pdf")}, {.environment = words("COLUMNS=80")});
    EXPECT_EQ(
        run.output, QByteArray("Document type     Bill / Invoice\n"
                               "Confidence        85%\n"
                               "Evidence          Found 'invoice'\n"
                               "                  Found 'bill'\n"
                               "                  Found 'amount due'\n"
                               "                  Found 'total amount'\n"
                               "                  Found 'payment due'\n"
                               "Summary           This appears to be a bill or invoice (85% confidence). It\n"
                               "                  likely contains payment information and amounts due.\n"));
}

TEST(ClassifyCommandTest, ReportsNoEvidenceWhereThereIsNone)
{
    EXPECT_EQ(
        runOnText("classify --plain -", "nothing in particular").output,
        QByteArray("Document type     Unknown\n"
                   "Confidence        0%\n"
                   "Summary           Could not determine document type with confidence\n"));
}

TEST(ActionsCommandTest, ReportsPagesCountedFromOne)
{
    const ProgramRun run = runOnText("actions --plain -", "first\fPlease sign here.\nDeadline tomorrow.");
    EXPECT_EQ(
        run.output, QByteArray("Action required   Yes\n"
                               "  page 2     Due Date              Document mentions 'deadline'\n"
                               "  page 2     Signature Required    Signature appears to be required\n"));
}

TEST(ActionsCommandTest, PrintsDatesInTheUsersStyle)
{
    const ProgramSetting german = {
        .input = "Due date: 04/19/2026", .environment = words("LC_ALL=de_DE.UTF-8")};
    EXPECT_THAT(runCli(words("actions --plain -"), german).output.toStdString(), HasSubstr("19.04.2026"));
}

TEST(ActionsCommandTest, SaysThatThereIsNothingToDo)
{
    EXPECT_EQ(runOnText("actions --plain -", "a poem").output, QByteArray("Action required   No\n"));
    EXPECT_EQ(
        runOnText("actions --json --plain -", "a poem").output,
        QByteArray("{\"required\":false,\"reasons\":[]}\n"));
}

TEST(ExtractCommandTest, ReportsItemsByPageWithTheirSurroundings)
{
    const ProgramSetting wide = {
        .input = "none\fPay $12.50 by 01/15/2026 to\nadmin@park.example", .environment = words("COLUMNS=90")};
    EXPECT_EQ(
        runCli(words("extract --plain -"), wide).output,
        QByteArray("Page 2\n"
                   "  date       01/15/2026          ...Pay $12.50 by 01/15/2026 to admin@park.example...\n"
                   "  amount     $12.50              ...Pay $12.50 by 01/15/2026 to admin@park.example...\n"
                   "  email      admin@park.example  ...Pay $12.50 by 01/15/2026 to admin@park.example...\n"
                   "3 items found\n"));
}

TEST(ExtractCommandTest, SetsTheSurroundingsBelowOnANarrowTerminal)
{
    const ProgramSetting narrow = {.input = "You shall pay $5 on Friday", .environment = words("COLUMNS=40")};
    EXPECT_EQ(
        runCli(words("extract --plain -"), narrow).output, QByteArray("Page 1\n"
                                                                      "  amount     $5\n"
                                                                      "             ...You shall pay $5 on\n"
                                                                      "             Friday...\n"
                                                                      "1 item found\n"));
}

TEST(ExtractCommandTest, SaysThatThereIsNothing)
{
    EXPECT_EQ(runOnText("extract --plain -", "a poem").output, QByteArray("No items found\n"));
    EXPECT_EQ(runOnText("extract --json --plain -", "a poem").output, QByteArray("[]\n"));
}

TEST(ExtractCommandTest, PutsTheItemsOfSeveralFilesIntoObjects)
{
    const ProgramRun run = runCli(
        {QStringLiteral("extract"), QStringLiteral("--json"), sample("letter.pdf"), QStringLiteral("--plain"),
         QStringLiteral("-")},
        {.input = "$1"});
    const auto lines = run.output.split('\n');
    ASSERT_EQ(lines.size(), 3);
    EXPECT_EQ(
        withoutIdentities(parseJson(lines[0]).at("items")), expectedItems(pagesOf(sample("letter.pdf"))));
    EXPECT_EQ(parseJson(lines[1]).at("file"), "-");
    EXPECT_EQ(parseJson(lines[1]).at("items")[0].at("value"), "$1");
}

TEST(ExplainCommandTest, ReadsThePassageFromTheCommandLine)
{
    const QString passage = QStringLiteral("Pursuant to clause 4 you shall pay.");
    const Json result = jsonOf(
        runCli({QStringLiteral("explain"), QStringLiteral("--json"), QStringLiteral("--text"), passage}));
    EXPECT_EQ(result.size(), 3U);
    EXPECT_EQ(stringFromJson(result.at("originalText"), "originalText"), passage);
    EXPECT_EQ(stringFromJson(result.at("explanation"), "explanation"), generateBasicExplanation(passage));
    EXPECT_EQ(result.at("simplified"), "according to clause 4 you shall pay.");
}

TEST(ExplainCommandTest, ReadsThePassageFromStandardInputUnchanged)
{
    const Json result = jsonOf(runOnText("explain --json", "Herein\f lies\n\xff\n"));
    EXPECT_EQ(result.at("originalText"), "Herein\f lies\n\ufffd\n");
    EXPECT_EQ(result.at("simplified"), "in this document\f lies\n\ufffd\n");
}

TEST(ExplainCommandTest, ExplainsNothingAtAll)
{
    const Json result = jsonOf(runOnText("explain --json", ""));
    EXPECT_EQ(result.at("originalText"), "");
    EXPECT_EQ(result.at("simplified"), "");
}

TEST(ExplainCommandTest, ExplainsAWholeDocument)
{
    const QString text = PDFTextExtractor::getAllText(pagesOf(sample("contract.pdf")));
    const Json result = jsonOf("explain", sample("contract.pdf"));
    EXPECT_EQ(stringFromJson(result.at("originalText"), "originalText"), text);
    EXPECT_EQ(stringFromJson(result.at("simplified"), "simplified"), simplifyText(text));
}

TEST(ExplainCommandTest, ReportsBothPartsOfTheReading)
{
    const ProgramRun run = runOnText("explain", "We commence\nhereafter.");
    EXPECT_THAT(run.output.toStdString(), HasSubstr("Explanation\n  This is the selected text"));
    EXPECT_THAT(run.output.toStdString(), HasSubstr("\nIn plainer words\n  We begin\n  from now on.\n"));
}

TEST(AnalyzeCommandTest, ReportsAllThreeParts)
{
    const std::string report =
        runCli({QStringLiteral("analyze"), sample("invoice.pdf")}).output.toStdString();
    EXPECT_THAT(report, HasSubstr("Document type     Bill / Invoice\n"));
    EXPECT_THAT(report, HasSubstr("\n\nAction required   Yes\n  page 1     Due Date "));
    EXPECT_THAT(report, HasSubstr("\n\nPage 1\n  date       04/19/2026"));
    EXPECT_THAT(report, HasSubstr(" items found\n"));
}

TEST(ReportTest, NeverLetsADocumentSteerTheTerminal)
{
    const QByteArray hostile = "Due date \x1b]0;owned\a $5\x1b[2J, \xc2\x9b"
                               "31m 01/02/2026 \xe2\x80\xae x@y.example\r";
    for (const char* command :
         {"text --plain -", "classify --plain -", "extract --plain -", "actions --plain -",
          "analyze --plain -", "explain"}) {
        const ProgramRun run = runOnText(command, hostile);
        EXPECT_EQ(run.status, 0) << command;
        for (const char* control : {"\x1b", "\a", "\r", "\xc2\x9b", "\xe2\x80\xae"})
            EXPECT_THAT(run.output.toStdString(), Not(HasSubstr(control))) << command;
    }
    EXPECT_THAT(
        runOnText("extract --plain -", hostile).output.toStdString(), HasSubstr("\u241b]0;owned\u2407 $5"));
}

} // namespace
} // namespace quillo::cli
