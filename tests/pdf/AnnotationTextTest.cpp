// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/FormFile.h"
#include "pdf/PDFAnnotation.h"
#include "pdf/TextLayer.h"
#include "support/PDFWriter.h"
#include "support/Printing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <vector>

// What is read of a page besides its content: what its annotations and form fields show.

namespace pdf {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A file of one page with annotations.
class AnnotatedFile
{
public:
    /// Adds an annotation of the given size that shows a text near its lower left corner.
    void
    add(const QRectF& bounds, const QByteArray& text, const QByteArray& entries = {},
        const QByteArray& streamEntries = {})
    {
        const int font = m_writer.add("<</Type/Font/Subtype/Type1/BaseFont/Helvetica>>");
        const QByteArray box = numbers(0, 0, bounds.width(), bounds.height());
        const int appearance = m_writer.addStream(
            streamEntries.isEmpty() ? showText(2, 5, text) : text,
            "/Type/XObject/Subtype/Form/BBox[" + box + "]/Resources<</Font<</F1 " + QByteArray::number(font) +
                " 0 R>>>>" + streamEntries);
        addEntries(bounds, "/AP<</N " + QByteArray::number(appearance) + " 0 R>>" + entries);
    }

    /// Adds an annotation that brings no appearance. It is a stamp unless the entries say otherwise.
    void addEntries(const QRectF& bounds, const QByteArray& entries)
    {
        const QByteArray type = entries.contains("/Subtype") ? QByteArray() : QByteArray("/Subtype/Stamp");
        m_annotations += "<</Type/Annot" + type + "/Rect[" +
                         numbers(bounds.left(), bounds.top(), bounds.right(), bounds.bottom()) + "]" +
                         entries + ">>";
    }

    std::shared_ptr<PDFPage> page(const QByteArray& content, const QByteArray& entries = {})
    {
        m_writer.addPage(content, "/Annots[" + m_annotations + "]" + entries);
        const auto document = PDFDocument::open(m_folder.write(QStringLiteral("page.pdf"), m_writer.bytes()));
        return document ? (*document)->page(0) : nullptr;
    }

    /// The page's text.
    QString text(const QByteArray& content) { return page(content)->string().value_or(QString()); }

private:
    static QByteArray numbers(double a, double b, double c, double d)
    {
        QByteArray result;
        for (const double number : {a, b, c, d})
            result += QByteArray::number(number) + ' ';
        return result;
    }

