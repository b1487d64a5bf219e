// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/HighlightedSelections.h"

#include "pdf/PDFPage.h"
#include "pdf/ThreadClock.h"
#include "pdfview/ViewSupport.h"

#include <gtest/gtest.h>

#include <QTest>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <ostream>
#include <utility>

namespace pdf {

std::ostream& operator<<(std::ostream& out, const TextMatch& match)
{
    return out << match.length << " characters at " << match.location << " of page " << match.page;
}

namespace {

// The spaces of Helvetica: 12 points of type make them 3.3 wide, and "Hello" in front of one 27.3.
const QByteArray twoLines = showText(72, 700, "Hello world") + showText(72, 680, "Hello again");
constexpr QPointF firstSpace(101, 698.5);
constexpr QPointF secondSpace(101, 678.5);

/// How well one can be read on the other, as the web's accessibility guidelines reckon.
double contrast(QColor a, QColor b)
{
    const auto part = [](double value) {
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    const auto luminance = [&](QColor color) {
        return 0.2126 * part(color.redF()) + 0.7152 * part(color.greenF()) + 0.0722 * part(color.blueF());
    };
    const std::pair<double, double> both = std::minmax({luminance(a), luminance(b)});
    return (both.second + 0.05) / (both.first + 0.05);
}

int distance(QColor a, QColor b)
{
    return std::abs(a.red() - b.red()) + std::abs(a.green() - b.green()) + std::abs(a.blue() - b.blue());
}

class HighlightedSelectionsTest : public PDFViewFixture
{
protected:
    void showPages(int count, const QByteArray& entries = {})
    {
        PDFWriter writer;
        for (int page = 0; page < count; ++page)
            writer.addPage(twoLines, entries);
        show(writer.bytes(), {700, 900});
    }

    PDFSelection text(int page, qsizetype start, qsizetype length) const
    {
        return *m_view->document()->selection({page, start}, {page, start + length});
    }

    QColor colorOn(int page, QPointF point)
    {
        const auto toView = m_view->pageToView(page);
        return toView ? colorAt(toView->map(point)) : QColor();
    }

    bool isMarked(int page, QPointF point)
    {
        return QTest::qWaitFor([&] {
            const QColor color = colorOn(page, point);
            return m_view->isSharp() && color.isValid() && color != QColor(Qt::white);
        });
    }

    /// The processor time that a frame takes, at best.
    std::chrono::nanoseconds frameTime()
    {
        const ThreadClock clock;
        std::chrono::nanoseconds least = std::chrono::hours(1);
        for (int i = 0; i < 20; ++i) {
            const auto start = clock.now();
            m_view->viewport()->grab();
            least = std::min(least, clock.now() - start);
        }
        return least;
    }
};

TEST_F(HighlightedSelectionsTest, MarksThemAndNothingElse)
{
    showPages(1);
    m_view->setHighlightedSelections({text(0, 0, 11)});
    EXPECT_TRUE(isMarked(0, firstSpace));
    EXPECT_EQ(colorOn(0, secondSpace), QColor(Qt::white));
    EXPECT_TRUE(m_view->isSharp()) << "nothing has to be drawn anew";
    m_view->setHighlightedSelections({});
    EXPECT_EQ(colorOn(0, firstSpace), QColor(Qt::white));
}

TEST_F(HighlightedSelectionsTest, MarksThemOnAllPages)
{
    showPages(3);
    m_view->setHighlightedSelections({text(0, 0, 11), text(2, 0, 11)});
    m_view->goToPage(2);
    EXPECT_TRUE(isMarked(2, firstSpace));
    EXPECT_EQ(colorOn(2, secondSpace), QColor(Qt::white));
}

TEST_F(HighlightedSelectionsTest, MarksWhatRunsOverPages)
{
    showPages(2);
    m_view->setScaleFactor(0.5);
    m_view->setHighlightedSelections({*m_view->document()->selection({0, 12}, {1, 11})});
    EXPECT_TRUE(isMarked(0, secondSpace));
    EXPECT_TRUE(isMarked(1, firstSpace));
}

TEST_F(HighlightedSelectionsTest, ShowsTheCurrentSelectionInItsOwnColour)
{
    showPages(1);
    m_view->setCurrentSelection(text(0, 0, 11));
    ASSERT_TRUE(isMarked(0, firstSpace));
    const QColor selected = colorOn(0, firstSpace);
    m_view->setHighlightedSelections({text(0, 0, 11), text(0, 12, 11)});
    ASSERT_TRUE(isMarked(0, secondSpace));
    EXPECT_EQ(colorOn(0, firstSpace), selected);
    EXPECT_NE(colorOn(0, secondSpace), selected);

    m_view->setCurrentSelection(text(0, 12, 11));
    EXPECT_EQ(colorOn(0, secondSpace), selected);
    EXPECT_NE(colorOn(0, firstSpace), selected);
    EXPECT_NE(colorOn(0, firstSpace), QColor(Qt::white)) << "marked again, no longer being selected";
}

TEST_F(HighlightedSelectionsTest, LeavesTheRestOfAPartlySelectedOneMarked)
{
    showPages(1);
    m_view->setHighlightedSelections({text(0, 0, 23)});
    ASSERT_TRUE(isMarked(0, firstSpace));
    const QColor marked = colorOn(0, firstSpace);
    m_view->setCurrentSelection(text(0, 12, 11));
    EXPECT_EQ(colorOn(0, firstSpace), marked);
    EXPECT_NE(colorOn(0, secondSpace), marked);
}

TEST_F(HighlightedSelectionsTest, CanBeReadAndToldFromTheSelectionInLightAndInDark)
{
    showPages(1);
    m_view->setHighlightedSelections({text(0, 0, 11), text(0, 12, 11)});
    m_view->setCurrentSelection(text(0, 0, 11));
    for (const QColor accent : {QColor(0x0A6CFF), QColor(0x4C97FF)}) {
        QPalette palette;
        palette.setColor(QPalette::Highlight, accent);
        m_view->setPalette(palette);
        ASSERT_TRUE(isMarked(0, secondSpace));
        const QColor selected = colorOn(0, firstSpace);
        const QColor marked = colorOn(0, secondSpace);
        EXPECT_GT(contrast(selected, Qt::black), 7) << accent.name().toStdString();
        EXPECT_GT(contrast(marked, Qt::black), 7);
        EXPECT_GT(distance(selected, marked), 150) << accent.name().toStdString();
    }
}

TEST_F(HighlightedSelectionsTest, MarksOnPagesThatAreTurned)
{
    for (const char* rotation : {"/Rotate 90", "/Rotate 180", "/Rotate 270"}) {
        showPages(1, rotation);
        m_view->setScaleFactor(0.8);
        m_view->setHighlightedSelections({text(0, 0, 11)});
        EXPECT_TRUE(isMarked(0, {101, 699})) << rotation;
        EXPECT_EQ(colorOn(0, {60, 704}), QColor(Qt::white)) << rotation;
    }
}

TEST_F(HighlightedSelectionsTest, FollowsAPageThatIsTurned)
{
    showPages(1);
    m_view->setScaleFactor(0.8);
    m_view->setHighlightedSelections({text(0, 0, 11)});
    ASSERT_TRUE(isMarked(0, {101, 699}));
    const QPointF before = m_view->pageToView(0)->map(QPointF(101, 699));
    ASSERT_TRUE(m_view->document()->page(0)->setRotation(90));
    m_view->refreshPage(0);
    ASSERT_TRUE(QTest::qWaitFor(
        [&] { return m_view->pageToView(0)->map(QPointF(101, 699)) != before && m_view->isSharp(); }));
    EXPECT_TRUE(isMarked(0, {101, 699}));
    EXPECT_EQ(colorAt(before), QColor(Qt::white));
}

TEST_F(HighlightedSelectionsTest, TakesWhatASearchFindsInAnyOrder)
{
    showPages(3);
    m_view->addHighlightedMatches({{0, 0, 5}, {1, 0, 5}});
    m_view->addHighlightedMatches({{2, 0, 5}});
    m_view->addHighlightedMatches({{1, 12, 5}, {0, 12, 5}});
    const std::vector<TextMatch> sorted{{0, 0, 5}, {0, 12, 5}, {1, 0, 5}, {1, 12, 5}, {2, 0, 5}};
    EXPECT_EQ(m_view->highlightedSelections(), sorted);
}

TEST_F(HighlightedSelectionsTest, TakesNoneThatThePageDoesNotHave)
{
    showPages(1);
    m_view->addHighlightedMatches({{-1, 0, 5}, {0, 12, 1000}, {0, 5000, 5}, {7, 0, 5}});
    EXPECT_TRUE(isMarked(0, secondSpace));
    EXPECT_EQ(colorOn(0, firstSpace), QColor(Qt::white));
}

TEST_F(HighlightedSelectionsTest, BelongToTheDocument)
{
    showPages(1);
    const PDFSelection other = text(0, 0, 5);
    m_view->setHighlightedSelections({other});
    EXPECT_EQ(m_view->highlightedSelections().size(), 1U);
    m_view->setDocument(documentOf(colouredDocument(1)));
    EXPECT_TRUE(m_view->highlightedSelections().empty());
    m_view->setHighlightedSelections({other});
    EXPECT_TRUE(m_view->highlightedSelections().empty()) << "it is another document's";
}

TEST_F(HighlightedSelectionsTest, CostNothingOnPagesThatAreNotVisible)
{
    showPages(1);
    m_view->setHighlightedSelections({text(0, 0, 11)});
    ASSERT_TRUE(isMarked(0, firstSpace));
    const auto few = frameTime();
    std::vector<TextMatch> matches;
    matches.reserve(100000);
    for (qint32 i = 0; i < 100000; ++i)
        matches.push_back({1 + i / 50, 10 * (i % 50), 5});
    m_view->addHighlightedMatches(matches);
    const auto many = frameTime();
    EXPECT_LT(many, 2 * few) << few.count() << " ns with one match, " << many.count() << " ns with 100,000";
}

} // namespace
} // namespace pdf
