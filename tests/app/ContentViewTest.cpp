// SPDX-License-Identifier: AGPL-3.0-or-later
#include "app/ContentView.h"

#include "app/WindowFixture.h"
#include "document/DocumentState.h"
#include "pdf/FileName.h"
#include "pdf/PDFDocument.h"
#include "pdfview/PDFView.h"
#include "pdfview/RenderThreads.h"
#include "platform/NotificationCenter.h"
#include "platform/Notifications.h"
#include "sidebar/UnderstandSidebar.h"
#include "support/EndlessPages.h"
#include "support/Printing.h"
#include "support/Widgets.h"
#include "viewer/PDFViewer.h"

#include <gtest/gtest.h>

#include <QDragEnterEvent>
#include <QMimeData>
#include <QTest>
#include <QWheelEvent>

#include <cstdio>
#include <vector>

namespace quillo {
namespace {

const QString pageLabel = QStringLiteral("Page");

class ContentViewTest : public WindowFixture
{
protected:
    /// Waits until so many opens have ended.
    bool isCompleted(int count) const
    {
        return QTest::qWaitFor(
            [&] { return m_analytics.types().count(QStringLiteral("textExtractionComplete")) == count; },
            10000);
    }

    pdf::PDFView* view() const { return m_window->findChild<pdf::PDFView*>(); }

