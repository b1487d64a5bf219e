// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/FormFile.h"
#include "support/Printing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pdf {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

QStringList names(const std::vector<PDFFormField>& fields)
{
    QStringList result;
    for (const PDFFormField& field : fields)
        result.append(field.name);
    return result;
}

TEST(FormFieldsTest, TellsATextFieldWithItsPlaceAndValue)
{
    FormFile file;
    file.add("/FT/Tx/T(city)/TU(Where you live)/V(Larkspur)/Ff 2/MaxLen 30/Q 2");
    const auto fields = file.fields();
    ASSERT_EQ(fields.size(), 1u);
    EXPECT_EQ(fields[0].kind, FormFieldKind::text);
    EXPECT_EQ(fields[0].name, QStringLiteral("city"));
    EXPECT_EQ(fields[0].alternateName, QStringLiteral("Where you live"));
    EXPECT_EQ(fields[0].bounds, QRectF(100, 100, 100, 20));
    EXPECT_EQ(fields[0].text, QStringLiteral("Larkspur"));
    EXPECT_EQ(fields[0].maximumLength, 30);
    EXPECT_EQ(fields[0].alignment, FormFieldAlignment::right);
    EXPECT_TRUE(fields[0].isRequired);
    EXPECT_TRUE(fields[0].isFillable());
}

TEST(FormFieldsTest, TellsTheWaysOfATextField)
{
    FormFile file;
    file.add("/FT/Tx/T(lines)/Ff 4096");
    file.add("/FT/Tx/T(secret)/Ff 8192");
    file.add("/FT/Tx/T(cells)/Ff 16777216/MaxLen 5");
    file.add("/FT/Tx/T(cells without number)/Ff 16777216");
    const auto fields = file.fields();
    ASSERT_EQ(fields.size(), 4u);
    EXPECT_TRUE(fields[0].isMultiline);
    EXPECT_TRUE(fields[1].isPassword);
    EXPECT_TRUE(fields[2].isComb);
    EXPECT_FALSE(fields[3].isComb);
}

TEST(FormFieldsTest, ReadsTheStyleOfTheTextFromTheFieldOrTheForm)
{
    FormFile file;
    file.setFormEntries("/DA(/Cour 9 Tf 1 0 0 rg)/Q 1/DR<</Font<</Cour<</Type/Font/BaseFont/Courier>>>>>>");
    file.add("/FT/Tx/T(of the form)");
    file.add("/FT/Tx/T(of its own)/DA(0.5 g/Helv 0 Tf)/Q 0/MK<</BG[0 1 0]/BC[0]>>/BS<</W 2>>");
    const auto fields = file.fields();
    ASSERT_EQ(fields.size(), 2u);
    EXPECT_EQ(fields[0].fontName, QStringLiteral("Courier"));
    EXPECT_EQ(fields[0].fontSize, 9.0);
    EXPECT_EQ(fields[0].textColour, QColor(Qt::red));
    EXPECT_EQ(fields[0].alignment, FormFieldAlignment::centre);
    EXPECT_EQ(fields[0].borderWidth, 0.0);
    EXPECT_EQ(fields[1].fontSize, 0.0);
    EXPECT_EQ(fields[1].textColour, QColor::fromRgbF(0.5F, 0.5F, 0.5F));
    EXPECT_EQ(fields[1].alignment, FormFieldAlignment::left);
    EXPECT_EQ(fields[1].backgroundColour, QColor(Qt::green));
    EXPECT_EQ(fields[1].borderWidth, 2.0);
}

TEST(FormFieldsTest, InheritsFromParentsAndJoinsTheirNames)
{
    FormFile file;
    const int root = file.writer().add("null");
    const int widget = file.writer().add(
        "<</Type/Annot/Subtype/Widget/Rect[0 0 9 9]/T(street)/Parent " + QByteArray::number(root) + " 0 R>>");
    file.writer().replace(
        root, "<</FT/Tx/Ff 4096/V(Elm Street)/T(home)/Kids[" + QByteArray::number(widget) + " 0 R]>>");
    file.addToPage(widget);
    const auto fields = file.fields();
    ASSERT_EQ(fields.size(), 1u);
    EXPECT_EQ(fields[0].name, QStringLiteral("home.street"));
    EXPECT_EQ(fields[0].text, QStringLiteral("Elm Street"));
    EXPECT_TRUE(fields[0].isMultiline);
}

