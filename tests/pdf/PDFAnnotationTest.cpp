// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/PDFAnnotation.h"
#include "Tools.h"
#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"
#include "support/PDFWriter.h"
#include "support/Printing.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QPainter>

#include <atomic>
#include <numeric>
#include <thread>

namespace pdf {
namespace {

using Subtype = PDFAnnotation::Subtype;

/// A stamp that shows a picture.
class PictureStamp : public PDFAnnotation
{
public:
    PictureStamp(const QImage& image, const QRectF& bounds)
        : PDFAnnotation(bounds, Subtype::stamp)
        , m_image(image)
    {}

protected:
    void draw(QPainter& painter, const QSizeF& size) const override
    {
        painter.drawImage(QRectF(QPointF(), size), m_image);
    }

private:
    const QImage m_image;
};

class PDFAnnotationTest : public testing::Test
{
protected:
    /// A document of one page, 200 points by 200, with a green lower half.
    std::shared_ptr<PDFDocument> openSample(const QByteArray& annotations = {})
    {
        PDFWriter writer;
        const QByteArray entries = annotations.isEmpty() ? QByteArray() : "/Annots[" + annotations + "]";
        writer.addPage("0 1 0 rg 0 0 200 100 re f", "/MediaBox[0 0 200 200]" + entries);
        return open(m_folder.write(m_name, writer.bytes()));
    }

    std::shared_ptr<PDFDocument> open(const QString& path)
    {
        auto document = PDFDocument::open(path);
        if (!document) {
            ADD_FAILURE() << document.error().message.toStdString();
            return nullptr;
        }
        return *document;
    }

    QString path() const { return m_folder.path(m_name); }

    /// The annotations that the file has.
    std::vector<std::shared_ptr<PDFAnnotation>> saved()
    {
        m_reopened = open(path());
        return m_reopened->page(0)->annotations();
    }

    std::shared_ptr<PDFAnnotation> addText(PDFDocument& document, const QString& text, const QRectF& bounds)
    {
        auto annotation = std::make_shared<PDFAnnotation>(bounds, Subtype::freeText);
        annotation->setContents(text);
        document.page(0)->addAnnotation(annotation);
        return annotation;
    }

    TestFolder m_folder;
    const QString m_name = QStringLiteral("sample.pdf");
    std::shared_ptr<PDFDocument> m_reopened;
};

QImage drawAnnotations(PDFDocument& document)
{
    const auto list = document.page(0)->annotationDisplayList();
    QImage image(pixelSize(list->displaySize(), 1), QImage::Format_RGB32);
    image.fill(Qt::white);
    EXPECT_TRUE(list->draw(image, {}, 1));
    return image;
}

bool isNear(QRgb pixel, QRgb expected, int tolerance = 8)
{
    return std::abs(qRed(pixel) - qRed(expected)) <= tolerance &&
           std::abs(qGreen(pixel) - qGreen(expected)) <= tolerance &&
           std::abs(qBlue(pixel) - qBlue(expected)) <= tolerance;
}

/// Whether something dark is in a part of a picture.
bool hasInk(const QImage& image, const QRect& area)
{
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            if (qGray(image.pixel(x, y)) < 100)
                return true;
        }
    }
    return false;
}

TEST_F(PDFAnnotationTest, IsOnThePageThatItIsAddedTo)
{
    const auto document = openSample();
    const auto page = document->page(0);
    const auto annotation = std::make_shared<PDFAnnotation>(QRectF(10, 20, 30, 40), Subtype::stamp);
    EXPECT_FALSE(annotation->page());
    page->addAnnotation(annotation);
    EXPECT_EQ(annotation->page(), page);
    EXPECT_EQ(page->annotations(), std::vector{annotation});
    EXPECT_TRUE(document->isModified());
}

TEST_F(PDFAnnotationTest, IsSavedWithItsTypeBoundsAndContents)
{
    const auto document = openSample();
    addText(*document, QStringLiteral("Grüße"), {20.5, 30, 100, 25});
    ASSERT_TRUE(document->write(path()));
    const auto annotations = saved();
    ASSERT_EQ(annotations.size(), 1u);
    EXPECT_EQ(annotations[0]->type(), QStringLiteral("FreeText"));
    EXPECT_EQ(annotations[0]->subtype(), Subtype::freeText);
    EXPECT_EQ(annotations[0]->bounds(), QRectF(20.5, 30, 100, 25));
    EXPECT_EQ(annotations[0]->contents(), QStringLiteral("Grüße"));
    const auto checked = runTool(QStringLiteral("qpdf"), {QStringLiteral("--check"), path()});
    if (checked) {
        EXPECT_EQ(checked->exitCode, 0) << checked->output.toStdString();
    }
}