    /// Drags the URLs onto the window and lets them go there; true when the window takes them.
    bool drop(const QList<QUrl>& urls) const
    {
        QMimeData data;
        data.setUrls(urls);
        const QPoint place(300, 300);
        QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(m_window.get(), &enter);
        if (!enter.isAccepted())
            return false;
        QDropEvent event(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(m_window.get(), &event);
        return event.isAccepted();
    }
};

TEST_F(ContentViewTest, InvitesToOpenAFileWhileItIsEmpty)
{
    show();
    EXPECT_TRUE(shows(*m_window, QStringLiteral("Open a PDF to get started")));
    EXPECT_TRUE(shows(*m_window, QStringLiteral("Quillo will help you understand your documents")));
    EXPECT_TRUE(shows(*m_window, QStringLiteral("Open a document to begin")));
    EXPECT_EQ(m_window->findChild<PDFViewer*>(), nullptr);
    int requests = 0;
    QObject::connect(
        m_window.get(), &ContentView::openDocumentRequested, m_window.get(), [&] { ++requests; });
    click(*m_window, QStringLiteral("Open PDF..."));
    EXPECT_EQ(requests, 1);
}

TEST_F(ContentViewTest, OpensWhatTheNotificationNames)
{
    show();
    const QUrl url = documentOf(3);
    post(url);
    EXPECT_EQ(state().url(), url);
    EXPECT_TRUE(labelBecomes(pageLabel, QStringLiteral("1 / 3")));
    ASSERT_TRUE(hasText());
    EXPECT_EQ(state().pageTexts()->size(), 3U);
    EXPECT_EQ(state().pageTexts()->at(2).text, QStringLiteral("Page 3\n"));
    ASSERT_TRUE(view());
    EXPECT_EQ(view()->pageCount(), 3);
}

TEST_F(ContentViewTest, OpensAFileWhoseNameIsNoUtf8)
{
    show();
    const QByteArray path = pdf::filePath(documentOf(3)).toUtf8();
    const QByteArray name = "caf\xe9.pdf";
    const QByteArray renamed = path.first(path.lastIndexOf('/') + 1) + name;
    ASSERT_EQ(std::rename(path.constData(), renamed.constData()), 0);
    post(QUrl::fromEncoded("file://" + renamed.toPercentEncoding("/")));
    EXPECT_TRUE(labelBecomes(pageLabel, QStringLiteral("1 / 3")));
    ASSERT_TRUE(hasText());
    EXPECT_EQ(state().pageTexts()->size(), 3U);
    EXPECT_EQ(std::remove(renamed.constData()), 0);
}

TEST_F(ContentViewTest, IgnoresNotificationsWithoutAURL)
{
    show();
    post(QStringLiteral("/tmp/document.pdf"));
    post({});
    EXPECT_FALSE(state().url());
    EXPECT_EQ(m_analytics.types(), QStringList{QStringLiteral("appLaunch")});
}

TEST_F(ContentViewTest, ClassifiesTheInvoiceOnAClick)
{
    show();
    post(sample(QStringLiteral("invoice.pdf")));
    // Pressed at once: the feature waits for the text by itself.
    click(*m_window, QStringLiteral("What is this document?"));
    EXPECT_TRUE(shows(*m_window, QStringLiteral("Bill / Invoice")));
    ASSERT_TRUE(state().insight());
    EXPECT_EQ(state().insight()->documentType, DocumentInsight::DocumentType::bill);
}

TEST_F(ContentViewTest, ChangesThePageLabelByScrolling)
{
    show();
    post(documentOf(5));
    ASSERT_TRUE(labelBecomes(pageLabel, QStringLiteral("1 / 5")));
    ASSERT_TRUE(QTest::qWaitFor([&] { return view()->pageViewport().layout().hasSizes(); }));
    for (int i = 0; i < 30 && label(pageLabel) != QStringLiteral("2 / 5"); ++i) {
        const QPointF place(100, 100);
        QWheelEvent wheel(
            place, view()->viewport()->mapToGlobal(place), QPoint(), QPoint(0, -100), Qt::NoButton,
            Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(view()->viewport(), &wheel);
        QCoreApplication::processEvents();
    }
    EXPECT_EQ(label(pageLabel), QStringLiteral("2 / 5"));
    EXPECT_EQ(state().currentPage(), 1);
}

TEST_F(ContentViewTest, PostsADroppedFileAndOpensItThatWay)
{
    show();
    const QUrl url = documentOf(2);
    QList<QVariant> posted;
    QObject observer;
    NotificationCenter::defaultCenter().addObserver(
        &observer, Notifications::openPDFDocument, [&](const QVariant& object) { posted.append(object); });
    EXPECT_TRUE(drop({url}));
    EXPECT_EQ(posted, QList<QVariant>{url});
    EXPECT_TRUE(labelBecomes(pageLabel, QStringLiteral("1 / 2")));
}

TEST_F(ContentViewTest, TakesTheFirstOfSeveralDroppedFiles)
{
    show();
    const QUrl first = documentOf(2, QStringLiteral("first.pdf"));
    EXPECT_TRUE(drop({QUrl(QStringLiteral("https://host.example/a.pdf")), first, documentOf(3)}));
    EXPECT_EQ(state().url(), first);
}

TEST_F(ContentViewTest, LetsNothingBeDroppedThatIsNoLocalFile)
{
    show();
    EXPECT_FALSE(drop({QUrl(QStringLiteral("https://host.example/a.pdf"))}));
    EXPECT_FALSE(drop({}));
    EXPECT_FALSE(state().url());
}

TEST_F(ContentViewTest, KeepsWhatItShowsWhenAFileCannotBeOpened)
{
    show();
    post(documentOf(3));
    ASSERT_TRUE(hasText());
    const auto shown = view()->document();
    const QUrl broken = QUrl::fromLocalFile(m_folder.write(QStringLiteral("broken.pdf"), "no PDF"));
    testing::internal::CaptureStdout();
    post(broken);
    std::string console;
    const bool isDone = QTest::qWaitFor(
        [&] { return m_analytics.types().count(QStringLiteral("textExtractionComplete")) == 2; });
    console = testing::internal::GetCapturedStdout();
    ASSERT_TRUE(isDone);
    EXPECT_EQ(console, "Failed to load PDF document\n");
    EXPECT_EQ(state().url(), broken) << "the state names it all the same";
    EXPECT_EQ(view()->document(), shown);
    EXPECT_EQ(state().totalPages(), 3);
    EXPECT_EQ(state().pageTexts()->size(), 3U);
}

TEST_F(ContentViewTest, CompletesEveryOpenOfTheSameFile)
{
    show();
    const QUrl url = documentOf(2);
    post(url);
    ASSERT_TRUE(isCompleted(1));
    const auto shown = view()->document();
    post(url);
    EXPECT_TRUE(isCompleted(2));
    EXPECT_EQ(m_analytics.types().count(QStringLiteral("documentOpened")), 2);
    EXPECT_EQ(view()->document(), shown) << "it is what is shown already";
}

TEST_F(ContentViewTest, ClassifiesAFileThatWasOpenedTwice)
{
    show();
    post(sample(QStringLiteral("invoice.pdf")));
    ASSERT_TRUE(isCompleted(1));
    post(sample(QStringLiteral("invoice.pdf")));
    click(*m_window, QStringLiteral("What is this document?"));
    EXPECT_TRUE(shows(*m_window, QStringLiteral("Bill / Invoice")));
}

TEST_F(ContentViewTest, CompletesBothOfTwoQuickOpens)
{
    show();
    post(documentOf(3, QStringLiteral("first.pdf")));
    post(documentOf(2, QStringLiteral("second.pdf")));
    EXPECT_TRUE(isCompleted(2));
    EXPECT_EQ(
        m_analytics.types(),
        (QStringList{
            QStringLiteral("appLaunch"), QStringLiteral("documentOpened"), QStringLiteral("documentOpened"),
            QStringLiteral("textExtractionComplete"), QStringLiteral("textExtractionComplete")}));
    EXPECT_EQ(
        m_analytics.latest(EventType::textExtractionComplete, QStringLiteral("pageCount")),
        QVariant(qint64(2)));
    EXPECT_EQ(
        m_analytics.latest(EventType::textExtractionComplete, QStringLiteral("hasText")), QVariant(true));
    EXPECT_EQ(state().totalPages(), 2);
    EXPECT_EQ(state().pageTexts()->size(), 2U);
    EXPECT_TRUE(QTest::qWaitFor([&] { return view()->pageCount() == 2; }));
}

TEST_F(ContentViewTest, TakesNothingOverFromADocumentThatWasLeftAtOnce)
{
    show();
    std::vector<qint64> pageCounts;
    std::vector<std::size_t> texts;
    QObject::connect(&state(), &DocumentState::didChange, [&](DocumentState::Field field) {
        if (field == DocumentState::Field::totalPages)
            pageCounts.push_back(state().totalPages());
        else if (field == DocumentState::Field::pageTexts)
            texts.push_back(state().pageTexts()->size());
    });
    post(documentOf(3, QStringLiteral("first.pdf")));
    post(documentOf(2, QStringLiteral("second.pdf")));
    ASSERT_TRUE(isCompleted(2));
    EXPECT_EQ(pageCounts, std::vector<qint64>{2});
    EXPECT_EQ(texts, std::vector<std::size_t>{2});
}

TEST_F(ContentViewTest, CompletesAnOpenThatIsClosedAndOpenedAgainAtOnce)
{
    show();
    const QUrl url = documentOf(2);
    post(url);
    QTest::keyClick(m_window.get(), Qt::Key_W, Qt::ControlModifier);
    post(url);
    ASSERT_TRUE(isCompleted(2));
    EXPECT_EQ(m_analytics.types().count(QStringLiteral("documentOpened")), 2);
    EXPECT_EQ(
        m_analytics.latest(EventType::textExtractionComplete, QStringLiteral("pageCount")),
        QVariant(qint64(2)));
    EXPECT_EQ(
        m_analytics.latest(EventType::textExtractionComplete, QStringLiteral("hasText")), QVariant(true));
    EXPECT_EQ(state().pageTexts()->size(), 2U);
    EXPECT_TRUE(labelBecomes(pageLabel, QStringLiteral("1 / 2")));
}

TEST_F(ContentViewTest, EndsAnAnalysisWhoseDocumentIsClosedBeforeItIsRead)
{
    show();
    post(documentOf(2));
    click(*m_window, QStringLiteral("What is this document?"));
    ASSERT_TRUE(state().isProcessing());
    QTest::keyClick(m_window.get(), Qt::Key_W, Qt::ControlModifier);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !state().isProcessing(); }));
    EXPECT_TRUE(state().pageTexts()->empty());
}

TEST_F(ContentViewTest, CompletesAnOpenThatIsClosedAtOnce)
{
    show();
    post(documentOf(2));
    QTest::keyClick(m_window.get(), Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(state().url());
    EXPECT_TRUE(isCompleted(1));
    EXPECT_TRUE(state().pageTexts()->empty());
    EXPECT_EQ(
        m_analytics.latest(EventType::textExtractionComplete, QStringLiteral("hasText")), QVariant(false));
}

TEST_F(ContentViewTest, CompletesAnOpenInAWindowThatNobodySees)
{
    show();
    m_window->hide();
    post(documentOf(2));
    EXPECT_TRUE(isCompleted(1));
    EXPECT_EQ(state().pageTexts()->size(), 2U);
}

TEST_F(ContentViewTest, ReadsAFileThatWasRepairedWhenItIsOpenedAgain)
{
    show();
    const QUrl url = QUrl::fromLocalFile(m_folder.write(QStringLiteral("document.pdf"), "no PDF"));
    post(url);
    ASSERT_TRUE(isCompleted(1));
    ASSERT_EQ(documentOf(2), url);
    post(url);
    ASSERT_TRUE(isCompleted(2));
    EXPECT_EQ(view()->pageCount(), 2);
    EXPECT_EQ(state().pageTexts()->size(), 2U);
}

TEST_F(ContentViewTest, ReadsAFileThatWasReplacedWhenItIsOpenedAgain)
{
    show();
    const QUrl url = documentOf(3);
    post(url);
    ASSERT_TRUE(isCompleted(1));
    ASSERT_EQ(documentOf(12), url);
    post(url);
    ASSERT_TRUE(isCompleted(2));
    EXPECT_EQ(view()->pageCount(), 12);
    EXPECT_EQ(state().pageTexts()->size(), 12U);
}

TEST_F(ContentViewTest, RecordsTheCourseOfADocument)
{
    show();
    post(documentOf(2));
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_analytics.types().size() == 3; }));
    EXPECT_EQ(
        m_analytics.types(), (QStringList{
                                 QStringLiteral("appLaunch"), QStringLiteral("documentOpened"),
                                 QStringLiteral("textExtractionComplete")}));
    EXPECT_EQ(
        m_analytics.latest(EventType::documentOpened, QStringLiteral("hasSecurityScope")), QVariant(false));
    EXPECT_EQ(
        m_analytics.latest(EventType::textExtractionComplete, QStringLiteral("pageCount")),
        QVariant(qint64(2)));
    EXPECT_EQ(
        m_analytics.latest(EventType::textExtractionComplete, QStringLiteral("hasText")), QVariant(true));
}

