// SPDX-License-Identifier: AGPL-3.0-or-later
#include "printing/PrintDialog.h"
#include "support/PDFWriter.h"
#include "support/Printing.h"
#include "support/Widgets.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>

namespace quillo {
namespace {

using pdf::PageScaling;
using pdf::PageTurning;
using testing::ElementsAre;
using testing::IsEmpty;

PrinterDescription printer(const QString& name, bool isDefault)
{
    PrinterDescription result;
    result.name = name;
    result.description = name + QStringLiteral(" in the hall");
    result.isDefault = isDefault;
    result.papers = {
        {QStringLiteral("A4"), QStringLiteral("A4"), {595, 842}, {10, 20, 30, 40}},
        {QStringLiteral("A5"), QStringLiteral("A5"), {420, 595}, {}}};
    return result;
}

class PrintDialogTest : public testing::Test
{
protected:
    PrintDialogTest()
        : m_dialog(12, 4, m_folder.path(QStringLiteral("sheets.pdf")), nullptr)
    {
        m_dialog.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&m_dialog));
    }

    template <typename Widget>
    Widget* find(const char* name) const
    {
        const QString wanted = QString::fromLatin1(name);
        for (auto* widget : m_dialog.findChildren<Widget*>()) {
            if (widget->accessibleName() == wanted)
                return widget;
            if constexpr (std::is_base_of_v<QAbstractButton, Widget>) {
                if (widget->text().remove(u'&') == wanted)
                    return widget;
            }
        }
        ADD_FAILURE() << "there is no " << name;
        return nullptr;
    }
    void press(const char* name) { QTest::mouseClick(find<QAbstractButton>(name), Qt::LeftButton); }
    /// Where the user would hit it.
    template <typename Button>
    void check(const char* name)
    {
        auto* button = find<Button>(name);
        QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(8, button->height() / 2));
    }
    void type(const char* field, const QString& text)
    {
        auto* edit = find<QLineEdit>(field);
        edit->selectAll();
        QTest::keyClick(edit, Qt::Key_Delete);
        QTest::keyClicks(edit, text);
    }
    void choose(const char* field, const QString& item)
    {
        auto* box = find<QComboBox>(field);
        box->setFocus();
        for (int i = 0; i < box->count() && box->currentText() != item; ++i)
            QTest::keyClick(box, i == 0 ? Qt::Key_Home : Qt::Key_Down);
        EXPECT_EQ(box->currentText(), item);
    }
    /// Presses "Print" and gives what the dialog then says; nothing where it closes.
    QString complaint()
    {
        const QStringList before = visibleTexts(m_dialog);
        press("Print");
        if (!m_dialog.isVisible())
            return {};
        for (const QString& text : visibleTexts(m_dialog)) {
            if (!before.contains(text))
                return text;
        }
        return QStringLiteral("(nothing is said)");
    }
    std::vector<int> printedPages()
    {
        EXPECT_EQ(complaint(), QString());
        m_dialog.show();
        return m_dialog.settings().layout.pages;
    }

    TestFolder m_folder;
    PrintDialog m_dialog;
};

TEST_F(PrintDialogTest, PrintsAllPagesToAFileUnlessToldOtherwise)
{
    EXPECT_EQ(complaint(), QString());
    EXPECT_EQ(m_dialog.result(), QDialog::Accepted);
    const PrintSettings settings = m_dialog.settings();
    EXPECT_EQ(settings.printer, QString());
    EXPECT_EQ(settings.file, m_folder.path(QStringLiteral("sheets.pdf")));
    EXPECT_EQ(settings.layout.pages.size(), 12U);
    EXPECT_EQ(settings.layout.copies, 1);
    EXPECT_EQ(settings.layout.scaling, PageScaling::shrinkToFit);
    EXPECT_EQ(settings.layout.turning, PageTurning::paper);
    EXPECT_FALSE(settings.layout.reverses);
    EXPECT_TRUE(settings.layout.margins.isNull());
}

TEST_F(PrintDialogTest, PrintsTheCurrentPage)
{
    check<QRadioButton>("Current page (5)");
    EXPECT_THAT(printedPages(), ElementsAre(4));
}

TEST_F(PrintDialogTest, PrintsRangesOfPages)
{
    type("Page ranges", QStringLiteral("1-2, 11-"));
    EXPECT_TRUE(find<QRadioButton>("Pages")->isChecked()) << "whoever types ranges means them";
    EXPECT_FALSE(find<QRadioButton>("All 12 pages")->isChecked());
    EXPECT_THAT(printedPages(), ElementsAre(0, 1, 10, 11));
    check<QRadioButton>("All 12 pages");
    EXPECT_EQ(printedPages().size(), 12U);
}