TEST_F(PDFAnnotationTest, IsGoneFromThePageThatItIsRemovedFrom)
{
    const auto document = openSample();
    const auto kept = addText(*document, QStringLiteral("stays"), {10, 10, 50, 20});
    const auto removed = addText(*document, QStringLiteral("goes"), {10, 50, 50, 20});
    ASSERT_TRUE(document->write(path()));
    document->page(0)->removeAnnotation(removed);
    EXPECT_FALSE(removed->page());
    EXPECT_EQ(document->page(0)->annotations(), std::vector{kept});
    ASSERT_TRUE(document->write(path()));
    ASSERT_EQ(saved().size(), 1u);
    EXPECT_EQ(saved()[0]->contents(), QStringLiteral("stays"));
    EXPECT_FALSE(readFile(path()).contains("goes"));
}

TEST_F(PDFAnnotationTest, IsRemovedOnceWhenTheNextListIsCancelled)
{
    const auto document = openSample();
    const auto page = document->page(0);
    const auto kept = addText(*document, QStringLiteral("stays"), {10, 10, 50, 20});
    const auto removed = addText(*document, QStringLiteral("goes"), {10, 50, 50, 20});
    ASSERT_EQ(page->annotations().size(), 2u);
    page->removeAnnotation(removed);
    const Cancellation cancelled;
    cancelled.cancel();
    EXPECT_FALSE(page->annotationDisplayList(cancelled));
    // Takes the place of what was removed, in memory too.
    const auto added = addText(*document, QStringLiteral("comes"), {10, 90, 50, 20});
    EXPECT_EQ(page->annotations(), (std::vector{kept, added}));
    ASSERT_TRUE(document->write(path()));
    EXPECT_EQ(saved().size(), 2u);
}

TEST_F(PDFAnnotationTest, CanBeAddedAgainAfterItWasRemoved)
{
    const auto document = openSample();
    const auto annotation = addText(*document, QStringLiteral("again"), {10, 10, 50, 20});
    document->page(0)->removeAnnotation(annotation);
    ASSERT_TRUE(document->page(0)->annotations().empty());
    document->page(0)->addAnnotation(annotation);
    EXPECT_EQ(document->page(0)->annotations(), std::vector{annotation});
}

TEST_F(PDFAnnotationTest, ComesBackAsTheSameObjectWhileItIsHeld)
{
    const auto document = openSample("<</Type/Annot/Subtype/Square/Rect[1 2 3 4]>>");
    const auto first = document->page(0)->annotations();
    EXPECT_EQ(document->page(0)->annotations(), first);
    ASSERT_EQ(first.size(), 1u);
    EXPECT_EQ(first[0]->type(), QStringLiteral("Square"));
    EXPECT_EQ(first[0]->subtype(), Subtype::other);
    EXPECT_EQ(first[0]->bounds(), QRectF(1, 2, 2, 2));
}

TEST_F(PDFAnnotationTest, IsFoundInTheFileAndMoved)
{
    const auto document = openSample("<</Type/Annot/Subtype/Square/Rect[40 30 20 10]/Contents(box)>>");
    const auto annotations = document->page(0)->annotations();
    ASSERT_EQ(annotations.size(), 1u);
    EXPECT_EQ(annotations[0]->bounds(), QRectF(20, 10, 20, 20));
    annotations[0]->setBounds({50, 60, 20, 20});
    ASSERT_TRUE(document->write(path()));
    EXPECT_EQ(saved()[0]->bounds(), QRectF(50, 60, 20, 20));
    EXPECT_EQ(saved()[0]->contents(), QStringLiteral("box"));
}

TEST_F(PDFAnnotationTest, IsRemovedFromAFileWithItsNote)
{
    PDFWriter writer;
    const int popup = writer.add("<</Type/Annot/Subtype/Popup/Rect[0 0 9 9]>>");
    const int square = writer.add(
        "<</Type/Annot/Subtype/Square/Rect[0 0 9 9]/Popup " + QByteArray::number(popup) + " 0 R>>");
    writer.addPage(
        {}, "/Annots[" + QByteArray::number(square) + " 0 R " + QByteArray::number(popup) + " 0 R]");
    const auto document = open(m_folder.write(m_name, writer.bytes()));
    document->page(0)->removeAnnotation(document->page(0)->annotations().at(0));
    ASSERT_TRUE(document->write(path()));
    EXPECT_TRUE(saved().empty());
}

