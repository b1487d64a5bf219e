// SPDX-License-Identifier: AGPL-3.0-or-later
#include "cli/ProgramRun.h"
#include "document/PDFTextExtractor.h"
#include "support/PDFWriter.h"
#include "support/Printing.h"
#include "json/StrictJson.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QFile>

namespace quillo::cli {
namespace {

using testing::HasSubstr;

Json jsonOf(const ProgramRun& run)
{
    EXPECT_EQ(run.status, 0) << run.errors.toStdString();
    EXPECT_EQ(run.output.count('\n'), 1) << "one value on one line";
    EXPECT_TRUE(run.output.endsWith('\n'));
    return parseJson(run.output);
}

QString fileOfTwoPages(const TestFolder& folder)
{
    PDFWriter writer;
    writer.addPage(showText(72, 700, "First page"));
    writer.addPage({});
    writer.addPage(showText(72, 700, "Last"));
    return folder.write(QStringLiteral("pages.pdf"), writer.bytes());
}

TEST(TextCommandTest, PrintsPagesSeparatedByFormFeeds)
{
    const TestFolder folder;
    const ProgramRun run = runCli({QStringLiteral("text"), fileOfTwoPages(folder)});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.output, QByteArray("First page\n\f\fLast\n"));
    EXPECT_EQ(run.errors, QByteArray());
}

TEST(TextCommandTest, PrintsJsonOfEveryPageWithBoxes)
{
    const TestFolder folder;
    const Json document =
        jsonOf(runCli({QStringLiteral("text"), QStringLiteral("--json"), fileOfTwoPages(folder)}));
    EXPECT_EQ(document.size(), 2U);
    EXPECT_EQ(document.at("totalPages"), 3);
    const Json& pages = document.at("pageTexts");
    ASSERT_EQ(pages.size(), 3U);

    const Json& first = pages[0];
    EXPECT_EQ(first.size(), 4U);
    EXPECT_EQ(first.at("pageNumber"), 0);
    EXPECT_EQ(first.at("text"), "First page\n");
    EXPECT_EQ(first.at("isOCR"), false);
    ASSERT_EQ(first.at("boundingBoxes").size(), 2U);
    const Json& box = first.at("boundingBoxes")[0];
    EXPECT_EQ(box.at("text"), "First");
    ASSERT_EQ(box.at("rect").size(), 2U) << "the corner and the size, as an item's bounding box has them";
    EXPECT_NEAR(box.at("rect")[0].at(0).get<double>(), 72, 1) << "x";
    EXPECT_NEAR(box.at("rect")[0].at(1).get<double>(), 697, 4) << "y, from the foot of the page";
    EXPECT_GT(box.at("rect")[1].at(0).get<double>(), 15) << "width";
    EXPECT_GT(box.at("rect")[1].at(1).get<double>(), 5) << "height";

    EXPECT_EQ(pages[1].at("text"), "");
    EXPECT_TRUE(pages[1].at("boundingBoxes").is_null());
}

TEST(TextCommandTest, EscapesWordsInTheirBoxes)
{
    const TestFolder folder;
    PDFWriter writer;
    writer.addPage(showText(72, 700, "say\"\\\\so\" caf\\351"), "/Encoding/WinAnsiEncoding");
    const QString path = folder.write(QStringLiteral("quotes.pdf"), writer.bytes());
    const Json page =
        jsonOf(runCli({QStringLiteral("text"), QStringLiteral("--json"), path})).at("pageTexts")[0];
    ASSERT_EQ(page.at("boundingBoxes").size(), 2U);
    const std::string first = page.at("boundingBoxes")[0].at("text");
    const std::string second = page.at("boundingBoxes")[1].at("text");
    EXPECT_EQ(first, "say\"\\so\"");
    EXPECT_EQ(first + " " + second + "\n", page.at("text"));
}

TEST(TextCommandTest, PrintsWhatTheExtractorReads)
{
    const auto reading = PDFTextExtractor::readDocument(sample("manual.pdf"), std::nullopt, {});
    ASSERT_TRUE(reading);
    const Json document =
        jsonOf(runCli({QStringLiteral("text"), QStringLiteral("--json"), sample("manual.pdf")}));
    EXPECT_EQ(document.at("totalPages"), 12);
    ASSERT_EQ(document.at("pageTexts").size(), reading->pageTexts.size());
    for (const PageText& page : reading->pageTexts) {
        const Json& printed = document.at("pageTexts")[static_cast<std::size_t>(page.pageNumber)];
        EXPECT_EQ(stringFromJson(printed.at("text"), "text"), page.text);
        EXPECT_EQ(printed.at("boundingBoxes").size(), page.boundingBoxes->size());
    }
}

TEST(TextCommandTest, AScanHasPagesWithoutText)
{
    const Json document =
        jsonOf(runCli({QStringLiteral("text"), QStringLiteral("--json"), sample("scan.pdf")}));
    EXPECT_EQ(document.at("totalPages"), 2);
    for (const Json& page : document.at("pageTexts")) {
        EXPECT_EQ(page.at("text"), "");
        EXPECT_TRUE(page.at("boundingBoxes").is_null());
    }
}

TEST(TextCommandTest, ReadsLigaturesAsLetters)
{
    EXPECT_THAT(
        runCli({QStringLiteral("text"), sample("contract.pdf")}).output.toStdString(),
        HasSubstr("fire, flood and tempest"));
}

TEST(TextCommandTest, ReadsManyScriptsAndEmoji)
{
    const std::string text =
        runCli({QStringLiteral("text"), sample("multilingual.pdf")}).output.toStdString();
    for (const char* part :
         {"Śniadanie podajemy", "İyi günler", "Το πρωινό σερβίρεται", "Завтрак подаётся", "الفطور من السابعة",
          "欢迎光临", "☀☕🍳", "😀❤"})
        EXPECT_THAT(text, HasSubstr(part));
}

TEST(TextCommandTest, AHugePageIsReadLikeAnyOther)
{
    const TestFolder folder;
    PDFWriter writer;
    writer.addPage(showText(72, 700, "Poster"), "/MediaBox[0 0 100000000 100000000]");
    const QString path = folder.write(QStringLiteral("huge.pdf"), writer.bytes());
    const ProgramRun run = runCli({QStringLiteral("text"), path});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.output, QByteArray("Poster\n"));
}