TEST_F(ContentViewTest, RecordsALaunchForEachWindowThatAppears)
{
    show();
    ContentView second(m_analytics.service());
    EXPECT_EQ(m_analytics.types(), QStringList{QStringLiteral("appLaunch")});
    second.show();
    EXPECT_EQ(m_analytics.types(), QStringList(2, QStringLiteral("appLaunch")));
    EXPECT_EQ(m_analytics.latest(EventType::appLaunch, QStringLiteral("firstLaunch")), QVariant())
        << "nothing but the environment";
}

TEST_F(ContentViewTest, ClosesTheDocumentAndOnlyClearsWhatBelongsToIt)
{
    show();
    post(sample(QStringLiteral("invoice.pdf")));
    click(*m_window, QStringLiteral("What is this document?"));
    ASSERT_TRUE(shows(*m_window, QStringLiteral("Bill / Invoice")));
    state().setSelectedText(QStringLiteral("kept"));
    QTest::keyClick(m_window.get(), Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(state().url());
    EXPECT_TRUE(state().pageTexts()->empty());
    EXPECT_FALSE(state().insight());
    EXPECT_EQ(state().totalPages(), 1);
    EXPECT_EQ(state().selectedText(), QStringLiteral("kept"));
    EXPECT_TRUE(shows(*m_window, QStringLiteral("Open a PDF to get started")));
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_window->findChild<PDFViewer*>() == nullptr; }));
}