TEST_F(PDFAnnotationTest, IsDrawnWhereItIs)
{
    const auto document = openSample();
    const auto annotation = addText(*document, {}, {20, 120, 60, 40});
    annotation->setColor(Qt::red);
    QImage image = drawAnnotations(*document);
    EXPECT_EQ(image.pixel(21, 41), qRgb(255, 0, 0));
    EXPECT_EQ(image.pixel(78, 78), qRgb(255, 0, 0));
    EXPECT_EQ(image.pixel(18, 60), qRgb(255, 255, 255));

    annotation->setBounds({120, 20, 60, 40});
    image = drawAnnotations(*document);
    EXPECT_EQ(image.pixel(50, 60), qRgb(255, 255, 255));
    EXPECT_EQ(image.pixel(122, 142), qRgb(255, 0, 0));

    document->page(0)->removeAnnotation(annotation);
    EXPECT_EQ(drawAnnotations(*document).pixel(122, 142), qRgb(255, 255, 255));
}

TEST_F(PDFAnnotationTest, MayLieBeyondThePage)
{
    const auto document = openSample();
    addText(*document, {}, {-50, 38, 200, 24})->setColor(Qt::red);
    EXPECT_EQ(drawAnnotations(*document).pixel(2, 150), qRgb(255, 0, 0));
    ASSERT_TRUE(document->write(path()));
    EXPECT_EQ(saved()[0]->bounds(), QRectF(-50, 38, 200, 24));
}

QByteArray squares(int count)
{
    QByteArray annotations;
    for (int i = 0; i < count; ++i)
        annotations += "<</Type/Annot/Subtype/Square/F 4/Rect[9 9 12 12]>>";
    return annotations;
}

