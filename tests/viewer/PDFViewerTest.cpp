// SPDX-License-Identifier: AGPL-3.0-or-later
#include "viewer/PDFViewer.h"

#include "controls/MenuButton.h"
#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"
#include "support/Printing.h"
#include "support/Widgets.h"
#include "viewer/ViewerFixture.h"

#include <gtest/gtest.h>

#include <QLineEdit>
#include <QMenu>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>

#include <cstdio>

namespace quillo {
namespace {

class PDFViewerTest : public ViewerFixture
{
protected:
    QString pageLabel() const { return label(QStringLiteral("Page")); }
    QString zoomLabel() const { return label(QStringLiteral("Zoom")); }
    void press(const QString& name) { click(*m_viewer, name); }
    void choose(const QString& item)
    {
        for (QAction* action : m_viewer->findChild<MenuButton*>()->menu()->actions()) {
            if (action->text() == item)
                return action->trigger();
        }
        ADD_FAILURE() << "there is no item " << item.toStdString();
    }

    bool isEnabled(const QString& name) const { return visibleButton(*m_viewer, name)->isEnabled(); }

    void wheel(QPoint angle, Qt::KeyboardModifiers modifiers)
    {
        const QPointF place(300, 300);
        QWheelEvent event(
            place, view().viewport()->mapToGlobal(place), QPoint(), angle, Qt::NoButton, modifiers,
            Qt::NoScrollPhase, false);
        QApplication::sendEvent(view().viewport(), &event);
    }
};

TEST_F(PDFViewerTest, ShowsTheFileThatTheStateNames)
{
    show();
    EXPECT_EQ(view().document(), nullptr);
    const QUrl url = documentOf(3);
    open(url);
    ASSERT_TRUE(view().document());
    EXPECT_EQ(view().document()->documentURL(), url);
    EXPECT_EQ(view().pageCount(), 3);
}

TEST_F(PDFViewerTest, ShowsAFileThatWasNamedBeforeTheViewerWasMade)
{
    m_state.setUrl(documentOf(3));
    show();
    EXPECT_TRUE(QTest::qWaitFor([&] { return view().document() != nullptr; }));
}

TEST_F(PDFViewerTest, OpensAt100Percent)
{
    showDocument(2);
    EXPECT_EQ(zoomLabel(), QStringLiteral("100%"));
    EXPECT_EQ(view().scaleFactor(), 1.0);
}

TEST_F(PDFViewerTest, SurroundsThePagesWithOneColour)
{
    showDocument(3);
    const QImage picture = view().grab().toImage();
    const QColor surroundings = view().palette().color(QPalette::Window);
    EXPECT_EQ(picture.pixelColor(2, 2), surroundings);
    EXPECT_EQ(picture.pixelColor(picture.width() - 3, picture.height() - 3), surroundings)
        << "below the scroll bar";
}

TEST_F(PDFViewerTest, LabelsThePageFromOne)
{
    show();
    m_state.setTotalPages(7);
    EXPECT_EQ(pageLabel(), QStringLiteral("1 / 7"));
    m_state.setCurrentPage(6);
    EXPECT_EQ(pageLabel(), QStringLiteral("7 / 7"));
}

TEST_F(PDFViewerTest, DisablesThePageButtonsAtBothEnds)
{
    show();
    const auto enabled = [&] {
        return std::pair(isEnabled(QStringLiteral("Previous page")), isEnabled(QStringLiteral("Next page")));
    };
    m_state.setTotalPages(0);
    EXPECT_EQ(enabled(), std::pair(false, false));
    m_state.setTotalPages(3);
    EXPECT_EQ(enabled(), std::pair(false, true));
    m_state.setCurrentPage(1);
    EXPECT_EQ(enabled(), std::pair(true, true));
    m_state.setCurrentPage(2);
    EXPECT_EQ(enabled(), std::pair(true, false));
}

TEST_F(PDFViewerTest, TurnsPagesByItsButtons)
{
    showDocument(3);
    press(QStringLiteral("Next page"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_state.currentPage() == 1; }));
    EXPECT_EQ(pageLabel(), QStringLiteral("2 / 3"));
    press(QStringLiteral("Next page"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_state.currentPage() == 2; }));
    press(QStringLiteral("Previous page"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_state.currentPage() == 1; }));
}

