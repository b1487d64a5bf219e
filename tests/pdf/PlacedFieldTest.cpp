// SPDX-License-Identifier: AGPL-3.0-or-later
#include "FormFile.h"
#include "Tools.h"
#include "pdf/Engine.h"
#include "pdf/Limits.h"
#include "pdf/PDFAnnotation.h"
#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"
#include "support/PDFWriter.h"

#include <gtest/gtest.h>

namespace pdf {
namespace {

using Subtype = PDFAnnotation::Subtype;

/// A text field that was placed on an empty page of 200 points by 200, and fields that were there before.
class PlacedFieldTest : public testing::Test
{
protected:
    void SetUp() override
    {
        PDFWriter writer;
        writer.addPage({}, "/MediaBox[0 0 200 200]");
        m_document = *PDFDocument::open(m_folder.write(QStringLiteral("placed.pdf"), writer.bytes()));
    }

    std::shared_ptr<PDFAnnotation> place(const QRectF& bounds = {20, 150, 100, 24})
    {
        auto field = std::make_shared<PDFAnnotation>(bounds, Subtype::widget);
        QFont font;
        font.setPointSizeF(12);
        field->setFont(font);
        m_document->page(0)->addAnnotation(field);
        return field;
    }

    PDFFormField onlyField()
    {
        const auto fields = m_document->page(0)->formFields();
        if (!fields || fields->size() != 1) {
            ADD_FAILURE() << "there is not one field";
            return {};
        }
        return fields->front();
    }

    void fill(const QString& text)
    {
        const auto pages = m_document->setFormValue(onlyField().widget, text);
        ASSERT_TRUE(pages) << pages.error().message.toStdString();
    }

    QImage picture() { return pictureOf(*m_document); }

    static QImage pictureOf(PDFDocument& document)
    {
        const auto list = document.page(0)->annotationDisplayList();
        QImage image(pixelSize(list->displaySize(), 1), QImage::Format_RGB32);
        image.fill(Qt::white);
        EXPECT_TRUE(list->draw(image, {}, 1));
        return image;
    }

