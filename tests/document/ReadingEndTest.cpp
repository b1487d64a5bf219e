// SPDX-License-Identifier: AGPL-3.0-or-later
#include "document/DocumentState.h"
#include "document/PDFTextExtractor.h"
#include "support/EndlessPages.h"
#include "support/PDFWriter.h"
#include "support/Printing.h"

#include <gtest/gtest.h>

#include <QTest>

#include <memory>

namespace quillo {
namespace {

class WatchedState : public DocumentState
{
public:
    /// How many connections others have made to the state's signals.
    int connections() const
    {
        return receivers(SIGNAL(destroyed(QObject*))) +
               receivers(SIGNAL(didChange(quillo::DocumentState::Field))) +
               receivers(SIGNAL(willChange(quillo::DocumentState::Field)));
    }
};

/// A reading that nobody waits for to its end by itself: it would take minutes of the processor's time.
class ReadingEndTest : public testing::Test
{
protected:
    ReadingEndTest()
    {
        PDFWriter slow;
        addEndlessPages(slow, 100);
        m_slow = QUrl::fromLocalFile(m_folder.write(QStringLiteral("slow.pdf"), slow.bytes()));
        PDFWriter ordinary;
        ordinary.addPage(showText(72, 700, "ordinary"));
        m_ordinary = QUrl::fromLocalFile(m_folder.write(QStringLiteral("ordinary.pdf"), ordinary.bytes()));
    }

    /// Begins to read and comes back when pages are being read.
    QFuture<void> beginSlowReading()
    {
        m_state->setUrl(m_slow);
        const QFuture<void> reading = m_extractor.extractText(m_slow, m_state.get());
        EXPECT_TRUE(QTest::qWaitFor([&] { return m_state->totalPages() == 100; }, 10000));
        return reading;
    }

    static bool ends(const QFuture<void>& reading)
    {
        return QTest::qWaitFor([&] { return reading.isFinished(); }, 10000);
    }

    TestFolder m_folder;
    QUrl m_slow;
    QUrl m_ordinary;
    PDFTextExtractor m_extractor;
    // Goes first, and ends what is still being read.
    std::unique_ptr<WatchedState> m_state = std::make_unique<WatchedState>();
};

TEST_F(ReadingEndTest, ComesAtOnceWhenTheStateIsDeleted)
{
    const QFuture<void> reading = beginSlowReading();
    m_state.reset();
    EXPECT_TRUE(ends(reading));
}

TEST_F(ReadingEndTest, ComesAtOnceWhenTheDocumentIsClosed)
{
    const QFuture<void> reading = beginSlowReading();
    m_state->setUrl(std::nullopt);
    EXPECT_TRUE(ends(reading));
    EXPECT_TRUE(m_state->pageTexts()->empty());
}

TEST_F(ReadingEndTest, ComesAtOnceWhenAnotherDocumentIsRead)
{
    const QFuture<void> slow = beginSlowReading();
    const QFuture<void> ordinary = m_extractor.extractText(m_ordinary, m_state.get());
    EXPECT_TRUE(ends(ordinary));
    EXPECT_TRUE(slow.isFinished());
    EXPECT_EQ(m_state->totalPages(), 1);
    ASSERT_EQ(m_state->pageTexts()->size(), 1U);
    EXPECT_EQ(m_state->pageTexts()->at(0).text, QStringLiteral("ordinary\n"));
}

TEST_F(ReadingEndTest, LeavesNothingBehindOnTheState)
{
    const int connections = m_state->connections();
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(ends(m_extractor.extractText(m_ordinary, m_state.get())));
        EXPECT_EQ(m_state->connections(), connections);
        EXPECT_TRUE(m_state->children().isEmpty());
    }
}

} // namespace
} // namespace quillo