TEST(FormFieldsTest, TellsTheOptionsOfAComboBoxAndWhichIsChosen)
{
    FormFile file;
    file.add("/FT/Ch/Ff 131072/T(size)/Opt[[(s)(Small)][(l)(Large)]]/V(l)");
    file.add("/FT/Ch/Ff 393216/T(colour)/Opt[(Red)(Blue)]/V(Mauve)");
    const auto fields = file.fields();
    ASSERT_EQ(fields.size(), 2u);
    EXPECT_EQ(fields[0].kind, FormFieldKind::comboBox);
    EXPECT_THAT(
        fields[0].options, ElementsAre(
                               FormFieldOption{QStringLiteral("s"), QStringLiteral("Small")},
                               FormFieldOption{QStringLiteral("l"), QStringLiteral("Large")}));
    EXPECT_THAT(fields[0].selection, ElementsAre(1));
    EXPECT_EQ(fields[0].text, QStringLiteral("Large"));
    EXPECT_FALSE(fields[0].isEditable);
    EXPECT_TRUE(fields[1].isEditable);
    EXPECT_THAT(fields[1].selection, IsEmpty());
    EXPECT_EQ(fields[1].text, QStringLiteral("Mauve"));
}

TEST(FormFieldsTest, TellsTheSelectedOptionsOfAListBox)
{
    FormFile file;
    file.add("/FT/Ch/Ff 2097152/T(a)/Opt[(One)(Two)(Three)]/V[(Three)(One)]/I[0 2]");
    file.add("/FT/Ch/T(b)/Opt[(One)(Two)(Three)]/V(Two)");
    file.add("/FT/Ch/Ff 2097152/T(stale indices)/Opt[(One)(Two)(Three)]/V[(Two)]/I[0]");
    file.add("/FT/Ch/Ff 2097152/T(alike)/Opt[(One)(Same)(Same)]/V[(Same)]/I[2]");
    const auto fields = file.fields();
    ASSERT_EQ(fields.size(), 4u);
    EXPECT_TRUE(fields[0].isMultipleChoice);
    EXPECT_THAT(fields[0].selection, ElementsAre(0, 2));
    EXPECT_FALSE(fields[1].isMultipleChoice);
    EXPECT_THAT(fields[1].selection, ElementsAre(1));
    EXPECT_THAT(fields[2].selection, ElementsAre(1));
    EXPECT_THAT(fields[3].selection, ElementsAre(2));
}

TEST(FormFieldsTest, TellsWhichButtonsAreOn)
{
    FormFile file;
    file.add("/FT/Btn/T(box)/AS/On/V/On/AP<</N<</On null/Off null>>>>");
    file.add("/FT/Btn/T(without appearance)/V/Yes");
    file.add("/FT/Btn/Ff 49152/T(radio)/AS/Off/AP<</D<</Blue null>>>>");
    const auto fields = file.fields();
    ASSERT_EQ(fields.size(), 3u);
    EXPECT_EQ(fields[0].kind, FormFieldKind::checkBox);
    EXPECT_EQ(fields[0].onState, QByteArray("On"));
    EXPECT_TRUE(fields[0].isOn);
    EXPECT_TRUE(fields[1].isOn);
    EXPECT_EQ(fields[2].kind, FormFieldKind::radioButton);
    EXPECT_EQ(fields[2].onState, QByteArray("Blue"));
    EXPECT_FALSE(fields[2].isOn);
    EXPECT_FALSE(fields[2].canTurnOff);
}

TEST(FormFieldsTest, PushButtonsAndSignaturesAreNotForFilling)
{
    FormFile file;
    file.add("/FT/Btn/Ff 65536/T(push)");
    file.add("/FT/Sig/T(sign)");
    const auto fields = file.fields();
    ASSERT_EQ(fields.size(), 2u);
    EXPECT_EQ(fields[0].kind, FormFieldKind::pushButton);
    EXPECT_FALSE(fields[0].isFillable());
    EXPECT_EQ(fields[1].kind, FormFieldKind::signature);
    EXPECT_FALSE(fields[1].isFillable());
}

