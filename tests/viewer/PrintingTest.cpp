// SPDX-License-Identifier: AGPL-3.0-or-later
#include "support/Printing.h"
#include "controls/MenuButton.h"
#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"
#include "printing/PrintDialog.h"
#include "printing/PrintProgressDialog.h"
#include "printing/RunningPrints.h"
#include "support/SlowlyPrinted.h"
#include "support/Widgets.h"
#include "viewer/ViewerFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>

namespace quillo {
namespace {

using testing::IsEmpty;

constexpr int patience = 60'000;

class ViewerPrintingTest : public ViewerFixture
{
protected:
    void showViewer()
    {
        show();
        m_viewer->setPrinterSource([] { return PrinterListing(); });
        QDir().mkpath(m_folder.path(QStringLiteral("out")));
    }

    QAction* action() const
    {
        for (QAction* item : m_viewer->findChild<MenuButton*>()->menu()->actions()) {
            if (item->text() == QStringLiteral("Print..."))
                return item;
        }
        return nullptr;
    }

    /// Presses Control and P and gives the dialog that comes.
    PrintDialog* pressShortcut()
    {
        m_viewer->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(m_viewer.get()));
        QTest::keyClick(view().viewport(), Qt::Key_P, Qt::ControlModifier);
        auto* dialog = waitForDialog<PrintDialog>();
        EXPECT_TRUE(dialog) << "no dialog comes";
        return dialog;
    }

    static void pressIn(QWidget& dialog, const QString& text)
    {
        for (auto* button : dialog.findChildren<QPushButton*>()) {
            if (button->text().remove(u'&') == text)
                return QTest::mouseClick(button, Qt::LeftButton);
        }
        ADD_FAILURE() << "there is no button " << text.toStdString();
    }

    QString target(const char* name = "out/sheets.pdf") const
    {
        return m_folder.path(QString::fromLatin1(name));
    }

    /// Prints into the file.
    void printTo(const QString& file)
    {
        auto* dialog = pressShortcut();
        ASSERT_TRUE(dialog);
        for (auto* edit : dialog->findChildren<QLineEdit*>()) {
            if (edit->accessibleName() == QStringLiteral("File"))
                edit->setText(file);
        }
        pressIn(*dialog, QStringLiteral("Print"));
    }

    QStringList filesInTargetFolder() const
    {
        return QDir(m_folder.path(QStringLiteral("out"))).entryList(QDir::Files | QDir::Hidden);
    }
    bool hasBegunToWrite() const
    {
        return QTest::qWaitFor([this] { return !filesInTargetFolder().isEmpty(); }, patience);
    }
};

TEST_F(ViewerPrintingTest, OffersToPrintOnceThereIsADocument)
{
    showViewer();
    EXPECT_FALSE(action()->isEnabled());
    m_viewer->printDocument();
    QCoreApplication::processEvents();
    EXPECT_FALSE(isDialogOpen<PrintDialog>());
    open(documentOf(2));
    EXPECT_TRUE(action()->isEnabled());
    action()->trigger();
    EXPECT_TRUE(waitForDialog<PrintDialog>());
}

TEST_F(ViewerPrintingTest, PrintsTheDocumentAndRecordsIt)
{
    showViewer();
    open(documentOf(3));
    printTo(target());
    EXPECT_TRUE(QTest::qWaitFor([&] { return QFile::exists(target()); }, patience));
    const auto printed = pdf::PDFDocument::open(target());
    ASSERT_TRUE(printed);
    EXPECT_EQ((*printed)->pageCount(), 3);
    EXPECT_EQ((*printed)->page(2)->string(), QStringLiteral("Page 3\n"));
    EXPECT_EQ(m_analytics.types(), QStringList(QStringLiteral("print")));
}

TEST_F(ViewerPrintingTest, PrintsWhatIsStillBeingTypedIntoAField)
{
    showViewer();
    open(formDocument());
    QLineEdit* editor = editField();
    ASSERT_TRUE(editor);
    QTest::keyClicks(editor, QStringLiteral("Typed"));
    printTo(target());
    ASSERT_TRUE(QTest::qWaitFor([&] { return QFile::exists(target()); }, patience));
    EXPECT_EQ((*pdf::PDFDocument::open(target()))->page(0)->string(), QStringLiteral("Typed\n"));
}

TEST_F(ViewerPrintingTest, PrintsNothingWhenTheDialogIsCancelledAndCanPrintAgain)
{
    showViewer();
    open(documentOf(1));
    auto* dialog = pressShortcut();
    ASSERT_TRUE(dialog);
    QTest::keyClick(dialog, Qt::Key_Escape);
    EXPECT_TRUE(QTest::qWaitFor([] { return !isDialogOpen<PrintDialog>(); }));
    EXPECT_EQ(m_analytics.types(), QStringList(QStringLiteral("print")));
    printTo(target());
    EXPECT_TRUE(QTest::qWaitFor([&] { return QFile::exists(target()); }, patience));
}

TEST_F(ViewerPrintingTest, OpensOneDialogOnly)
{
    showViewer();
    open(documentOf(1));
    ASSERT_TRUE(pressShortcut());
    m_viewer->printDocument();
    QCoreApplication::processEvents();
    EXPECT_EQ(m_viewer->findChildren<PrintDialog*>().size(), 1);
}

TEST_F(ViewerPrintingTest, SaysWhyThereAreNoPrinters)
{
    showViewer();
    m_viewer->setPrinterSource(printersModule(m_folder.path(QString())));
    open(documentOf(1));
    auto* dialog = pressShortcut();
    ASSERT_TRUE(dialog);
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return !visibleTexts(*dialog).filter(QStringLiteral("Printers cannot be used.")).isEmpty(); }));
}