TEST_F(PDFAnnotationTest, IsListedBeyondTheMostThatAPageMayHave)
{
    const auto document = openSample(squares(20'010));
    const auto added = addText(*document, QStringLiteral("last"), {10, 10, 50, 20});
    const auto annotations = document->page(0)->annotations();
    ASSERT_EQ(annotations.size(), 20'001u);
    EXPECT_EQ(annotations.back(), added);
}

/// Annotations that are objects of their own, as they nearly always are, in a row.
QByteArray squaresInARow(PDFWriter& writer, int count)
{
    const int picture = writer.addStream("0 0 1 rg 0 0 8 8 re f", "/Subtype/Form/BBox[0 0 8 8]");
    QByteArray annotations;
    for (int i = 0; i < count; ++i) {
        const QByteArray left = QByteArray::number(10 + 10 * i);
        const QByteArray right = QByteArray::number(18 + 10 * i);
        const int square = writer.add(
            "<</Type/Annot/Subtype/Square/F 4/Rect[" + left + " 50 " + right + " 58]/AP<</N " +
            QByteArray::number(picture) + " 0 R>>>>");
        annotations += QByteArray::number(square) + " 0 R ";
    }
    return annotations;
}

TEST_F(PDFAnnotationTest, IsAllThatIsDrawnAnewWhenItMoves)
{
    PDFWriter writer;
    writer.addPage({}, "/MediaBox[0 0 200 200]/Annots[" + squaresInARow(writer, 15) + ']');
    const auto document = open(m_folder.write(m_name, writer.bytes()));
    const auto page = document->page(0);
    const auto before = page->annotationDisplayList();
    ASSERT_TRUE(before);
    EXPECT_TRUE(page->annotationDisplayList()->difference(*before).empty()) << "nothing has changed";

    page->annotations().at(7)->setBounds({80, 150, 8, 8});
    const auto moved = page->annotationDisplayList();
    auto places = moved->difference(*before);
    ASSERT_EQ(places.size(), 2u);
    EXPECT_EQ(places[0], QRectF(80, 42, 8, 8)) << "where it is";
    EXPECT_EQ(places[1], QRectF(80, 142, 8, 8)) << "where it was";

    const auto added = addText(*document, {}, {20, 120, 60, 40});
    added->setColor(Qt::red);
    const auto withAdded = page->annotationDisplayList();
    places = withAdded->difference(*moved);
    ASSERT_EQ(places.size(), 1u);
    EXPECT_TRUE(places[0].contains(QRectF(20, 40, 60, 40)));
    EXPECT_LT(places[0].width(), 70);

    page->removeAnnotation(page->annotations().at(2));
    places = page->annotationDisplayList()->difference(*withAdded);
    const QRectF all = std::accumulate(
        places.begin(), places.end(), QRectF(), [](const QRectF& a, const QRectF& b) { return a | b; });
    EXPECT_EQ(all, QRectF(30, 142, 8, 8));
}

TEST_F(PDFAnnotationTest, LooksAsItsPageIsTurned)
{
    const auto document = openSample();
    const auto annotation = addText(*document, {}, {20, 120, 60, 40});
    annotation->setColor(Qt::red);
    EXPECT_EQ(drawAnnotations(*document).pixel(21, 41), qRgb(255, 0, 0));
    ASSERT_TRUE(document->page(0)->setRotation(180));
    const QImage image = drawAnnotations(*document);
    EXPECT_EQ(image.pixel(21, 41), qRgb(255, 255, 255));
    EXPECT_EQ(image.pixel(178, 158), qRgb(255, 0, 0));
}

TEST_F(PDFAnnotationTest, MakesTheFileNoBiggerByBeingMovedOften)
{
    const auto document = openSample();
    const auto annotation = addText(*document, QStringLiteral("moved"), {10, 10, 60, 20});
    ASSERT_TRUE(document->write(path()));
    const qint64 size = QFile(path()).size();
    for (int i = 0; i < 100; ++i) {
        annotation->setBounds({10.0 + i, 10, 60, 20});
        drawAnnotations(*document);
    }
    ASSERT_TRUE(document->write(path()));
    EXPECT_NEAR(double(QFile(path()).size()), double(size), 16);
}

TEST_F(PDFAnnotationTest, LeavesNothingBehindOfEarlierLooks)
{
    const auto document = openSample();
    const auto annotation = addText(*document, QStringLiteral("version 0"), {10, 10, 90, 20});
    ASSERT_TRUE(document->write(path()));
    const qint64 size = QFile(path()).size();
    for (int i = 1; i <= 5; ++i) {
        annotation->setContents(QStringLiteral("version %1").arg(i));
        drawAnnotations(*document);
    }
    ASSERT_TRUE(document->write(path()));
    EXPECT_LT(QFile(path()).size(), size + size / 4);
    EXPECT_EQ(saved()[0]->contents(), QStringLiteral("version 5"));
}

TEST_F(PDFAnnotationTest, BecomesATextFieldOfTheForm)
{
    const auto document = openSample();
    for (const double y : {20.0, 60.0}) {
        const auto field = std::make_shared<PDFAnnotation>(QRectF(20, y, 150, 24), Subtype::widget);
        field->setBackgroundColor(QColor(255, 255, 255, 230));
        field->setValue(1, PDFAnnotationKey::borderStyle);
        document->page(0)->addAnnotation(field);
        EXPECT_EQ(field->type(), QStringLiteral("Widget"));
    }
    ASSERT_TRUE(document->write(path()));
    const auto fields = open(path())->page(0)->formFields();
    ASSERT_TRUE(fields);
    ASSERT_EQ(fields->size(), 2u);
    for (const PDFFormField& field : *fields) {
        EXPECT_EQ(field.kind, FormFieldKind::text);
        EXPECT_TRUE(field.isFillable());
        EXPECT_EQ(field.text, QString());
        EXPECT_EQ(field.bounds.size(), QSizeF(150, 24));
    }
    EXPECT_NE(fields->at(0).name, fields->at(1).name);
}

TEST_F(PDFAnnotationTest, TakesItsFieldOutOfTheFormWhenItIsRemoved)
{
    const auto document = openSample();
    const auto field = std::make_shared<PDFAnnotation>(QRectF(20, 20, 150, 24), Subtype::widget);
    document->page(0)->addAnnotation(field);
    ASSERT_TRUE(document->write(path()));
    document->page(0)->removeAnnotation(field);
    ASSERT_TRUE(document->write(path()));
    const auto json = runTool(
        QStringLiteral("qpdf"), {QStringLiteral("--json"), QStringLiteral("--json-key=acroform"), path()});
    if (!json)
        GTEST_SKIP() << "qpdf is not installed";
    EXPECT_TRUE(json->output.contains("\"fields\": []")) << json->output.toStdString();
}

TEST_F(PDFAnnotationTest, KeepsChangesOfAThreadThatDoesNotWaitForTheDocument)
{
    const auto document = openSample();
    const auto annotation = addText(*document, QStringLiteral("moved"), {10, 10, 60, 20});
    std::atomic<bool> done = false;
    std::thread reader([&] {
        while (!done)
            drawAnnotations(*document);
    });
    for (int i = 1; i <= 2000; ++i)
        annotation->setBounds({10.0 + i % 100, 10, 60, 20});
    annotation->setBounds({99, 98, 60, 20});
    done = true;
    reader.join();
    ASSERT_TRUE(document->write(path()));
    EXPECT_EQ(saved()[0]->bounds(), QRectF(99, 98, 60, 20));
}

TEST_F(PDFAnnotationTest, OutlivesItsDocument)
{
    auto document = openSample();
    const auto annotation = addText(*document, QStringLiteral("left"), {10, 10, 60, 20});
    document.reset();
    annotation->setBounds({20, 20, 60, 20});
    EXPECT_FALSE(annotation->page());
    EXPECT_EQ(annotation->bounds(), QRectF(20, 20, 60, 20));
}

/// How others show what was saved.
class SavedAnnotationTest : public PDFAnnotationTest, public testing::WithParamInterface<Renderer>
{
protected:
    /// The saved page; a skipped test where the program is missing.
    void render(PDFDocument& document)
    {
        ASSERT_TRUE(document.write(path()));
        const auto image = renderWith(GetParam(), path());
        if (!image)
            GTEST_SKIP() << "the program is not installed";
        m_image = *image;
        ASSERT_EQ(m_image.size(), QSize(200, 200));
    }

    QImage m_image;
};

TEST_P(SavedAnnotationTest, ShowsAPictureWithItsTransparency)
{
    // Left half black, right half transparent, with a half-transparent blue in the middle.
    QImage picture(40, 40, QImage::Format_ARGB32);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.fillRect(0, 0, 10, 40, Qt::black);
    painter.fillRect(10, 0, 20, 40, QColor(0, 0, 255, 128));
    painter.end();

    const auto document = openSample();
    document->page(0)->addAnnotation(std::make_shared<PictureStamp>(picture, QRectF(20, 60, 80, 80)));
    render(*document);
    if (IsSkipped() || HasFatalFailure())
        return;
    EXPECT_TRUE(isNear(m_image.pixel(30, 100), qRgb(0, 0, 0)));
    EXPECT_TRUE(isNear(m_image.pixel(60, 80), qRgb(127, 127, 255)));
    EXPECT_TRUE(isNear(m_image.pixel(60, 120), qRgb(0, 127, 128)));
    EXPECT_TRUE(isNear(m_image.pixel(90, 80), qRgb(255, 255, 255)));
    EXPECT_TRUE(isNear(m_image.pixel(90, 120), qRgb(0, 255, 0)));
}

TEST_P(SavedAnnotationTest, ShowsTextInAnyScript)
{
    for (const char* text : {"Ada Lovelace", "Ελένη Παππά", "李小龙", "Юлия Щукина", "נועה לוי"}) {
        const auto document = openSample();
        QFont font;
        font.setPointSizeF(16);
        const QSizeF size = PDFAnnotation::textSize(QString::fromUtf8(text), font);
        const auto annotation =
            addText(*document, QString::fromUtf8(text), {20, 120, size.width() + 10, size.height() + 8});
        annotation->setFont(font);
        annotation->setAlignment(Qt::AlignHCenter);
        render(*document);
        if (IsSkipped() || HasFatalFailure())
            return;
        const QRect area(20, 50, int(size.width()), 30);
        EXPECT_TRUE(hasInk(m_image, area)) << text;
        EXPECT_FALSE(hasInk(m_image, {0, 0, 200, 45})) << text;
        // The text fills its measured width.
        EXPECT_TRUE(hasInk(m_image, {24, 50, 6, 30})) << text;
        EXPECT_TRUE(hasInk(m_image, {int(20 + size.width()) - 2, 50, 8, 30})) << text;
    }
}

TEST_P(SavedAnnotationTest, ShowsAFieldsBackground)
{
    if (GetParam() == Renderer::pdfium)
        GTEST_SKIP() << "Qt does not have PDFium draw form fields";
    const auto document = openSample();
    const auto field = std::make_shared<PDFAnnotation>(QRectF(20, 20, 150, 24), Subtype::widget);
    field->setBackgroundColor(QColor(255, 255, 255, 230));
    document->page(0)->addAnnotation(field);
    render(*document);
    if (IsSkipped() || HasFatalFailure())
        return;
    EXPECT_TRUE(isNear(m_image.pixel(100, 168), qRgb(230, 255, 230))) << std::hex << m_image.pixel(100, 168);
    EXPECT_TRUE(isNear(m_image.pixel(100, 120), qRgb(0, 255, 0)));
}

std::string nameOf(const testing::TestParamInfo<Renderer>& viewer)
{
    constexpr const char* names[] = {"Poppler", "PDFium", "MuPDF"};
    return names[static_cast<int>(viewer.param)];
}

INSTANTIATE_TEST_SUITE_P(
    Viewers, SavedAnnotationTest, testing::Values(Renderer::poppler, Renderer::pdfium, Renderer::mupdf),
    nameOf);

} // namespace
} // namespace pdf
