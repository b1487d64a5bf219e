// SPDX-License-Identifier: AGPL-3.0-or-later
#include "support/Printing.h"
#include "FailingDisk.h"
#include "Tools.h"
#include "pdf/FormFile.h"
#include "pdf/PDFAnnotation.h"
#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"
#include "support/PDFWriter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QStandardPaths>

#include <numeric>
#include <random>
#include <sys/stat.h>

// Where gtest looks for it.
static void PrintTo(const QRect& rect, std::ostream* stream)
{
    *stream << rect.x() << ' ' << rect.y() << ' ' << rect.width() << ' ' << rect.height();
}

namespace pdf {
namespace {

using Code = PDFError::Code;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

/// What an image shows that is not white; in pixels.
QRect inkOf(const QImage& image)
{
    QRect ink;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qGray(image.pixel(x, y)) < 128)
                ink |= QRect(x, y, 1, 1);
        }
    }
    return ink;
}

/// True when both have the same edges but for a pixel.
bool isNear(const QRect& a, const QRect& b)
{
    return std::abs(a.left() - b.left()) <= 1 && std::abs(a.top() - b.top()) <= 1 &&
           std::abs(a.right() - b.right()) <= 1 && std::abs(a.bottom() - b.bottom()) <= 1;
}

class PrintingTest : public testing::Test
{
protected:
    PrintingTest() { m_layout.paper = {612, 792}; }

    void SetUp() override
    {
        for (const char* tool : {"qpdf", "pdftotext", "pdfinfo", "pdftoppm"}) {
            if (QStandardPaths::findExecutable(QString::fromLatin1(tool)).isEmpty())
                GTEST_SKIP() << tool << " is not installed";
        }
    }

    std::shared_ptr<PDFDocument> open(const QByteArray& bytes)
    {
        auto document = PDFDocument::open(m_folder.write(QStringLiteral("source.pdf"), bytes));
        EXPECT_TRUE(document);
        return document ? *document : nullptr;
    }
    std::shared_ptr<PDFDocument> documentOf(int pageCount)
    {
        PDFWriter writer;
        for (int i = 1; i <= pageCount; ++i)
            writer.addPage(showText(72, 700, "Page" + QByteArray::number(i)));
        return open(writer.bytes());
    }
    /// A page of the size with one black rectangle.
    std::shared_ptr<PDFDocument> rectangle(QSize page, const QRect& rect, const QByteArray& entries = {})
    {
        PDFWriter writer;
        const auto number = [](int value) { return QByteArray::number(value) + ' '; };
        writer.addPage(
            number(rect.x()) + number(rect.y()) + number(rect.width()) + number(rect.height()) + "re f",
            "/MediaBox[0 0 " + number(page.width()) + number(page.height()) + ']' + entries);
        return open(writer.bytes());
    }

    QString target() const { return m_folder.path(QStringLiteral("print/sheets.pdf")); }

    Result<PrintOutcome> tryToPrint(PDFDocument& document)
    {
        QDir().mkpath(QFileInfo(target()).path());
        if (m_layout.pages.empty()) {
            m_layout.pages.resize(static_cast<std::size_t>(document.pageCount()));
            std::iota(m_layout.pages.begin(), m_layout.pages.end(), 0);
        }
        return document.writePrintable(target(), m_layout, m_cancellation, m_progress);
    }

    /// Prints into a file in which qpdf finds no fault.
    PrintOutcome print(PDFDocument& document)
    {
        const auto outcome = tryToPrint(document);
        EXPECT_TRUE(outcome) << outcome.error().message.toStdString();
        const auto checked = runTool(QStringLiteral("qpdf"), {QStringLiteral("--check"), target()});
        EXPECT_EQ(checked->exitCode, 0) << checked->output.toStdString();
        return outcome ? *outcome : PrintOutcome();
    }
    PrintOutcome print(const std::shared_ptr<PDFDocument>& document) { return print(*document); }

    void expectFailure(PDFDocument& document, Code code, const char* message)
    {
        const auto outcome = tryToPrint(document);
        ASSERT_FALSE(outcome);
        EXPECT_EQ(outcome.error().code, code);
        EXPECT_EQ(outcome.error().message.toStdString(), message);
    }