    TestFolder m_folder;
    std::shared_ptr<PDFDocument> m_document;
};

/// The rows from the first dark one to the last; 0 for none.
int inkHeight(const QImage& image)
{
    int first = image.height();
    int last = -1;
    for (int y = 0; y < image.height(); ++y) {
        if (darkPixels(image.copy(0, y, image.width(), 1)) > 0) {
            first = std::min(first, y);
            last = y;
        }
    }
    return last < 0 ? 0 : last - first + 1;
}

TEST_F(PlacedFieldTest, IsAFieldOfTheFormAsSoonAsItIsAdded)
{
    EXPECT_FALSE(m_document->hasForm());
    place();
    EXPECT_TRUE(m_document->hasForm());
    EXPECT_EQ(onlyField().bounds, QRectF(20, 150, 100, 24));
}

TEST_F(PlacedFieldTest, CannotBeFilledAnyMoreAsSoonAsItIsRemoved)
{
    const auto field = place();
    const FormWidget widget = onlyField().widget;
    m_document->page(0)->removeAnnotation(field);
    EXPECT_FALSE(m_document->setFormValue(widget, QStringLiteral("late")));
    EXPECT_FALSE(m_document->hasForm());
}

TEST_F(PlacedFieldTest, KnowsWhatItWasFilledInWith)
{
    const auto field = place();
    fill(QStringLiteral("Ada Lovelace"));
    EXPECT_EQ(field->widgetStringValue(), QStringLiteral("Ada Lovelace"));
    EXPECT_EQ(m_document->page(0)->annotations().at(0)->widgetStringValue(), QStringLiteral("Ada Lovelace"));
}

TEST_F(PlacedFieldTest, KeepsItsInkWhenItIsResizedAfterItWasFilled)
{
    const auto field = place();
    fill(QStringLiteral("Ada Lovelace"));
    const int height = inkHeight(picture());
    ASSERT_GT(height, 0);
    field->setBounds({20, 120, 150, 54});
    EXPECT_EQ(onlyField().text, QStringLiteral("Ada Lovelace"));
    EXPECT_EQ(onlyField().bounds, QRectF(20, 120, 150, 54));
    EXPECT_NEAR(inkHeight(picture()), height, 1);

    const QString path = m_folder.path(QStringLiteral("saved.pdf"));
    ASSERT_TRUE(m_document->write(path));
    EXPECT_EQ(programsAgainst(path), QStringList());
    if (const auto text = runTool(QStringLiteral("pdftotext"), {path, QStringLiteral("-")})) {
        EXPECT_TRUE(text->output.contains("Ada Lovelace")) << text->output.toStdString();
    }
    for (const Renderer renderer : {Renderer::poppler, Renderer::mupdf}) {
        if (const auto image = renderWith(renderer, path)) {
            EXPECT_NEAR(inkHeight(*image), height, 2);
        }
    }
}

TEST_F(PlacedFieldTest, ShowsItsValueInAnotherSizeAndColour)
{
    const auto field = place({20, 120, 150, 54});
    fill(QStringLiteral("Xylophone"));
    const int height = inkHeight(picture());
    QFont font = field->font();
    font.setPointSizeF(24);
    field->setFont(font);
    EXPECT_EQ(onlyField().fontSize, 24);
    EXPECT_EQ(onlyField().text, QStringLiteral("Xylophone"));
    EXPECT_NEAR(inkHeight(picture()), 2 * height, 3);
    field->setFontColor(Qt::yellow);
    EXPECT_EQ(inkHeight(picture()), 0) << "yellow is not dark";
    EXPECT_EQ(onlyField().text, QStringLiteral("Xylophone"));
}

TEST_F(PlacedFieldTest, KeepsValueAndPictureWhenItBecomesReadOnly)
{
    const auto field = place();
    fill(QStringLiteral("fixed"));
    const QImage before = picture();
    field->setReadOnly(true);
    EXPECT_TRUE(onlyField().isReadOnly);
    EXPECT_EQ(onlyField().text, QStringLiteral("fixed"));
    EXPECT_EQ(picture(), before);
    EXPECT_FALSE(m_document->setFormValue(onlyField().widget, QStringLiteral("other")));
    EXPECT_EQ(onlyField().text, QStringLiteral("fixed"));
}

TEST_F(PlacedFieldTest, KeepsTheTransparencyOfItsBackgroundWhenItIsFilled)
{
    const auto field = place();
    field->setBackgroundColor(QColor(0, 0, 255, 51));
    const QColor before = picture().pixelColor(115, 40);
    EXPECT_NEAR(before.red(), 204, 2);
    fill(QStringLiteral("i"));
    EXPECT_EQ(picture().pixelColor(115, 40), before);
}

TEST_F(PlacedFieldTest, KeepsItsValueWhenItIsTakenFromThePageAndPutBack)
{
    const auto field = place();
    fill(QStringLiteral("again"));
    m_document->page(0)->removeAnnotation(field);
    EXPECT_EQ(inkHeight(picture()), 0);
    m_document->page(0)->addAnnotation(field);
    EXPECT_EQ(onlyField().text, QStringLiteral("again"));
    EXPECT_GT(inkHeight(picture()), 0);
}

TEST_F(PlacedFieldTest, LeavesNothingBehindOfEarlierValues)
{
    place();
    fill(QStringLiteral("value 0"));
    const QString path = m_folder.path(QStringLiteral("saved.pdf"));
    ASSERT_TRUE(m_document->write(path));
    const qint64 size = readFile(path).size();
    for (int i = 1; i <= 9; ++i)
        fill(QStringLiteral("value %1").arg(i));
    ASSERT_TRUE(m_document->write(path));
    EXPECT_NEAR(double(readFile(path).size()), double(size), double(size) / 4);
}

/// Has only so much memory of the engine left while it lives.
class ShortMemory
{
public:
    explicit ShortMemory(std::size_t room)
        : m_context(engine::context())
    {
        fz_empty_store(m_context);
        m_block = fz_malloc_no_throw(m_context, limits::memory - engine::memoryInUse() - room);
    }
    ~ShortMemory() { fz_free(m_context, m_block); }
    ShortMemory(const ShortMemory&) = delete;
    ShortMemory& operator=(const ShortMemory&) = delete;