TEST_F(ViewerPrintingTest, TellsThatThePrintHasFailed)
{
    showViewer();
    open(documentOf(1));
    printTo(target("missing/sheets.pdf"));
    auto* message = waitForDialog<QMessageBox>();
    ASSERT_TRUE(message);
    EXPECT_EQ(message->windowTitle(), QStringLiteral("Print Failed"));
    EXPECT_EQ(
        message->text(),
        QStringLiteral("“document.pdf” was not printed. The folder of the file does not exist."));
    QTest::keyClick(message, Qt::Key_Return);
    EXPECT_TRUE(QTest::qWaitFor([] { return !isDialogOpen<QMessageBox>(); }));
    EXPECT_FALSE(isDialogOpen<PrintProgressDialog>());
}

TEST_F(ViewerPrintingTest, NamesThePagesThatAreDamaged)
{
    PDFWriter writer;
    writer.addPage(showText(72, 700, "Page1"));
    const int missing = writer.addPage({});
    writer.replace(missing, "(This is no page)");
    showViewer();
    open(QUrl::fromLocalFile(m_folder.write(QStringLiteral("damaged.pdf"), writer.bytes())));
    printTo(target());
    auto* message = waitForDialog<QMessageBox>();
    ASSERT_TRUE(message);
    EXPECT_EQ(message->text(), QStringLiteral("These pages are damaged and were left blank: 2"));
    EXPECT_TRUE(QFile::exists(target()));
}

TEST_F(ViewerPrintingTest, ShowsHowFarItIsAndCanBeCancelled)
{
    showViewer();
    open(QUrl::fromLocalFile(writeSlowlyPrinted(m_folder)));
    printTo(target());
    auto* progress = waitForDialog<PrintProgressDialog>();
    ASSERT_TRUE(progress);
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return !visibleTexts(*progress).filter(QStringLiteral(" of 5000")).isEmpty(); }, patience));
    pressIn(*progress, QStringLiteral("Cancel"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return filesInTargetFolder().isEmpty(); }, patience));
    EXPECT_FALSE(isDialogOpen<PrintProgressDialog>());
    EXPECT_FALSE(isDialogOpen<QMessageBox>());
    // Another one can follow.
    EXPECT_TRUE(pressShortcut());
}

TEST_F(ViewerPrintingTest, CancelsWhenTheViewerGoes)
{
    showViewer();
    open(QUrl::fromLocalFile(writeSlowlyPrinted(m_folder)));
    printTo(target());
    ASSERT_TRUE(hasBegunToWrite());
    m_viewer.reset();
    waitForRunningPrints(std::chrono::milliseconds(patience));
    EXPECT_THAT(filesInTargetFolder(), IsEmpty());
    EXPECT_FALSE(isDialogOpen<PrintProgressDialog>());
}

TEST_F(ViewerPrintingTest, CancelsWhenAnotherDocumentIsOpened)
{
    showViewer();
    open(QUrl::fromLocalFile(writeSlowlyPrinted(m_folder)));
    printTo(target());
    ASSERT_TRUE(hasBegunToWrite());
    open(documentOf(1, QStringLiteral("other.pdf")));
    EXPECT_TRUE(QTest::qWaitFor([&] { return filesInTargetFolder().isEmpty(); }, patience));
    EXPECT_FALSE(isDialogOpen<PrintProgressDialog>());
}

} // namespace
} // namespace quillo
