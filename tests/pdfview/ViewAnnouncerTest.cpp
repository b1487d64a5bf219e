// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/ViewAnnouncer.h"

#include "pdf/PDFDocument.h"
#include "pdf/TextLayer.h"
#include "pdfview/PageReader.h"
#include "pdfview/ViewSupport.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTest>

#include <algorithm>

namespace pdf {
namespace {

const QByteArray twoLines = showText(72, 700, "Hello world") + showText(72, 680, "Second line");

/// What assistive technologies were told.
struct Announcement
{
    QAccessible::Event type = QAccessible::InvalidEvent;
    QString removed;
    QString inserted;
    int start = -1;
    int end = -1;
    int cursor = -1;
};

Announcement announcementOf(QAccessibleEvent* event)
{
    Announcement result;
    result.type = event->type();
    if (const auto* text = dynamic_cast<QAccessibleTextUpdateEvent*>(event)) {
        result.removed = text->textRemoved();
        result.inserted = text->textInserted();
    }
    if (const auto* selection = dynamic_cast<QAccessibleTextSelectionEvent*>(event)) {
        result.start = selection->selectionStart();
        result.end = selection->selectionEnd();
    }
    if (const auto* cursor = dynamic_cast<QAccessibleTextCursorEvent*>(event))
        result.cursor = cursor->cursorPosition();
    return result;
}

class ViewAnnouncerTest : public PDFViewFixture
{
protected:
    void TearDown() override
    {
        m_announcer.reset();
        QAccessible::setActive(false);
    }

    /// Waits until the first page is read.
    void showPages(int count, const QByteArray& entriesOfFirst = {})
    {
        PDFWriter writer;
        writer.addPage(twoLines, entriesOfFirst);
        for (int page = 2; page <= count; ++page)
            writer.addPage(showText(72, 700, "Page " + QByteArray::number(page)));
        show(writer.bytes(), {700, 900});
        m_announcer = std::make_unique<ViewAnnouncer>(
            *m_view, [this](QAccessibleEvent* event) { m_announcements.push_back(announcementOf(event)); });
        ASSERT_TRUE(comesToRead(0));
    }
    bool comesToRead(int page)
    {
        return QTest::qWaitFor([&] { return m_view->pageReader().text(page) != nullptr; });
    }

    /// Null when there was none.
    const Announcement* last(QAccessible::Event type) const
    {
        const auto place =
            std::find_if(m_announcements.rbegin(), m_announcements.rend(), [type](const Announcement& each) {
                return each.type == type;
            });
        return place == m_announcements.rend() ? nullptr : &*place;
    }

    std::vector<Announcement> m_announcements;
    std::unique_ptr<ViewAnnouncer> m_announcer;
};

TEST_F(ViewAnnouncerTest, TellsOfAnotherPageAndItsText)
{
    showPages(9);
    QAccessible::setActive(true);
    m_view->goToPage(7);
    EXPECT_TRUE(last(QAccessible::DescriptionChanged));
    ASSERT_TRUE(last(QAccessible::TextUpdated));
    EXPECT_EQ(last(QAccessible::TextUpdated)->removed, QStringLiteral("Hello world\nSecond line\n"));
    ASSERT_TRUE(comesToRead(7));
    EXPECT_EQ(last(QAccessible::TextUpdated)->inserted, QStringLiteral("Page 8\n"));
    m_announcements.clear();
    m_view->scrollBy({0, 5});
    EXPECT_TRUE(m_announcements.empty()) << "it is still that page";
}

TEST_F(ViewAnnouncerTest, TellsThatTheCurrentPageCannotBeShown)
{
    showPages(60);
    QAccessible::setActive(true);
    ASSERT_TRUE(QFile::resize(m_view->document()->documentURL().toLocalFile(), 1000));
    m_view->goToPage(50);
    m_announcements.clear();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !m_view->pageFailure(50).isEmpty(); }));
    EXPECT_TRUE(last(QAccessible::DescriptionChanged));
}

TEST_F(ViewAnnouncerTest, TellsOfAnotherSelection)
{
    showPages(2);
    QAccessible::setActive(true);
    m_view->setCurrentSelection(m_view->document()->selection({0, 6}, {0, 11}));
    const Announcement* selection = last(QAccessible::TextSelectionChanged);
    ASSERT_TRUE(selection);
    EXPECT_EQ(selection->start, 6);
    EXPECT_EQ(selection->end, 11);
    EXPECT_EQ(selection->cursor, 11);
    QTest::keyClick(m_view.get(), Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_EQ(last(QAccessible::TextSelectionChanged)->end, 10);
    QTest::keyClick(m_view.get(), Qt::Key_Home, Qt::ShiftModifier);
    EXPECT_EQ(last(QAccessible::TextSelectionChanged)->start, 0);
    EXPECT_EQ(last(QAccessible::TextSelectionChanged)->end, 6);
    EXPECT_EQ(last(QAccessible::TextSelectionChanged)->cursor, 0) << "the end that has moved";
    m_view->clearSelection();
    selection = last(QAccessible::TextSelectionChanged);
    EXPECT_EQ(selection->start, selection->end);
}

TEST_F(ViewAnnouncerTest, TellsWhereALinkLeadsThatGetsTheKeyboard)
{
    showPages(2, "/Annots[<</Subtype/Link/Rect[72 600 200 620]/Dest[1/Fit]>>]");
    QAccessible::setActive(true);
    const auto description = [this] {
        return QAccessible::queryAccessibleInterface(m_view.get())->text(QAccessible::Description);
    };
    m_view->setFocus();
    QTest::keyClick(m_view.get(), Qt::Key_Tab);
    EXPECT_TRUE(last(QAccessible::DescriptionChanged));
    EXPECT_EQ(description(), QStringLiteral("Link: Page 2"));
    QTest::keyClick(m_view.get(), Qt::Key_Escape);
    EXPECT_EQ(description(), QStringLiteral("Page 1 of 2"));
}

TEST_F(ViewAnnouncerTest, TellsOfAnotherDocument)
{
    showPages(1);
    QAccessible::setActive(true);
    m_view->setDocument(documentOf(colouredDocument(1)));
    EXPECT_TRUE(last(QAccessible::NameChanged));
    ASSERT_TRUE(last(QAccessible::TextUpdated));
    EXPECT_EQ(last(QAccessible::TextUpdated)->inserted, QString());
}

TEST_F(ViewAnnouncerTest, TellsNothingWhereNobodyListens)
{
    showPages(2);
    m_view->goToPage(1);
    m_view->setCurrentSelection(m_view->document()->selection({1, 0}, {1, 4}));
    ASSERT_TRUE(comesToRead(1));
    EXPECT_TRUE(m_announcements.empty());
    QAccessible::setActive(true);
    m_view->clearSelection();
    EXPECT_FALSE(m_announcements.empty());
    QAccessible::setActive(false);
    m_announcements.clear();
    m_view->goToPage(0);
    EXPECT_TRUE(m_announcements.empty());
}

} // namespace
} // namespace pdf