    TestFolder m_folder;
    PDFWriter m_writer;
    QByteArray m_annotations;
};

TEST(AnnotationTextTest, ReadsAValueBesideItsLabel)
{
    AnnotatedFile file;
    // The order in which fields were made is not that of reading.
    file.add({150, 666, 200, 18}, "Bern");
    file.add({150, 696, 200, 18}, "Jane Doe");
    EXPECT_EQ(
        file.text(showText(72, 700, "Name:") + showText(72, 670, "City:") + showText(72, 640, "Thank you.")),
        QStringLiteral("Name: Jane Doe\nCity: Bern\nThank you.\n"));
}

TEST(AnnotationTextTest, ReadsValuesBetweenTheWordsOfALine)
{
    AnnotatedFile file;
    file.add({240, 696, 60, 18}, "7 June");
    file.add({110, 696, 60, 18}, "3 May");
    EXPECT_EQ(
        file.text(showText(72, 700, "From:") + showText(200, 700, "Until:")),
        QStringLiteral("From: 3 May Until: 7 June\n"));
}

TEST(AnnotationTextTest, ReadsAValueThatStandsOnItsLineAfterIt)
{
    AnnotatedFile file;
    file.add({110, 696, 120, 18}, "Jane");
    EXPECT_EQ(
        file.text(showText(72, 700, "Name: ________________ Date")),
        QStringLiteral("Name: ________________ Jane Date\n"));
}

TEST(AnnotationTextTest, ReadsAMarkBeforeWhatItMarks)
{
    AnnotatedFile file;
    file.add({72, 696, 14, 14}, "X");
    EXPECT_EQ(file.text(showText(92, 700, "I agree")), QStringLiteral("X I agree\n"));
}

TEST(AnnotationTextTest, ReadsAValueBelowItsLabel)
{
    AnnotatedFile file;
    file.add({72, 676, 150, 18}, "Jane");
    file.add({300, 676, 150, 18}, "Doe");
    EXPECT_EQ(
        file.text(
            showText(72, 700, "First name") + showText(72, 650, "Street") + showText(300, 700, "Last name")),
        QStringLiteral("First name\nJane\nStreet\nLast name\nDoe\n"));
}

TEST(AnnotationTextTest, ReadsARowOfValuesBelowAHeadingAsALine)
{
    AnnotatedFile file;
    file.add({72, 676, 100, 18}, "Chair");
    file.add({200, 676, 50, 18}, "2");
    file.add({300, 676, 50, 18}, "40.00");
    EXPECT_EQ(
        file.text(
            showText(72, 700, "Item") + showText(200, 700, "Count") + showText(300, 700, "Price") +
            showText(72, 600, "Total")),
        QStringLiteral("Item Count Price\nChair 2 40.00\nTotal\n"));
}

TEST(AnnotationTextTest, KeepsTheLinesOfAnAnnotationTogether)
{
    AnnotatedFile file;
    file.add(
        {150, 650, 200, 64}, "BT /F1 12 Tf 2 50 Td (One) Tj 0 -14 Td (two) Tj 0 -14 Td (three) Tj ET", {},
        "/Lines 3");
    EXPECT_EQ(
        file.text(showText(72, 700, "Notes:") + showText(72, 600, "End")),
        QStringLiteral("Notes: One\ntwo\nthree\nEnd\n"));
}

TEST(AnnotationTextTest, ReadsAStampBetweenTheParagraphsThatItStandsBetween)
{
    AnnotatedFile file;
    file.add({100, 640, 200, 30}, "PAID");
    EXPECT_EQ(
        file.text(showText(72, 700, "The first paragraph.") + showText(72, 600, "The second one.")),
        QStringLiteral("The first paragraph.\nPAID\nThe second one.\n"));
}

TEST(AnnotationTextTest, ReadsWhatStandsAloneOnAPage)
{
    AnnotatedFile file;
    file.add({100, 500, 200, 30}, "below");
    file.add({100, 600, 200, 30}, "above");
    EXPECT_EQ(file.text("0 0 10 10 re f"), QStringLiteral("above\nbelow\n"));
}

TEST(AnnotationTextTest, LeavesOutWhatIsNotShown)
{
    AnnotatedFile file;
    file.add({100, 600, 200, 30}, "hidden", "/F 2");
    file.add({100, 500, 200, 30}, "not viewed", "/F 32");
    file.addEntries({100, 400, 20, 20}, "/Subtype/Text/Contents(a note)");
    file.addEntries({300, 400, 90, 90}, "/Subtype/Popup/Contents(a pop-up)");
    file.addEntries({100, 300, 200, 30}, "/Subtype/Link/Contents(a link)");
    file.addEntries(
        {72, 690, 200, 30}, "/Subtype/Highlight/QuadPoints[72 715 99 715 72 695 99 695]"
                            "/Contents(a remark)");
    EXPECT_EQ(file.text(showText(72, 700, "Page")), QStringLiteral("Page\n"));
}

TEST(AnnotationTextTest, ReadsWhatIsDrawnForAMissingAppearance)
{
    AnnotatedFile file;
    file.addEntries({100, 600, 200, 30}, "/Subtype/FreeText/DA(/Helv 12 Tf 0 g)/Contents(Free text)");
    EXPECT_EQ(file.text({}), QStringLiteral("Free text\n"));
}

TEST(AnnotationTextTest, ReadsTheOthersWhereOneIsDamaged)
{
    AnnotatedFile file;
    file.add({100, 600, 200, 30}, "one");
    file.add({100, 500, 200, 30}, "no stream of zlib", {}, "/Filter/FlateDecode");
    file.add({100, 400, 200, 30}, "two");
    EXPECT_EQ(file.text(showText(72, 700, "Page")), QStringLiteral("Page\none\ntwo\n"));
}

TEST(AnnotationTextTest, ReadsAnnotationsOverDamagedContent)
{
    AnnotatedFile file;
    file.add({100, 600, 200, 30}, "note");
    EXPECT_EQ(
        file.text(showText(72, 700, "Page") + "BT /F1 12 Tf (never ended"), QStringLiteral("Page\nnote\n"));
}

TEST(AnnotationTextTest, KnowsWhereTheTextOfAFieldIs)
{
    for (const QByteArray turn : {"/Rotate 0", "/Rotate 90", "/Rotate 180"}) {
        AnnotatedFile file;
        file.add({150, 696, 200, 18}, "Jane");
        const auto page = file.page(showText(72, 700, "Name:"), turn);
        ASSERT_EQ(page->string(), QStringLiteral("Name: Jane\n")) << turn.toStdString();
        const QRectF value = page->selection({6, 4})->bounds(*page);
        EXPECT_TRUE(QRectF(150, 690, 50, 30).contains(value)) << turn.toStdString();
        const QRectF gap = page->selection({5, 1})->bounds(*page);
        EXPECT_NEAR(gap.right(), value.left(), 0.1) << turn.toStdString();
        EXPECT_GT(gap.width(), 30) << turn.toStdString();
        EXPECT_EQ(page->text()->characterIndex(value.center()), 8) << turn.toStdString();
    }
}

std::vector<QString> found(PDFDocument& document, const char* text)
{
    std::vector<QString> result;
    for (const PDFSelection& match : document.findString(QString::fromUtf8(text)))
        result.push_back(match.string());
    return result;
}

class ChangedTextTest : public testing::Test
{
protected:
    void SetUp() override
    {
        m_file.add("/FT/Tx/T(name)/DA(/Helv 12 Tf 0 g)/Rect[50 100 500 120]");
        m_page = m_file.document()->page(0);
    }