    bool isShort() const { return m_block; }

private:
    fz_context* m_context;
    void* m_block = nullptr;
};

TEST_F(PlacedFieldTest, KeepsValueAndPictureWhereverAChangeFails)
{
    place();
    fill(QStringLiteral("before"));
    const FormWidget widget = onlyField().widget;
    const QImage before = picture();
    int failures = 0;
    bool isDone = false;
    for (std::size_t room = 0; !isDone && room < (1U << 20); room += 256) {
        {
            const ShortMemory memory(room);
            ASSERT_TRUE(memory.isShort());
            isDone = bool(m_document->setFormValue(widget, QStringLiteral("after")));
        }
        if (isDone)
            break;
        ++failures;
        ASSERT_EQ(onlyField().text, QStringLiteral("before")) << room;
        ASSERT_EQ(picture(), before) << room;
    }
    EXPECT_TRUE(isDone);
    EXPECT_GT(failures, 10);
    EXPECT_EQ(onlyField().text, QStringLiteral("after"));
    EXPECT_NE(picture(), before);
}

/// Fields that the file has.
class FoundFieldTest : public testing::Test
{
protected:
    std::shared_ptr<PDFAnnotation> annotation()
    {
        const auto annotations = m_file.document()->page(0)->annotations();
        EXPECT_EQ(annotations.size(), 1u);
        return annotations.at(0);
    }

    FormFile m_file;
};

TEST_F(FoundFieldTest, ShowsItsTextInItsSizeWhenItIsResized)
{
    m_file.add("/FT/Tx/T(name)/V(old)/DA(/Helv 12 Tf 0 g)/Rect[20 20 120 40]");
    ASSERT_TRUE(m_file.set("name", QStringLiteral("Helen")));
    const int height = inkHeight(m_file.picture());
    ASSERT_GT(height, 0);
    annotation()->setBounds({20, 20, 100, 60});
    EXPECT_NEAR(inkHeight(m_file.picture()), height, 1);
    EXPECT_EQ(m_file.field("name").bounds, QRectF(20, 20, 100, 60));
    EXPECT_EQ(m_file.field("name").text, QStringLiteral("Helen"));
}

TEST_F(FoundFieldTest, TakesAValueAndShowsIt)
{
    m_file.add("/FT/Tx/T(name)/DA(/Helv 12 Tf 0 g)/Rect[20 20 120 40]");
    const auto field = annotation();
    field->setWidgetStringValue(QStringLiteral("Helen"));
    EXPECT_EQ(m_file.field("name").text, QStringLiteral("Helen"));
    EXPECT_GT(inkHeight(m_file.picture()), 0);
    EXPECT_EQ(field->widgetStringValue(), QStringLiteral("Helen"));
}

TEST_F(FoundFieldTest, DropsAValueThatItRefuses)
{
    m_file.add("/FT/Tx/T(name)/V(kept)/Ff 1/DA(/Helv 12 Tf 0 g)/Rect[20 20 120 40]");
    const auto field = annotation();
    EXPECT_TRUE(field->isReadOnly());
    field->setWidgetStringValue(QStringLiteral("other"));
    EXPECT_EQ(m_file.field("name").text, QStringLiteral("kept"));
    EXPECT_EQ(field->widgetStringValue(), QStringLiteral("kept"));
}

TEST_F(FoundFieldTest, BecomesReadOnly)
{
    m_file.add("/FT/Tx/T(name)/V(text)/Ff 4096/DA(/Helv 12 Tf 0 g)/Rect[20 20 120 40]");
    annotation()->setReadOnly(true);
    EXPECT_TRUE(m_file.field("name").isReadOnly);
    EXPECT_TRUE(m_file.field("name").isMultiline);
    EXPECT_GT(inkHeight(m_file.picture()), 0);
}

TEST_F(FoundFieldTest, HasTheValueOfTheFieldThatItShows)
{
    m_file.addWithWidgets("/FT/Tx/T(name)/V(shared)", {"/Rect[20 20 120 40]"});
    EXPECT_EQ(annotation()->widgetStringValue(), QStringLiteral("shared"));
}

TEST_F(FoundFieldTest, KnowsWhatItWasFilledInWith)
{
    m_file.add("/FT/Tx/T(name)/V(old)/DA(/Helv 12 Tf 0 g)/Rect[20 20 120 40]");
    const auto field = annotation();
    ASSERT_TRUE(m_file.set("name", QStringLiteral("new")));
    EXPECT_EQ(field->widgetStringValue(), QStringLiteral("new"));
}

} // namespace
} // namespace pdf
