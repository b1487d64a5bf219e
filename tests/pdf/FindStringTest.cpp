// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"
#include "support/PDFWriter.h"
#include "support/Printing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QFile>

#include <condition_variable>
#include <mutex>
#include <thread>

namespace pdf {
namespace {

using testing::ElementsAre;

std::shared_ptr<PDFDocument> documentOf(const PDFWriter& writer)
{
    const TestFolder folder;
    auto document = PDFDocument::open(folder.write(QStringLiteral("text.pdf"), writer.bytes()));
    return document ? *std::move(document) : nullptr;
}

std::shared_ptr<PDFDocument> documentWith(const std::vector<QByteArray>& pages)
{
    PDFWriter writer;
    for (const QByteArray& page : pages)
        writer.addPage(page);
    return documentOf(writer);
}

std::vector<QString> found(PDFDocument& document, const char* text)
{
    std::vector<QString> result;
    for (const PDFSelection& match :
         document.findString(QString::fromUtf8(text), FindOption::caseInsensitive)) {
        result.push_back(QString::number(match.parts().front().page) + QLatin1Char(':') + match.string());
    }
    return result;
}

/// Collects what a search hands over on its thread.
class Receiver
{
public:
    PDFDocument::MatchReceiver function()
    {
        return [this](std::vector<TextMatch> matches, bool isLast) {
            const std::lock_guard lock(m_mutex);
            m_matches.insert(m_matches.end(), matches.begin(), matches.end());
            m_isLast = isLast;
            m_changed.notify_all();
        };
    }

    std::vector<TextMatch> waitForAll()
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return m_isLast; });
        return m_matches;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<TextMatch> m_matches;
    bool m_isLast = false;
};

TEST(FindStringTest, FindsAllMatchesInTheOrderOfTheDocument)
{
    const auto document = documentWith(
        {showText(72, 700, "Total one") + showText(72, 680, "and the TOTAL two"), "0 0 9 9 re f",
         showText(72, 700, "subtotal")});
    EXPECT_THAT(
        found(*document, "total"),
        ElementsAre(QStringLiteral("0:Total"), QStringLiteral("0:TOTAL"), QStringLiteral("2:total")));
}

TEST(FindStringTest, FindsOverALineBreak)
{
    const auto document =
        documentWith({showText(72, 700, "the annual") + showText(72, 680, "report of the year")});
    EXPECT_THAT(found(*document, "annual  report"), ElementsAre(QStringLiteral("0:annual\nreport")));
}

TEST(FindStringTest, TellsWhereOnThePageAMatchIs)
{
    const auto document = documentWith({showText(72, 700, "Hello world")});
    const auto matches = document->findString(QStringLiteral("world"));
    ASSERT_EQ(matches.size(), 1U);
    const auto pages = matches[0].pages();
    ASSERT_EQ(pages.size(), 1U);
    EXPECT_NEAR(matches[0].bounds(*pages[0]).left(), 102.67, 0.01);
    EXPECT_EQ(matches[0], *pages[0]->selection(TextRange{6, 5}));
}

TEST(FindStringTest, FindsNothingForAnEmptyText)
{
    const auto document = documentWith({showText(72, 700, "Hello world")});
    EXPECT_THAT(found(*document, ""), testing::IsEmpty());
}

TEST(FindStringTest, FindsTheGapsBetweenWordsForWhiteSpace)
{
    const auto document = documentWith({showText(72, 700, "Hello world"), showText(72, 700, "one")});
    EXPECT_THAT(
        found(*document, " \t"),
        ElementsAre(QStringLiteral("0: "), QStringLiteral("0:\n"), QStringLiteral("1:\n")));
}

TEST(FindStringTest, RespectsCaseWithoutTheOption)
{
    const auto document = documentWith({showText(72, 700, "Hello hello")});
    EXPECT_EQ(document->findString(QStringLiteral("hello")).size(), 1U);
}

TEST(FindStringTest, HandsOverMatchesWithoutWaiting)
{
    std::vector<QByteArray> pages(300, showText(72, 700, "page after page"));
    const auto document = documentWith(pages);
    Receiver receiver;
    document->beginFindString(QStringLiteral("PAGE"), FindOption::caseInsensitive, {}, receiver.function());
    const auto matches = receiver.waitForAll();
    ASSERT_EQ(matches.size(), 600U);
    EXPECT_TRUE(std::is_sorted(matches.begin(), matches.end()));
    EXPECT_EQ(document->selection(matches[599])->string(), QStringLiteral("page"));
    EXPECT_EQ(document->selection(matches[599])->parts().front().page, 299);
}

TEST(FindStringTest, IsAbsentForAMatchThatIsNotInTheText)
{
    const auto document = documentWith({showText(72, 700, "Hello world")});
    ASSERT_EQ(document->findString(QStringLiteral("world")).size(), 1U);
    EXPECT_FALSE(document->selection(TextMatch{7, 0, 5}));
    EXPECT_FALSE(document->selection(TextMatch{0, 40, 5}));
    EXPECT_FALSE(document->selection(TextMatch{0, 3, 0}));
}

TEST(FindStringTest, EndsWhenItIsCancelled)
{
    const auto document = documentWith(std::vector<QByteArray>(50, showText(72, 700, "page")));
    const Cancellation cancellation;
    cancellation.cancel();
    EXPECT_THAT(
        document->findString(QStringLiteral("page"), FindOption::caseInsensitive, cancellation),
        testing::IsEmpty());
}

TEST(FindStringTest, SearchesWhatWasOpenedEvenWhenTheFileWasReplaced)
{
    const TestFolder folder;
    PDFWriter before;
    before.addPage(showText(72, 700, "the old text"));
    PDFWriter after;
    after.addPage(showText(72, 700, "a new one"));
    const QString path = folder.write(QStringLiteral("text.pdf"), before.bytes());
    const auto document = *PDFDocument::open(path);
    const QString newPath = folder.write(QStringLiteral("new.pdf"), after.bytes());
    ASSERT_TRUE(QFile::remove(path));
    ASSERT_TRUE(QFile::rename(newPath, path));
    EXPECT_THAT(found(*document, "text"), ElementsAre(QStringLiteral("0:text")));
    EXPECT_THAT(found(*document, "new"), testing::IsEmpty());
}

TEST(FindStringTest, DoesNotKeepTheDocumentAlive)
{
    auto document = documentWith(std::vector<QByteArray>(2000, showText(72, 700, "page")));
    // The search goes on for a moment when this test is over.
    const auto receiver = std::make_shared<Receiver>();
    document->beginFindString(
        QStringLiteral("page"), {}, {},
        [receiver, receive = receiver->function()](auto matches, bool isLast) {
            receive(std::move(matches), isLast);
        });
    const std::weak_ptr<PDFDocument> weak = document;
    document.reset();
    while (!weak.expired())
        std::this_thread::yield();
}

} // namespace
} // namespace pdf