TEST_F(PDFViewerTest, WritesThePageThatIsScrolledToIntoTheState)
{
    showDocument(5);
    const double twoPages = 2 * (792 + 12);
    view().scrollBy({0, twoPages});
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_state.currentPage() == 2; }));
    EXPECT_EQ(pageLabel(), QStringLiteral("3 / 5"));
}

TEST_F(PDFViewerTest, WritesThePageOnlyAfterTheViewHasSettled)
{
    showDocument(3);
    view().goToPage(2);
    EXPECT_EQ(m_state.currentPage(), 0) << "the state must not change while the view does";
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_state.currentPage() == 2; }));
}

TEST_F(PDFViewerTest, DoesNotScrollToThePageThatIsWrittenIntoTheState)
{
    showDocument(3);
    m_state.setCurrentPage(2);
    QCoreApplication::processEvents();
    EXPECT_EQ(view().currentPageIndex(), 0);
}

TEST_F(PDFViewerTest, BeginsAnotherDocumentAtItsFirstPage)
{
    showDocument(5);
    view().goToPage(4);
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_state.currentPage() == 4; }));
    open(documentOf(2, QStringLiteral("other.pdf")));
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_state.currentPage() == 0; }));
}

TEST_F(PDFViewerTest, ZoomsOutByAQuarterDownTo25Percent)
{
    showDocument(1);
    QStringList labels;
    for (int i = 0; i < 4; ++i) {
        press(QStringLiteral("Zoom out"));
        labels.append(zoomLabel());
    }
    EXPECT_EQ(
        labels,
        (QStringList{
            QStringLiteral("75%"), QStringLiteral("50%"), QStringLiteral("25%"), QStringLiteral("25%")}));
    EXPECT_EQ(view().scaleFactor(), 0.25);
}

TEST_F(PDFViewerTest, ZoomsInByAQuarterUpTo500Percent)
{
    showDocument(1);
    view().setScaleFactor(4.9);
    EXPECT_EQ(m_viewer->zoomLevel(), 4.9);
    press(QStringLiteral("Zoom in"));
    EXPECT_EQ(m_viewer->zoomLevel(), 5.0);
    press(QStringLiteral("Zoom in"));
    EXPECT_EQ(m_viewer->zoomLevel(), 5.0);
    EXPECT_EQ(view().scaleFactor(), 5.0);
    EXPECT_EQ(zoomLabel(), QStringLiteral("500%"));
}

TEST_F(PDFViewerTest, FollowsZoomingByHandAndCutsThePercentage)
{
    showDocument(1);
    wheel({0, 120}, Qt::ControlModifier);
    EXPECT_NEAR(m_viewer->zoomLevel(), 1.1, 1e-9);
    EXPECT_EQ(zoomLabel(), QStringLiteral("110%"));
    view().setScaleFactor(0.999);
    EXPECT_EQ(zoomLabel(), QStringLiteral("99%"));
}

TEST_F(PDFViewerTest, FitsThePageIntoItsWidth)
{
    showDocument(1);
    press(QStringLiteral("Zoom to fit"));
    EXPECT_TRUE(view().autoScales());
    EXPECT_GT(m_viewer->zoomLevel(), 1.1);
    const double before = m_viewer->zoomLevel();
    m_viewer->resize(1000, 700);
    EXPECT_GT(m_viewer->zoomLevel(), before);
    press(QStringLiteral("Zoom in"));
    EXPECT_FALSE(view().autoScales());
}