TEST_F(PrintDialogTest, AsksForPagesThatThereAre)
{
    const QString request = QStringLiteral("Enter pages of the document, such as 1-3, 5, 8-.");
    check<QRadioButton>("Pages");
    EXPECT_EQ(complaint(), request);
    for (const QString& text : {QStringLiteral("0"), QStringLiteral("1..3")}) {
        type("Page ranges", QStringLiteral("1, ") + text);
        EXPECT_EQ(complaint(), text + QStringLiteral(": this names no pages. ") + request);
    }
    type("Page ranges", QStringLiteral("3"));
    EXPECT_THAT(printedPages(), ElementsAre(2));
}

TEST_F(PrintDialogTest, NamesTheRangeThatGoesBeyondTheLastPage)
{
    type("Page ranges", QStringLiteral("3-1, 99"));
    EXPECT_EQ(complaint(), QStringLiteral("99: the document has 12 pages."));
    EXPECT_TRUE(m_dialog.isVisible()) << "nothing is printed before the range is mended";
    auto* ranges = find<QLineEdit>("Page ranges");
    QTest::keyClick(ranges, Qt::Key_End);
    for (int i = 0; i < 4; ++i)
        QTest::keyClick(ranges, Qt::Key_Backspace);
    EXPECT_FALSE(visibleTexts(m_dialog).contains(QStringLiteral("99: the document has 12 pages.")));
    EXPECT_THAT(printedPages(), ElementsAre(2, 1, 0));
}

TEST_F(PrintDialogTest, ExplainsRangesThatGoBackwards)
{
    EXPECT_TRUE(find<QLineEdit>("Page ranges")->toolTip().contains(QStringLiteral("3-1")));
}

TEST_F(PrintDialogTest, AsksForAFileName)
{
    type("File", QStringLiteral("  "));
    EXPECT_EQ(complaint(), QStringLiteral("Enter a name for the file."));
}

TEST_F(PrintDialogTest, AsksBeforeItReplacesAFile)
{
    m_folder.write(QStringLiteral("sheets.pdf"), "before");
    press("Print");
    EXPECT_TRUE(m_dialog.isVisible());
    auto* question = waitForDialog<QMessageBox>();
    ASSERT_TRUE(question);
    EXPECT_EQ(question->text(), QStringLiteral("“sheets.pdf” already exists. Do you want to replace it?"));
    QTest::keyClick(question, Qt::Key_Escape);
    EXPECT_TRUE(m_dialog.isVisible());
    ASSERT_TRUE(QTest::qWaitFor([] { return !isDialogOpen<QMessageBox>(); }));

    press("Print");
    question = waitForDialog<QMessageBox>();
    ASSERT_TRUE(question);
    for (auto* button : question->findChildren<QPushButton*>()) {
        if (button->text().remove(u'&') == QStringLiteral("Replace")) {
            QTest::mouseClick(button, Qt::LeftButton);
            break;
        }
    }
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_dialog.result() == QDialog::Accepted; }));
}

TEST_F(PrintDialogTest, TakesCopiesAndTheirOrder)
{
    EXPECT_FALSE(find<QCheckBox>("Collate")->isEnabled());
    QTest::keyClick(find<QSpinBox>("Copies"), Qt::Key_Up);
    QTest::keyClick(find<QSpinBox>("Copies"), Qt::Key_Up);
    check<QCheckBox>("Collate");
    check<QCheckBox>("Last page first");
    const pdf::PrintLayout layout = m_dialog.settings().layout;
    EXPECT_EQ(layout.copies, 3);
    EXPECT_FALSE(layout.collates);
    EXPECT_TRUE(layout.reverses);
}

TEST_F(PrintDialogTest, TakesScalingAndPaper)
{
    choose("Scaling", QStringLiteral("Actual size"));
    choose("Paper", QStringLiteral("A3"));
    check<QCheckBox>("Auto-rotate pages");
    const pdf::PrintLayout layout = m_dialog.settings().layout;
    EXPECT_EQ(layout.scaling, PageScaling::actualSize);
    EXPECT_EQ(layout.paper, QSizeF(842, 1191));
    EXPECT_EQ(layout.turning, PageTurning::none);
}

TEST_F(PrintDialogTest, SaysThatItLooksForPrinters)
{
    EXPECT_TRUE(visibleTexts(m_dialog).contains(QStringLiteral("Looking for printers…")));
    m_dialog.setPrinters({});
    EXPECT_TRUE(visibleTexts(m_dialog).contains(QStringLiteral("There are no printers.")));
}

