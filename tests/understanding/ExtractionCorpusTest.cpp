// SPDX-License-Identifier: AGPL-3.0-or-later
#include "understanding/InformationExtraction.h"

#include "document/PDFTextExtractor.h"
#include "understanding/ExtractionComparison.h"
#include "understanding/ExtractionReference.h"

#include <gtest/gtest.h>

#include <QDirIterator>

#include <chrono>

namespace quillo {
namespace {

TEST(ExtractionCorpusTest, AgreesWithTheReferenceOnTheTextsOfRealFiles)
{
    const QString folder = QStringLiteral(QUILLO_CORPUS);
    if (!QDir(folder).exists())
        GTEST_SKIP() << "There is no folder of real files at " << folder.toStdString();

    QDirIterator files(folder, {QStringLiteral("*.pdf")}, QDir::Files, QDirIterator::Subdirectories);
    int pages = 0;
    std::size_t items = 0;
    while (files.hasNext()) {
        const QString path = files.next();
        const auto reading = PDFTextExtractor::readDocument(
            path, std::nullopt, pdf::Cancellation::after(std::chrono::seconds(10)));
        if (!reading)
            continue;
        for (const PageText& page : reading->pageTexts) {
            const auto expected = reference::extractItems(page.text, page.pageNumber);
            ASSERT_EQ(differenceOf(extractItems(page.text, page.pageNumber), expected), "")
                << path.toStdString() << ", page " << page.pageNumber + 1;
            ++pages;
            items += expected.size();
        }
    }
    RecordProperty("pages", pages);
    RecordProperty("items", static_cast<int>(items));
    EXPECT_GT(pages, 500);
    EXPECT_GT(items, 1000U);
}

} // namespace
} // namespace quillo