    QString text() { return m_page->string().value_or(QString()); }

    FormFile m_file;
    std::shared_ptr<PDFPage> m_page;
};

TEST_F(ChangedTextTest, HasTheValueThatAFieldWasGiven)
{
    EXPECT_EQ(text(), QString());
    ASSERT_TRUE(m_file.set("name", QStringLiteral("Jane")));
    EXPECT_EQ(text(), QStringLiteral("Jane\n"));
    ASSERT_TRUE(m_file.set("name", QStringLiteral("John")));
    EXPECT_EQ(text(), QStringLiteral("John\n"));
    ASSERT_TRUE(m_file.set("name", QString()));
    EXPECT_EQ(text(), QString());
}

TEST_F(ChangedTextTest, IsFoundByTheNextSearch)
{
    PDFDocument& document = *m_file.document();
    EXPECT_THAT(found(document, "Jane"), IsEmpty());
    ASSERT_TRUE(m_file.set("name", QStringLiteral("Jane Doe")));
    EXPECT_THAT(found(document, "Jane"), ElementsAre(QStringLiteral("Jane")));
    ASSERT_TRUE(m_file.set("name", QStringLiteral("John Doe")));
    EXPECT_THAT(found(document, "Jane"), IsEmpty());
    EXPECT_THAT(found(document, "Doe"), ElementsAre(QStringLiteral("Doe")));
}

TEST_F(ChangedTextTest, FollowsAnAnnotationThatIsAddedChangedMovedAndRemoved)
{
    PDFDocument& document = *m_file.document();
    ASSERT_TRUE(m_file.set("name", QStringLiteral("Jane")));
    const auto note =
        std::make_shared<PDFAnnotation>(QRectF(50, 300, 200, 30), PDFAnnotation::Subtype::freeText);
    note->setContents(QStringLiteral("Draft"));
    m_page->addAnnotation(note);
    EXPECT_EQ(text(), QStringLiteral("Draft\nJane\n"));
    EXPECT_THAT(found(document, "Draft"), ElementsAre(QStringLiteral("Draft")));

    note->setContents(QStringLiteral("Final"));
    EXPECT_EQ(text(), QStringLiteral("Final\nJane\n"));
    EXPECT_THAT(found(document, "Draft"), IsEmpty());
    EXPECT_THAT(found(document, "Final"), ElementsAre(QStringLiteral("Final")));

    note->setBounds({50, 20, 200, 30});
    EXPECT_EQ(text(), QStringLiteral("Jane\nFinal\n"));
    EXPECT_THAT(found(document, "Final"), ElementsAre(QStringLiteral("Final")));

    m_page->removeAnnotation(note);
    EXPECT_EQ(text(), QStringLiteral("Jane\n"));
    EXPECT_THAT(found(document, "Final"), IsEmpty());
}

TEST_F(ChangedTextTest, StaysTheSameObjectWhileNothingChanges)
{
    ASSERT_TRUE(m_file.set("name", QStringLiteral("Jane")));
    const auto text = m_page->text();
    EXPECT_EQ(m_page->text(), text);
    ASSERT_TRUE(m_file.set("name", QStringLiteral("John")));
    EXPECT_NE(m_page->text(), text);
}

} // namespace
} // namespace pdf