    /// The words of all sheets, as another program reads them.
    QStringList words() const
    {
        const auto result =
            runTool(QStringLiteral("pdftotext"), {QStringLiteral("-q"), target(), QStringLiteral("-")});
        return QString::fromUtf8(result->output)
            .split(QRegularExpression(QStringLiteral("\\s")), Qt::SkipEmptyParts);
    }

    QStringList sheetSizes() const
    {
        const auto result = runTool(
            QStringLiteral("pdfinfo"), {QStringLiteral("-f"), QStringLiteral("1"), QStringLiteral("-l"),
                                        QStringLiteral("-1"), target()});
        QStringList sizes;
        static const QRegularExpression line(QStringLiteral("size:\\s+([\\d.]+ x [\\d.]+) pts"));
        auto match = line.globalMatch(QString::fromUtf8(result->output));
        while (match.hasNext())
            sizes.append(match.next().captured(1));
        return sizes;
    }

    /// Where the first sheet has ink, in points from its upper left corner.
    QRect ink(int sheet = 0) const
    {
        const QRect seen = inkOf(*renderWith(Renderer::poppler, target(), sheet));
        EXPECT_TRUE(isNear(seen, inkOf(*renderWith(Renderer::mupdf, target(), sheet))))
            << "two programs show different things";
        return seen;
    }

    QStringList filesInTargetFolder() const
    {
        return QFileInfo(target()).dir().entryList(QDir::Files | QDir::Hidden);
    }

    TestFolder m_folder;
    PrintLayout m_layout;
    Cancellation m_cancellation;
    PDFDocument::PrintProgress m_progress;
};

QStringList texts(std::initializer_list<const char*> words)
{
    QStringList result;
    for (const char* word : words)
        result.append(QString::fromUtf8(word));
    return result;
}

TEST_F(PrintingTest, KeepsTextAsText)
{
    const auto outcome = print(documentOf(3));
    EXPECT_EQ(outcome.sheets, 3);
    EXPECT_THAT(outcome.damagedPages, IsEmpty());
    EXPECT_THAT(programsAgainst(target()), IsEmpty());
    EXPECT_EQ(words(), texts({"Page1", "Page2", "Page3"}));
}

TEST_F(PrintingTest, TakesTheWantedPagesInTheWantedOrder)
{
    m_layout.pages = {3, 0, 1, 0};
    print(documentOf(5));
    EXPECT_EQ(words(), texts({"Page4", "Page1", "Page2", "Page1"}));
}

TEST_F(PrintingTest, MakesCopiesOneAfterAnother)
{
    m_layout.copies = 2;
    EXPECT_EQ(print(documentOf(2)).sheets, 4);
    EXPECT_EQ(words(), texts({"Page1", "Page2", "Page1", "Page2"}));
}

TEST_F(PrintingTest, MakesCopiesOfEachPage)
{
    m_layout.copies = 2;
    m_layout.collates = false;
    print(documentOf(2));
    EXPECT_EQ(words(), texts({"Page1", "Page1", "Page2", "Page2"}));
}

TEST_F(PrintingTest, BeginsWithTheLastSheetOnRequest)
{
    m_layout.reverses = true;
    print(documentOf(3));
    EXPECT_EQ(words(), texts({"Page3", "Page2", "Page1"}));
}

TEST_F(PrintingTest, MakesEverySheetAsBigAsThePaper)
{
    PDFWriter writer;
    writer.addPage({}, "/MediaBox[0 0 300 400]");
    writer.addPage({}, "/MediaBox[0 0 2000 3000]");
    writer.addPage({}, "/MediaBox[0 0 800 500]");
    m_layout.paper = {595.5, 842};
    const auto document = open(writer.bytes());
    print(document);
    EXPECT_EQ(sheetSizes(), texts({"595.5 x 842", "595.5 x 842", "595.5 x 842"}));
    m_layout.turning = PageTurning::paper;
    print(document);
    EXPECT_EQ(sheetSizes(), texts({"595.5 x 842", "595.5 x 842", "842 x 595.5"}));
}