TEST_F(ContentViewTest, OpensAnotherDocumentAfterOneWasClosed)
{
    show();
    post(documentOf(3));
    ASSERT_TRUE(hasText());
    QTest::keyClick(m_window.get(), Qt::Key_W, Qt::ControlModifier);
    post(documentOf(2, QStringLiteral("other.pdf")));
    EXPECT_TRUE(labelBecomes(pageLabel, QStringLiteral("1 / 2")));
}

TEST_F(ContentViewTest, GivesTheViewerTheRoomOfTheHiddenSidebar)
{
    show();
    post(documentOf(1));
    ASSERT_TRUE(hasText());
    const int before = view()->width();
    click(*m_window, QStringLiteral("Toggle Sidebar"));
    EXPECT_EQ(m_window->findChild<UnderstandSidebar*>(), nullptr);
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return view()->width() == before + UnderstandSidebar::panelWidth + 1; }));
    QTest::keyClick(m_window.get(), Qt::Key_S, Qt::ControlModifier | Qt::AltModifier);
    EXPECT_TRUE(m_window->findChild<UnderstandSidebar*>());
    EXPECT_TRUE(QTest::qWaitFor([&] { return view()->width() == before; }));
}

TEST_F(ContentViewTest, ShowsAnEarlierResultWhenTheSidebarComesBack)
{
    show();
    post(sample(QStringLiteral("invoice.pdf")));
    click(*m_window, QStringLiteral("What is this document?"));
    ASSERT_TRUE(shows(*m_window, QStringLiteral("Bill / Invoice")));
    click(*m_window, QStringLiteral("Toggle Sidebar"));
    click(*m_window, QStringLiteral("Toggle Sidebar"));
    click(*m_window, QStringLiteral("What is this document?"));
    EXPECT_TRUE(shows(*m_window, QStringLiteral("Bill / Invoice")));
}