TEST_F(PrintDialogTest, SaysThatPrintersCannotBeUsedAndPrintsToAFileAllTheSame)
{
    m_dialog.setPrinters({{}, QStringLiteral("the module is missing")});
    const QStringList texts = visibleTexts(m_dialog);
    EXPECT_TRUE(texts.contains(QStringLiteral("Printers cannot be used.")));
    EXPECT_TRUE(texts.filter(QStringLiteral("module")).isEmpty()) << "that is for the console";
    EXPECT_EQ(complaint(), QString());
}

TEST_F(PrintDialogTest, OffersThePrintersAndChoosesTheUsualOne)
{
    m_dialog.setPrinters({{printer(QStringLiteral("one"), false), printer(QStringLiteral("two"), true)}, {}});
    auto* target = find<QComboBox>("Printer");
    EXPECT_EQ(target->count(), 3);
    EXPECT_EQ(target->currentText(), QStringLiteral("two in the hall"));
    EXPECT_FALSE(find<QLineEdit>("File")->isVisible());
    EXPECT_FALSE(visibleTexts(m_dialog).contains(QStringLiteral("Looking for printers…")));
    const PrintSettings settings = m_dialog.settings();
    EXPECT_EQ(settings.printer, QStringLiteral("two"));
    EXPECT_EQ(settings.layout.paper, QSizeF(595, 842));
    EXPECT_EQ(settings.layout.margins, QMarginsF(10, 20, 30, 40));
    EXPECT_EQ(settings.layout.turning, PageTurning::page);
    EXPECT_THAT(
        settings.printerOptions,
        ElementsAre(QStringLiteral("print-scaling=none"), QStringLiteral("media=A4")));
    choose("Printer", QStringLiteral("Print to File (PDF)"));
    EXPECT_TRUE(find<QLineEdit>("File")->isVisible());
    EXPECT_EQ(m_dialog.settings().printer, QString());
    EXPECT_THAT(m_dialog.settings().printerOptions, IsEmpty());
}

TEST_F(PrintDialogTest, OffersCommonPapersWhereThePrinterTellsNone)
{
    PrinterDescription silent = printer(QStringLiteral("silent"), true);
    silent.papers.clear();
    m_dialog.setPrinters({{silent}, {}});
    choose("Paper", QStringLiteral("A4"));
    EXPECT_EQ(m_dialog.settings().layout.paper, QSizeF(595, 842));
    EXPECT_TRUE(m_dialog.settings().printerOptions.contains(QStringLiteral("media=A4")));
}

TEST_F(PrintDialogTest, DoesNotTakeAwayAFileThatIsBeingNamed)
{
    type("File", m_folder.path(QStringLiteral("other.pdf")));
    m_dialog.setPrinters({{printer(QStringLiteral("one"), true)}, {}});
    EXPECT_EQ(m_dialog.settings().file, m_folder.path(QStringLiteral("other.pdf")));
    EXPECT_EQ(m_dialog.settings().printer, QString());
}

TEST_F(PrintDialogTest, LeavesCopiesToThePrinter)
{
    m_dialog.setPrinters({{printer(QStringLiteral("one"), true)}, {}});
    QTest::keyClick(find<QSpinBox>("Copies"), Qt::Key_Up);
    const PrintSettings settings = m_dialog.settings();
    EXPECT_EQ(settings.layout.copies, 1);
    EXPECT_EQ(settings.printerCopies, 2);
    EXPECT_TRUE(settings.printerOptions.contains(QStringLiteral("collate=true")));
}

TEST_F(PrintDialogTest, OffersWhatThePrinterCanDo)
{
    PrinterDescription able = printer(QStringLiteral("able"), true);
    able.printsTwoSided = true;
    able.printsColour = true;
    m_dialog.setPrinters({{able, printer(QStringLiteral("plain"), false)}, {}});
    EXPECT_TRUE(find<QComboBox>("Two-sided")->isVisible());
    choose("Two-sided", QStringLiteral("Both sides, turned at the long edge"));
    choose("Colour", QStringLiteral("In shades of grey"));
    EXPECT_TRUE(m_dialog.settings().printerOptions.contains(QStringLiteral("sides=two-sided-long-edge")));
    EXPECT_TRUE(m_dialog.settings().printerOptions.contains(QStringLiteral("print-color-mode=monochrome")));
    choose("Printer", QStringLiteral("plain in the hall"));
    EXPECT_FALSE(find<QComboBox>("Two-sided")->isVisible());
    EXPECT_FALSE(find<QComboBox>("Colour")->isVisible());
}

} // namespace
} // namespace quillo