TEST_F(PDFViewerTest, OffersWhatCanBeDoneWithTheDocumentInAMenu)
{
    show();
    QStringList items;
    const auto* button = m_viewer->findChild<MenuButton*>();
    ASSERT_TRUE(button);
    for (const QAction* action : button->menu()->actions()) {
        if (!action->isSeparator())
            items.append(action->text() + u' ' + action->shortcut().toString());
    }
    EXPECT_EQ(
        items, (QStringList{
                   QStringLiteral("Print... Ctrl+P"), QStringLiteral("Rotate Left "),
                   QStringLiteral("Rotate Right ")}));
}

TEST_F(PDFViewerTest, TurnsTheCurrentPage)
{
    showDocument(2);
    const auto page = view().document()->page(0);
    choose(QStringLiteral("Rotate Left"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return page->rotation() == 270; }));
    EXPECT_TRUE(QTest::qWaitFor([&] { return view().pageRect(0).size() == QSizeF(792, 612); }));
    choose(QStringLiteral("Rotate Right"));
    choose(QStringLiteral("Rotate Right"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return page->rotation() == 90; }));
    EXPECT_EQ(view().document()->page(1)->rotation(), 0) << "only the current page is turned";
    EXPECT_EQ(m_analytics.types().size(), 3);
    EXPECT_EQ(
        m_analytics.latest(EventType::pageRotation, QStringLiteral("direction")), QStringLiteral("right"));
}

TEST_F(PDFViewerTest, TurnsAPageAllTheWayRound)
{
    showDocument(1);
    const auto page = view().document()->page(0);
    for (const int rotation : {90, 180, 270, 0}) {
        choose(QStringLiteral("Rotate Right"));
        EXPECT_TRUE(QTest::qWaitFor([&] { return page->rotation() == rotation; })) << rotation;
    }
}

TEST_F(PDFViewerTest, TurnsNothingWithoutADocument)
{
    show();
    choose(QStringLiteral("Rotate Left"));
    choose(QStringLiteral("Rotate Right"));
    EXPECT_TRUE(m_analytics.types().isEmpty());
}

TEST_F(PDFViewerTest, KeepsItsZoomForTheNextDocument)
{
    showDocument(1);
    press(QStringLiteral("Zoom in"));
    open(documentOf(1, QStringLiteral("other.pdf")));
    EXPECT_EQ(view().scaleFactor(), 1.25);
    EXPECT_EQ(zoomLabel(), QStringLiteral("125%"));
}

TEST_F(PDFViewerTest, KeepsWhatItHasWhenAFileCannotBeOpened)
{
    showDocument(3);
    const auto before = view().document();
    open(QUrl::fromLocalFile(m_folder.write(QStringLiteral("broken.pdf"), "no PDF at all")));
    EXPECT_EQ(view().document(), before);
    open(QUrl::fromLocalFile(m_folder.path(QStringLiteral("missing.pdf"))));
    EXPECT_EQ(view().document(), before);
    EXPECT_TRUE(before->page(0));
}

TEST_F(PDFViewerTest, StaysEmptyWhenTheFirstFileCannotBeOpened)
{
    show();
    open(QUrl::fromLocalFile(m_folder.write(QStringLiteral("broken.pdf"), "")));
    EXPECT_EQ(view().document(), nullptr);
}

TEST_F(PDFViewerTest, ShowsADocumentWithoutPages)
{
    show();
    open(QUrl::fromLocalFile(m_folder.write(QStringLiteral("empty.pdf"), PDFWriter().bytes())));
    ASSERT_TRUE(view().document());
    EXPECT_EQ(view().pageCount(), 0);
}

TEST_F(PDFViewerTest, DoesNotOpenTheSameFileTwice)
{
    showDocument(3);
    const auto before = view().document();
    view().goToPage(2);
    m_state.setUrl(m_state.url());
    QCoreApplication::processEvents();
    EXPECT_EQ(view().document(), before);
    EXPECT_EQ(view().currentPageIndex(), 2);
}