TEST(PlainTextTest, IsCutIntoPagesAtFormFeeds)
{
    const Json document = jsonOf(runCli(words("text --json --plain -"), {.input = "one\f\ftwo\n"}));
    EXPECT_EQ(document.at("totalPages"), 3);
    const Json& pages = document.at("pageTexts");
    EXPECT_EQ(pages[0].at("text"), "one");
    EXPECT_EQ(pages[1].at("text"), "");
    EXPECT_EQ(pages[2].at("text"), "two\n");
    EXPECT_EQ(pages[2].at("pageNumber"), 2);
    EXPECT_TRUE(pages[0].at("boundingBoxes").is_null());
}

TEST(PlainTextTest, NoTextIsOneEmptyPage)
{
    const Json document = jsonOf(runCli(words("text --json --plain -")));
    EXPECT_EQ(document.at("totalPages"), 1);
    EXPECT_EQ(document.at("pageTexts")[0].at("text"), "");
}

TEST(PlainTextTest, IsReadFromAFile)
{
    const TestFolder folder;
    const QString path = folder.write(QStringLiteral("notes.txt"), "Grüße\n");
    const ProgramRun run = runCli({QStringLiteral("text"), QStringLiteral("--plain"), path});
    EXPECT_EQ(run.output, QByteArray("Grüße\n"));
}

TEST(PlainTextTest, BytesThatAreNoUtf8BecomeReplacementCharacters)
{
    const Json document = jsonOf(runCli(words("text --json --plain -"), {.input = "caf\xe9 \xff ok"}));
    EXPECT_EQ(document.at("pageTexts")[0].at("text"), "caf\ufffd \ufffd ok");
}

TEST(PlainTextTest, KeepsNulCharacters)
{
    const Json document = jsonOf(runCli(words("text --json --plain -"), {.input = QByteArray("a\0b", 3)}));
    EXPECT_EQ(document.at("pageTexts")[0].at("text"), std::string("a\0b", 3));
}

TEST(PlainTextTest, TakesWhatTextPrints)
{
    const ProgramRun text = runCli({QStringLiteral("text"), sample("manual.pdf")});
    const ProgramRun again = runCli(words("text --plain -"), {.input = text.output});
    EXPECT_TRUE(again.output == text.output);
    const ProgramRun direct =
        runCli({QStringLiteral("classify"), QStringLiteral("--json"), sample("manual.pdf")});
    const ProgramRun piped = runCli(words("classify --json --plain -"), {.input = text.output});
    EXPECT_EQ(piped.output, direct.output);
}

TEST(SeveralFilesTest, EachGetsAnObjectOnALineWithItsName)
{
    const QString letter = sample("letter.pdf");
    const QString invoice = sample("invoice.pdf");
    const ProgramRun run = runCli({QStringLiteral("text"), QStringLiteral("--json"), letter, invoice});
    EXPECT_EQ(run.status, 0);
    const auto lines = run.output.split('\n');
    ASSERT_EQ(lines.size(), 3) << "two lines and nothing behind the last line feed";
    EXPECT_EQ(stringFromJson(parseJson(lines[0]).at("file"), "file"), letter);
    EXPECT_EQ(stringFromJson(parseJson(lines[1]).at("file"), "file"), invoice);
    EXPECT_EQ(parseJson(lines[1]).begin().key(), "file");
    EXPECT_EQ(parseJson(lines[1]).at("totalPages"), 1);
}

TEST(SeveralFilesTest, EachGetsAHeadingInAReport)
{
    const TestFolder folder;
    const QString path = fileOfTwoPages(folder);
    const ProgramRun run = runCli({QStringLiteral("text"), path, path});
    const QByteArray heading = "==> " + path.toUtf8() + " <==\n";
    EXPECT_EQ(run.output, heading + "First page\n\f\fLast\n\n" + heading + "First page\n\f\fLast\n");
}

TEST(SeveralFilesTest, ABadOneAmongThemIsReportedAndTheOthersAreRead)
{
    const ProgramRun run = runCli(
        {QStringLiteral("classify"), QStringLiteral("--json"), sample("letter.pdf"),
         QStringLiteral("/nowhere.pdf"), sample("form.pdf")});
    EXPECT_EQ(run.status, 1);
    const auto lines = run.output.split('\n');
    ASSERT_EQ(lines.size(), 3);
    EXPECT_EQ(parseJson(lines[0]).at("documentType"), "Letter");
    EXPECT_EQ(parseJson(lines[1]).at("documentType"), "Form");
    EXPECT_EQ(run.errors.count('\n'), 1);
    EXPECT_TRUE(run.errors.startsWith("quillo-cli: /nowhere.pdf: "));
}

} // namespace
} // namespace quillo::cli
