// SPDX-License-Identifier: AGPL-3.0-or-later
#include "cli/ProgramRun.h"
#include "support/PDFWriter.h"
#include "support/Printing.h"
#include "writer/PageTree.h"
#include "writer/PdfFile.h"
#include "json/StrictJson.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillo::cli {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

constexpr qint64 maximumBytes = qint64{1536} << 20;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool isSanitized = true;
#else
constexpr bool isSanitized = false;
#endif

ProgramRun runOnText(const char* line, const QByteArray& text)
{
    return runCli(words(line), {.input = text});
}

TEST(LimitsTest, APageOf50MegabytesIsAnalysed)
{
    if (isSanitized)
        GTEST_SKIP() << "a sanitizer needs several times the memory";
    QByteArray text = "Invoice with tax and a statement. ";
    text = text.repeated((50 << 20) / static_cast<int>(text.size()));
    for (const char* command :
         {"classify --json --plain -", "actions --json --plain -", "text --json --plain -"}) {
        const ProgramRun run = runOnText(command, text);
        EXPECT_EQ(run.status, 0) << command << run.errors.toStdString();
        EXPECT_LT(run.peakBytes, maximumBytes) << command;
    }
}

TEST(LimitsTest, AMillionItemsAreListed)
{
    if (isSanitized)
        GTEST_SKIP() << "a sanitizer needs several times the memory";
    constexpr int count = 1'000'000;
    const ProgramRun run = runOnText("extract --json --plain -", QByteArray("$1 ").repeated(count));
    EXPECT_EQ(run.status, 0) << run.errors.toStdString();
    EXPECT_EQ(run.output.count("\"type\":\"amount\""), count);
    EXPECT_LT(run.peakBytes, maximumBytes);
}

/// Thousands of pages that share one stream of a hundred thousand words: a small file with a lot of text.
QByteArray fileFullOfWords()
{
    samples::PdfFile file;
    std::string content;
    for (int line = 0; line < 200; ++line) {
        content += "BT /F1 1 Tf 10 " + std::to_string(20 + 3 * line) + " Td (";
        for (int word = 0; word < 500; ++word)
            content += "a ";
        content += ") Tj ET\n";
    }
    const auto stream = file.addStream("", content, samples::PdfFile::Compression::deflate);
    const auto font = file.add("<</Type/Font/Subtype/Type1/BaseFont/Helvetica>>");
    const auto pages = samples::writePageTree(file, 3000, [&](std::size_t, samples::PdfFile::Ref parent) {
        return file.add(
            "<</Type/Page/MediaBox[0 0 600 800]/Parent " + samples::reference(parent) + "/Contents " +
            samples::reference(stream) + "/Resources<</Font<</F1 " + samples::reference(font) + ">>>>>>");
    });
    return QByteArray::fromStdString(
        file.finish(file.add("<</Type/Catalog/Pages " + samples::reference(pages) + ">>"), 0));
}

TEST(LimitsTest, ASmallFileWithMoreTextThanFitsIsRefusedInOneLine)
{
    if (isSanitized)
        GTEST_SKIP() << "there is no limit under a sanitizer";
    const TestFolder folder;
    const QString path = folder.write(QStringLiteral("words.pdf"), fileFullOfWords());
    // The shell's limit is lower than the program's own, which takes minutes to fill.
    const ProgramRun run = runShell("ulimit -d 150000; exec \"$0\" classify --json \"$1\"", {path});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.output, QByteArray());
    EXPECT_EQ(
        run.errorText(),
        QStringLiteral("quillo-cli: %1: it needs more memory than one file may use\n").arg(path));
}

TEST(LimitsTest, WhatNeedsMoreMemoryIsRefusedAndTheNextFileIsRead)
{
    if (isSanitized)
        GTEST_SKIP() << "there is no limit under a sanitizer";
    const TestFolder folder;
    const QString hostile = folder.write(QStringLiteral("many.txt"), QByteArray("$1 ").repeated(20'000'000));
    const ProgramRun run =
        runCli({QStringLiteral("extract"), QStringLiteral("--plain"), hostile, sample("letter.pdf")});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(
        run.errorText(),
        QStringLiteral("quillo-cli: %1: it needs more memory than one file may use\n").arg(hostile));
    EXPECT_THAT(run.output.toStdString(), HasSubstr("bench@olsen-violins.example"));
    EXPECT_LT(run.peakBytes, maximumBytes);
}

TEST(LimitsTest, MoreThan128MegabytesOfPlainTextAreRefused)
{
    const TestFolder folder;
    const QString path = folder.path(QStringLiteral("large.txt"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_TRUE(file.resize((qint64{128} << 20) + 1));
    const ProgramRun run = runCli({QStringLiteral("text"), QStringLiteral("--plain"), path});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errorText(), QStringLiteral("quillo-cli: %1: more than 128 MB of plain text\n").arg(path));
}

} // namespace
} // namespace quillo::cli