TEST_F(PrintingTest, PutsPagesWhereTheLayoutWantsThem)
{
    print(rectangle({306, 396}, {0, 0, 100, 50}));
    EXPECT_EQ(ink(), QRect(153, 198 + 396 - 50, 100, 50));
    m_layout.scaling = PageScaling::fit;
    print(rectangle({306, 396}, {0, 0, 100, 50}));
    EXPECT_EQ(ink(), QRect(0, 792 - 100, 200, 100));
}

TEST_F(PrintingTest, TurnsAPageThatLiesAcrossThePaper)
{
    // A bar along the upper edge of the page comes to lie along the left edge of the sheet.
    const auto document = rectangle({792, 612}, {0, 592, 792, 20});
    print(document);
    EXPECT_EQ(ink(), QRect(0, 0, 20, 792));
    m_layout.turning = PageTurning::paper;
    print(document);
    EXPECT_EQ(ink(), QRect(0, 0, 792, 20));
}

TEST_F(PrintingTest, ShowsAPageTurnedAsTheDocumentHasIt)
{
    // What is at the left of the page's own space is at the top when it is turned by 90 degrees.
    print(rectangle({792, 612}, {0, 0, 20, 612}, "/Rotate 90"));
    EXPECT_EQ(ink(), QRect(0, 0, 612, 20));
}

TEST_F(PrintingTest, CutsThePageAtItsCropBox)
{
    print(rectangle({612, 792}, {0, 0, 612, 792}, "/CropBox[100 100 300 400]"));
    EXPECT_EQ(ink(), QRect((612 - 200) / 2, (792 - 300) / 2, 200, 300));
}

TEST_F(PrintingTest, HasPointsOfAnotherSizeWhereThePageSaysSo)
{
    print(rectangle({306, 396}, {0, 0, 100, 50}, "/UserUnit 2"));
    EXPECT_EQ(ink(), QRect(0, 792 - 100, 200, 100));
}

TEST_F(PrintingTest, JoinsContentThatIsInParts)
{
    PDFWriter writer;
    const int first = writer.addStream("BT /F1 12 Tf 1 0 0 1 72 700");
    const int second = writer.addStream("Tm (Joined) Tj ET");
    writer.addPage(
        {}, "/Contents[" + QByteArray::number(first) + " 0 R " + QByteArray::number(second) + " 0 R]");
    print(open(writer.bytes()));
    EXPECT_EQ(words(), texts({"Joined"}));
}

TEST_F(PrintingTest, TakesResourcesFromThePageTree)
{
    PDFWriter writer;
    const int font = writer.add("<</Type/Font/Subtype/Type1/BaseFont/Courier>>");
    const int content = writer.addStream(showText(72, 700, "Inherited"));
    const int page =
        writer.add("<</Type/Page/Parent 2 0 R/Contents " + QByteArray::number(content) + " 0 R>>");
    writer.replace(
        2, "<</Type/Pages/Count 1/Kids[" + QByteArray::number(page) +
               " 0 R]/MediaBox[0 0 612 792]/Resources<</Font<</F1 " + QByteArray::number(font) +
               " 0 R>>>>>>");
    print(open(writer.bytes()));
    EXPECT_EQ(words(), texts({"Inherited"}));
}