TEST(FormFieldsTest, KnowsWhatMayNotBeFilled)
{
    FormFile file;
    file.add("/FT/Tx/T(field says so)/Ff 1");
    file.add("/FT/Tx/T(annotation says so)/F 64");
    file.add("/FT/Tx/T(hidden)/F 2");
    for (const PDFFormField& field : file.fields())
        EXPECT_FALSE(field.isFillable()) << field.name.toStdString();
}

TEST(FormFieldsTest, ACertificateCanForbidToFillAnything)
{
    FormFile file;
    file.add("/FT/Tx/T(text)");
    // Ends the form's dictionary and goes on in the catalog.
    file.setFormEntries(">>/Perms<</DocMDP<</Reference[<</TransformParams<</P 1>>>>]>>");
    const auto fields = file.fields();
    ASSERT_EQ(fields.size(), 1u);
    EXPECT_TRUE(fields[0].isReadOnly);
}

TEST(FormFieldsTest, ReadsAValueThatIsAStreamAndLineEndsOfEveryKind)
{
    FormFile file;
    const int stream = file.writer().addStream("one\r\ntwo\rthree");
    file.add("/FT/Tx/T(a)/V " + QByteArray::number(stream) + " 0 R");
    const auto fields = file.fields();
    ASSERT_EQ(fields.size(), 1u);
    EXPECT_EQ(fields[0].text, QStringLiteral("one\ntwo\nthree"));
}

TEST(FormFieldsTest, ListsFieldsAsThePageDoesUnlessItAsksForRowsOrColumns)
{
    const auto order = [](const QByteArray& pageEntries) {
        FormFile file;
        file.setPageEntries(pageEntries);
        file.add("/FT/Tx/T(lower right)/Rect[300 100 400 120]");
        file.add("/FT/Tx/T(upper right)/Rect[300 198 400 218]");
        file.add("/FT/Tx/T(lower left)/Rect[100 103 200 123]");
        file.add("/FT/Tx/T(upper left)/Rect[100 200 200 220]");
        return names(file.fields()).join(QStringLiteral(", "));
    };
    EXPECT_EQ(order({}), QStringLiteral("lower right, upper right, lower left, upper left"));
    EXPECT_EQ(order("/Tabs/R"), QStringLiteral("upper left, upper right, lower left, lower right"));
    EXPECT_EQ(order("/Tabs/C"), QStringLiteral("upper left, lower left, upper right, lower right"));
    EXPECT_EQ(order("/Tabs/R/Rotate 90"), QStringLiteral("lower left, upper left, lower right, upper right"));
}

TEST(FormFieldsTest, SurvivesTreesThatGoInCircles)
{
    FormFile file;
    const int widget = file.add({});
    const QByteArray self = QByteArray::number(widget) + " 0 R";
    file.writer().replace(
        widget,
        "<</Subtype/Widget/Rect[0 0 9 9]/FT/Tx/Parent " + self + "/Kids[" + self + "]/V " + self + ">>");
    const auto fields = file.fields();
    ASSERT_EQ(fields.size(), 1u);
    EXPECT_EQ(fields[0].text, QString());
}

TEST(FormFieldsTest, ANodeThatIsItsOwnParentIsNamedOnce)
{
    FormFile file;
    const int root = file.writer().add("null");
    const QByteArray self = QByteArray::number(root) + " 0 R";
    file.writer().replace(root, "<</T(root)/Parent " + self + ">>");
    file.add("/FT/Tx/T(leaf)/Parent " + self);
    const auto fields = file.fields();
    ASSERT_EQ(fields.size(), 1u);
    EXPECT_EQ(fields[0].name, QStringLiteral("root.leaf"));
}

TEST(FormFieldsTest, ADocumentWithOnlyAnXFAFormSaysSo)
{
    FormFile empty;
    empty.setFormEntries("/XFA(form)");
    EXPECT_TRUE(empty.document()->isXFAOnly());

    FormFile hybrid;
    hybrid.setFormEntries("/XFA(form)");
    hybrid.add("/FT/Tx/T(text)");
    EXPECT_FALSE(hybrid.document()->isXFAOnly());

    FormFile plain;
    EXPECT_FALSE(plain.document()->isXFAOnly());
}

} // namespace
} // namespace pdf