TEST_F(ContentViewTest, OpensADocumentOf20000Pages)
{
    show();
    PDFWriter writer;
    for (int page = 0; page < 20000; ++page)
        writer.addPage("");
    post(QUrl::fromLocalFile(m_folder.write(QStringLiteral("large.pdf"), writer.bytes())));
    EXPECT_TRUE(labelBecomes(pageLabel, QStringLiteral("1 / 20000")));
    view()->goToEnd();
    EXPECT_TRUE(labelBecomes(pageLabel, QStringLiteral("20000 / 20000")));
}

TEST_F(ContentViewTest, IsClosedWhileAPageIsBeingDrawn)
{
    show();
    QByteArray endless;
    for (int i = 0; i < 60000; ++i)
        endless += "0 0 m 600 10 10 700 600 790 c 10 600 700 10 0 0 c B*\n";
    PDFWriter writer;
    writer.addPage(endless);
    post(QUrl::fromLocalFile(m_folder.write(QStringLiteral("endless.pdf"), writer.bytes())));
    ASSERT_TRUE(QTest::qWaitFor([&] { return view() && view()->pageViewport().layout().hasSizes(); }));
    m_window.reset();
    EXPECT_TRUE(pdf::RenderThreads::shared().waitUntilIdle(std::chrono::seconds(5)))
        << "drawing has not been abandoned";
}

TEST_F(ContentViewTest, IsClosedWhileATextIsBeingRead)
{
    show();
    post(documentOf(2000));
    ASSERT_TRUE(labelBecomes(pageLabel, QStringLiteral("1 / 2000")));
    m_window.reset();
    QCoreApplication::processEvents();
    EXPECT_FALSE(m_window);
}

TEST_F(ContentViewTest, ReadsAnotherDocumentAtOnceWhereOneTakesForEver)
{
    show();
    PDFWriter writer;
    writer.addPage(showText(72, 700, "First"));
    addEndlessPages(writer, 200);
    post(QUrl::fromLocalFile(m_folder.write(QStringLiteral("slow.pdf"), writer.bytes())));
    ASSERT_TRUE(labelBecomes(pageLabel, QStringLiteral("1 / 201")));
    ASSERT_TRUE(QTest::qWaitFor([&] { return state().totalPages() == 201; }, 10000));
    post(documentOf(2));
    ASSERT_TRUE(hasText());
    EXPECT_EQ(state().pageTexts()->size(), 2U);
    EXPECT_EQ(state().totalPages(), 2);
}

TEST_F(ContentViewTest, NamesEveryButton)
{
    show();
    post(documentOf(1));
    ASSERT_TRUE(hasText());
    for (const auto* button : m_window->findChildren<QAbstractButton*>())
        EXPECT_FALSE(button->accessibleName().isEmpty()) << button->metaObject()->className();
}

} // namespace
} // namespace quillo