TEST_F(PrintingTest, CopiesWhatPagesShareOnlyOnce)
{
    PDFWriter writer;
    QByteArray noise(90'000, '\0');
    std::minstd_rand random(1);
    for (char& byte : noise)
        byte = static_cast<char>(random() >> 8);
    const int image = writer.addStream(
        noise, "/Type/XObject/Subtype/Image/Width 300/Height 100/ColorSpace/DeviceRGB/BitsPerComponent 8");
    writer.setResources("/XObject<</Im " + QByteArray::number(image) + " 0 R>>");
    for (int i = 0; i < 20; ++i)
        writer.addPage("q 300 0 0 100 72 500 cm /Im Do Q");
    m_layout.copies = 3;
    print(open(writer.bytes()));
    EXPECT_LT(QFileInfo(target()).size(), 2 * noise.size());
}

TEST_F(PrintingTest, DoesNotFollowReferencesToOtherPages)
{
    PDFWriter writer;
    const int first = writer.addPage(showText(72, 700, "First"));
    writer.addPage(showText(72, 700, QByteArray(50'000, 'x')));
    const int image = writer.addStream(
        "abc",
        "/Type/XObject/Subtype/Image/Width 1/Height 1/ColorSpace/DeviceRGB/BitsPerComponent 8/Link<</P " +
            QByteArray::number(first + 2) + " 0 R>>");
    writer.setResources("/XObject<</Im " + QByteArray::number(image) + " 0 R>>");
    writer.addPage("q 100 0 0 100 72 500 cm /Im Do Q");
    m_layout.pages = {2};
    print(open(writer.bytes()));
    EXPECT_LT(QFileInfo(target()).size(), 10'000);
}

TEST_F(PrintingTest, HidesTheLayersThatTheDocumentHides)
{
    PDFWriter writer;
    const int shown = writer.add("<</Type/OCG/Name(Shown)>>");
    const int hidden = writer.add("<</Type/OCG/Name(Hidden)>>");
    const QByteArray both = QByteArray::number(shown) + " 0 R " + QByteArray::number(hidden) + " 0 R";
    writer.setCatalog(
        "/OCProperties<</OCGs[" + both + "]/D<</Order[" + both + "]/OFF[" + QByteArray::number(hidden) +
        " 0 R]>>>>");
    writer.setResources(
        "/Properties<</S " + QByteArray::number(shown) + " 0 R/H " + QByteArray::number(hidden) + " 0 R>>");
    writer.addPage("/OC /S BDC 100 100 50 50 re f EMC /OC /H BDC 300 300 50 50 re f EMC");
    print(open(writer.bytes()));
    EXPECT_EQ(ink(), QRect(100, 792 - 150, 50, 50));
}

TEST_F(PrintingTest, PrintsAnnotationsThatAreMeantToBePrinted)
{
    PDFWriter writer;
    const int look = writer.addStream("0 0 10 10 re f", "/BBox[0 0 10 10]");
    QByteArray annotations;
    const auto add = [&](int left, const char* flags) {
        const QByteArray rect =
            "/Rect[" + QByteArray::number(left) + " 100 " + QByteArray::number(left + 20) + " 120]";
        const int object = writer.add(
            "<</Type/Annot/Subtype/Stamp/F " + QByteArray(flags) + rect + "/AP<</N " +
            QByteArray::number(look) + " 0 R>>>>");
        annotations += QByteArray::number(object) + " 0 R ";
    };
    add(100, "4");
    add(200, "0");
    add(300, "6");
    // Not to be seen on a screen, but to be printed.
    add(120, "36");
    writer.addPage({}, "/Annots[" + annotations + "]");
    print(open(writer.bytes()));
    EXPECT_EQ(ink(), QRect(100, 792 - 120, 40, 20));
}

TEST_F(PrintingTest, PrintsAnnotationsThatHaveNoAppearance)
{
    PDFWriter writer;
    for (const char* left : {"100", "200"}) {
        const int square = writer.add(
            "<</Type/Annot/Subtype/Square/F 4/C[0 0 0]/IC[0 0 0]/Rect[" + QByteArray(left) +
            " 100 300 150]>>");
        writer.addPage({}, "/Annots[" + QByteArray::number(square) + " 0 R]");
    }
    print(open(writer.bytes()));
    EXPECT_TRUE(isNear(ink(0), QRect(100, 792 - 150, 200, 50))) << testing::PrintToString(ink(0));
    EXPECT_TRUE(isNear(ink(1), QRect(200, 792 - 150, 100, 50))) << testing::PrintToString(ink(1));
}

TEST_F(PrintingTest, PrintsWhatWasFilledInAndNotYetSaved)
{
    FormFile form;
    form.add("/FT/Tx/T(name)/F 4/DA(/Helv 10 Tf 0 g)");
    form.add("/FT/Tx/T(secret)/F 0/DA(/Helv 10 Tf 0 g)");
    ASSERT_TRUE(form.set("name", QStringLiteral("Ἀθηνᾶ")));
    ASSERT_TRUE(form.set("secret", QStringLiteral("Unprinted")));
    const auto document = form.document();
    print(document);
    EXPECT_EQ(words(), texts({"Ἀθηνᾶ"}));
    EXPECT_TRUE(document->isModified()) << "printing is not saving";
}

TEST_F(PrintingTest, PrintsOtherChangesThatWereNotSaved)
{
    const auto document = documentOf(1);
    const auto page = document->page(0);
    const auto note =
        std::make_shared<PDFAnnotation>(QRectF(100, 300, 200, 40), PDFAnnotation::Subtype::freeText);
    note->setContents(QStringLiteral("Added"));
    page->addAnnotation(note);
    ASSERT_TRUE(page->setRotation(90));
    m_layout.turning = PageTurning::paper;
    print(document);
    EXPECT_THAT(words(), UnorderedElementsAre(QStringLiteral("Added"), QStringLiteral("Page1")));
    EXPECT_EQ(sheetSizes(), texts({"792 x 612"}));
}

TEST_F(PrintingTest, LeavesTheDocumentAsItIs)
{
    const auto document = documentOf(2);
    const QString path = document->documentURL().toLocalFile();
    const QByteArray before = readFile(path);
    print(document);
    EXPECT_FALSE(document->isModified());
    EXPECT_EQ(readFile(path), before);
    const QString copy = m_folder.path(QStringLiteral("copy.pdf"));
    ASSERT_TRUE(document->write(copy));
    EXPECT_EQ(readFile(copy), before);
}

class ProtectedPrintingTest : public PrintingTest
{
protected:
    std::shared_ptr<PDFDocument> encrypted(const QString& printing, const QString& password)
    {
        const QString plain = documentOf(1)->documentURL().toLocalFile();
        const QString path = m_folder.path(QStringLiteral("encrypted.pdf"));
        EXPECT_EQ(
            runTool(
                QStringLiteral("qpdf"),
                {QStringLiteral("--encrypt"), QStringLiteral("user"), QStringLiteral("owner"),
                 QStringLiteral("256"), QStringLiteral("--print=") + printing, QStringLiteral("--"), plain,
                 path})
                ->exitCode,
            0);
        auto document = *PDFDocument::open(path);
        if (!password.isEmpty()) {
            EXPECT_TRUE(document->unlock(password));
        }
        return document;
    }
};

TEST_F(ProtectedPrintingTest, PrintsADocumentThatIsEncrypted)
{
    print(encrypted(QStringLiteral("full"), QStringLiteral("user")));
    EXPECT_EQ(words(), texts({"Page1"}));
}

TEST_F(ProtectedPrintingTest, RefusesWhatTheDocumentForbids)
{
    const auto document = encrypted(QStringLiteral("none"), QStringLiteral("user"));
    expectFailure(*document, Code::refused, "the document does not allow printing");
    EXPECT_THAT(filesInTargetFolder(), IsEmpty());
}

TEST_F(ProtectedPrintingTest, PrintsEverythingForTheOwner)
{
    print(encrypted(QStringLiteral("none"), QStringLiteral("owner")));
    EXPECT_EQ(words(), texts({"Page1"}));
}

TEST_F(ProtectedPrintingTest, PrintsAPictureWhereTheDocumentAllowsNoMore)
{
    const auto outcome = print(encrypted(QStringLiteral("low"), QStringLiteral("user")));
    EXPECT_THAT(outcome.damagedPages, IsEmpty());
    EXPECT_THAT(words(), IsEmpty());
    const QRect picture = ink();
    print(encrypted(QStringLiteral("full"), QStringLiteral("user")));
    EXPECT_TRUE(isNear(picture, ink())) << "the picture is where the text would be";
}

TEST_F(ProtectedPrintingTest, NeedsThePassword)
{
    m_layout.pages = {0};
    expectFailure(*encrypted(QStringLiteral("full"), {}), Code::passwordRequired, "the document is locked");
}

TEST_F(PrintingTest, LeavesTheSheetOfAMissingPageBlank)
{
    PDFWriter writer;
    writer.addPage(showText(72, 700, "Page1"));
    const int missing = writer.addPage({});
    writer.addPage(showText(72, 700, "Page3"));
    writer.replace(missing, "(This is no page)");
    const auto outcome = print(open(writer.bytes()));
    EXPECT_THAT(outcome.damagedPages, ElementsAre(1));
    EXPECT_EQ(outcome.sheets, 3);
    EXPECT_EQ(words(), texts({"Page1", "Page3"}));
}

TEST_F(PrintingTest, PrintsAPageWhoseResourcesAreMissing)
{
    PDFWriter writer;
    writer.setResources("/XObject<</Gone 999 0 R>>/ExtGState 998 0 R");
    writer.addPage(showText(72, 700, "Page1") + "/Gone Do /Nothing gs");
    EXPECT_THAT(print(open(writer.bytes())).damagedPages, IsEmpty());
    EXPECT_EQ(words(), texts({"Page1"}));
}

TEST_F(PrintingTest, RefusesToPrintNothing)
{
    const auto document = documentOf(1);
    QDir().mkpath(QFileInfo(target()).path());
    const auto outcome = document->writePrintable(target(), {});
    ASSERT_FALSE(outcome);
    EXPECT_EQ(outcome.error().message, QStringLiteral("there are no pages to print"));
}

TEST_F(PrintingTest, RefusesMoreSheetsThanAnybodyNeeds)
{
    m_layout.copies = 1'000'000;
    expectFailure(*documentOf(1), Code::limitExceeded, "there are too many sheets to print");
}

TEST_F(PrintingTest, DoesNotPrintADocumentOverItsOwnFile)
{
    const auto document = documentOf(1);
    m_layout.pages = {0};
    const auto outcome = document->writePrintable(document->documentURL().toLocalFile(), m_layout);
    ASSERT_FALSE(outcome);
    EXPECT_EQ(outcome.error().code, Code::refused);
}

TEST_F(PrintingTest, TellsHowFarItIs)
{
    std::vector<std::pair<int, int>> told;
    m_progress = [&](int sheets, int total) { told.emplace_back(sheets, total); };
    print(documentOf(3));
    EXPECT_EQ(told, (std::vector<std::pair<int, int>>{{1, 3}, {2, 3}, {3, 3}}));
}

TEST_F(PrintingTest, LeavesNoFileWhenItIsCancelled)
{
    m_progress = [&](int sheets, int) {
        if (sheets == 2)
            m_cancellation.cancel();
    };
    expectFailure(*documentOf(5), Code::cancelled, "the operation was cancelled");
    EXPECT_THAT(filesInTargetFolder(), IsEmpty());
}

TEST_F(PrintingTest, LeavesTheOldFileWhenTheDiskIsFull)
{
    const auto document = documentOf(3);
    print(document);
    const QByteArray before = readFile(target());
    for (const qint64 size : {qint64{0}, qint64{100}, before.size() / 2, before.size() - 1}) {
        const FullDisk disk(static_cast<rlim_t>(size));
        expectFailure(*document, Code::unwritable, "there is not enough space for the file");
    }
    EXPECT_EQ(readFile(target()), before);
    EXPECT_EQ(filesInTargetFolder(), texts({"sheets.pdf"}));
}

TEST_F(PrintingTest, WritesNothingIntoAReadOnlyFolder)
{
    const auto document = documentOf(1);
    const QString folder = QFileInfo(target()).path();
    ASSERT_TRUE(QDir().mkpath(folder));
    ASSERT_EQ(::chmod(QFile::encodeName(folder).constData(), 0555), 0);
    ASSERT_EQ(::chmod(QFile::encodeName(m_folder.path(QString())).constData(), 0755), 0);
    {
        const OrdinaryUser user;
        expectFailure(*document, Code::unwritable, "the folder of the file cannot be written");
    }
    EXPECT_THAT(filesInTargetFolder(), IsEmpty());
    ASSERT_EQ(::chmod(QFile::encodeName(folder).constData(), 0755), 0);
}

} // namespace
} // namespace pdf