TEST_F(PDFViewerTest, ShowsTheLastOfSeveralFilesThatAreOpenedAtOnce)
{
    show();
    const QUrl last = documentOf(4, QStringLiteral("last.pdf"));
    m_state.setUrl(documentOf(2, QStringLiteral("first.pdf")));
    m_state.setUrl(documentOf(3, QStringLiteral("second.pdf")));
    open(last);
    EXPECT_EQ(view().document()->documentURL(), last);
    EXPECT_EQ(view().pageCount(), 4);
}

TEST_F(PDFViewerTest, GoesWhileAFileIsBeingOpened)
{
    show();
    m_state.setUrl(documentOf(2000));
    m_viewer.reset();
    QCoreApplication::processEvents();
    EXPECT_EQ(m_state.currentPage(), 0);
}

TEST_F(PDFViewerTest, WritesTheSelectedTextIntoTheState)
{
    showDocument(2);
    view().setCurrentSelection(view().document()->selection({0, 0}, {0, 4}));
    EXPECT_EQ(m_state.selectedText(), QString()) << "the state must not change while the view does";
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_state.selectedText() == QStringLiteral("Page"); }));
}

TEST_F(PDFViewerTest, KeepsTheSelectedTextInTheStateWhenTheSelectionEnds)
{
    showDocument(1);
    view().setCurrentSelection(view().document()->selection({0, 0}, {0, 4}));
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_state.selectedText() == QStringLiteral("Page"); }));
    view().clearSelection();
    QCoreApplication::processEvents();
    EXPECT_EQ(m_state.selectedText(), QStringLiteral("Page"));
}

TEST_F(PDFViewerTest, RecordsPageNavigationAndZoom)
{
    showDocument(3);
    const auto latest = [&](EventType type, const char* key) {
        return m_analytics.latest(type, QString::fromLatin1(key));
    };
    press(QStringLiteral("Next page"));
    EXPECT_EQ(latest(EventType::pageNavigation, "direction"), QStringLiteral("next"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_state.currentPage() == 1; }));
    press(QStringLiteral("Previous page"));
    EXPECT_EQ(latest(EventType::pageNavigation, "direction"), QStringLiteral("previous"));
    press(QStringLiteral("Zoom in"));
    EXPECT_EQ(latest(EventType::zoom, "direction"), QStringLiteral("in"));
    EXPECT_EQ(latest(EventType::zoom, "level"), QVariant(1.25));
    press(QStringLiteral("Zoom out"));
    EXPECT_EQ(latest(EventType::zoom, "direction"), QStringLiteral("out"));
    EXPECT_EQ(latest(EventType::zoom, "level"), QVariant(1.0));
    EXPECT_EQ(m_analytics.types().size(), 4);
}

TEST_F(PDFViewerTest, KeepsWhatIsBeingTypedWhenAFileThatWasReplacedIsOpenedAgain)
{
    show();
    const QUrl url = formDocument();
    open(url);
    QPointer<QLineEdit> editor = editField();
    ASSERT_TRUE(editor);
    QTest::keyClicks(editor, QStringLiteral("Typed"));
    const QUrl other = documentOf(3);
    ASSERT_EQ(std::rename(qPrintable(other.toLocalFile()), qPrintable(url.toLocalFile())), 0);
    open(url);
    EXPECT_EQ(view().pageCount(), 1);
    ASSERT_TRUE(editor);
    EXPECT_EQ(editor->text(), QStringLiteral("Typed"));
    QTest::keyClick(editor, Qt::Key_Escape);
    open(url);
    EXPECT_EQ(view().pageCount(), 3) << "nothing is lost any more";
}

TEST_F(PDFViewerTest, NamesEveryButton)
{
    showDocument(2);
    for (const auto* button : m_viewer->findChildren<QAbstractButton*>())
        EXPECT_FALSE(button->accessibleName().isEmpty());
}

} // namespace
} // namespace quillo
