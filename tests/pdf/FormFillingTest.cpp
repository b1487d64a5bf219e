// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/FormFile.h"
#include "pdf/Tools.h"
#include "support/Printing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pdf {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto radioFlags = "/Ff 49152";
constexpr auto freeRadioFlags = "/Ff 32768";
constexpr auto unisonFlags = "/Ff 33587200";

FormValue text(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

std::vector<bool> statesOf(FormFile& file)
{
    std::vector<bool> states;
    for (const PDFFormField& field : file.fields())
        states.push_back(field.isOn);
    return states;
}

void expectRefusal(const Result<std::vector<int>>& result)
{
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().code, PDFError::Code::refused) << result.error().message.toStdString();
}

TEST(FormFillingTest, ATextFieldTakesATextAndShowsIt)
{
    FormFile file;
    file.add("/FT/Tx/T(name)/DA(/Helv 12 Tf 0 g)");
    EXPECT_EQ(darkPixels(file.picture()), 0);
    const auto pages = file.set("name", text("Larkspur"));
    ASSERT_TRUE(pages);
    EXPECT_THAT(*pages, ElementsAre(0));
    EXPECT_EQ(file.field("name").text, QStringLiteral("Larkspur"));
    EXPECT_GT(darkPixels(file.pictureOf(file.field("name"))), 50);
    EXPECT_TRUE(file.document()->isModified());
}

TEST(FormFillingTest, AnOldTextIsGoneFromThePicture)
{
    FormFile file;
    file.add("/FT/Tx/T(name)/DA(/Helv 12 Tf 0 g)/V(Something long)");
    ASSERT_TRUE(file.set("name", text("i")));
    const int little = darkPixels(file.picture());
    EXPECT_GT(little, 0);
    EXPECT_LT(little, 30);
    ASSERT_TRUE(file.set("name", text("")));
    EXPECT_EQ(darkPixels(file.picture()), 0);
}

TEST(FormFillingTest, SettingTheValueThatIsThereChangesNothing)
{
    FormFile file;
    file.add("/FT/Tx/T(name)/V(as it was)");
    const auto pages = file.set("name", text("as it was"));
    ASSERT_TRUE(pages);
    EXPECT_THAT(*pages, IsEmpty());
    EXPECT_FALSE(file.document()->isModified());
}

TEST(FormFillingTest, TextInAnyScriptIsShown)
{
    for (const char* sample : {"Ελληνικά", "Кириллица", "中文輸入", "مرحبا", "😀 face"}) {
        FormFile file;
        file.add("/FT/Tx/T(name)/DA(/Helv 12 Tf 0 g)");
        ASSERT_TRUE(file.set("name", text(sample))) << sample;
        EXPECT_EQ(file.field("name").text, QString::fromUtf8(sample));
        EXPECT_GT(darkPixels(file.pictureOf(file.field("name"))), 30) << sample;
    }
}

TEST(FormFillingTest, RefusesWhatIsReadOnly)
{
    FormFile file;
    file.add("/FT/Tx/T(name)/Ff 1/V(old)");
    expectRefusal(file.set("name", text("new")));
    EXPECT_EQ(file.field("name").text, QStringLiteral("old"));
    EXPECT_FALSE(file.document()->isModified());
}

TEST(FormFillingTest, RefusesMoreCharactersThanTheMaximum)
{
    FormFile file;
    file.add("/FT/Tx/T(name)/MaxLen 3");
    expectRefusal(file.set("name", text("four")));
    EXPECT_TRUE(file.set("name", text("中文😀")));
}

TEST(FormFillingTest, RefusesAValueOfAnotherKind)
{
    FormFile file;
    file.add("/FT/Tx/T(text)");
    file.add("/FT/Btn/T(box)");
    file.add("/FT/Btn/Ff 65536/T(push)");
    expectRefusal(file.set("text", FormValue(true)));
    expectRefusal(file.set("box", text("Yes")));
    expectRefusal(file.set("push", FormValue(true)));
}

TEST(FormFillingTest, RefusesAWidgetThatIsNotThere)
{
    FormFile file;
    file.add("/FT/Tx/T(text)");
    expectRefusal(file.document()->setFormValue({0, 9999, 0}, text("x")));
    expectRefusal(file.document()->setFormValue({7, 9999, 0}, text("x")));
    expectRefusal(file.document()->setFormValue({0, 0, 5}, text("x")));
}

TEST(FormFillingTest, FillsAWidgetThatIsNoObjectOfItsOwn)
{
    FormFile file;
    file.setPageEntries("/Annots[<</Subtype/Widget/FT/Tx/T(inline)/Rect[10 10 90 30]>>]");
    ASSERT_TRUE(file.set("inline", text("direct")));
    EXPECT_EQ(file.field("inline").text, QStringLiteral("direct"));
    EXPECT_GT(darkPixels(file.picture()), 30);
}

TEST(FormFillingTest, AOneLineFieldTurnsLineFeedsIntoSpaces)
{
    FormFile file;
    file.add("/FT/Tx/T(one)");
    file.add("/FT/Tx/Ff 4096/T(many)");
    ASSERT_TRUE(file.set("one", text("a\nb")));
    ASSERT_TRUE(file.set("many", text("a\r\nb")));
    EXPECT_EQ(file.field("one").text, QStringLiteral("a b"));
    EXPECT_EQ(file.field("many").text, QStringLiteral("a\nb"));
}

TEST(FormFillingTest, AllWidgetsOfAFieldShowItsValue)
{
    FormFile file;
    file.addWithWidgets("/FT/Tx/T(name)", {"/Rect[10 10 90 30]", "/Rect[10 40 90 60]/V(stale)"});
    // A second node of the same name is the same field.
    file.add("/FT/Tx/T(name)/Rect[10 70 90 90]");
    file.add("/FT/Tx/T(name2)/V(other)");
    ASSERT_TRUE(file.set("name", text("all")));
    const auto fields = file.fields();
    ASSERT_EQ(fields.size(), 4u);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(fields[i].text, QStringLiteral("all"));
        EXPECT_GT(darkPixels(file.pictureOf(fields[i])), 10);
    }
    EXPECT_EQ(fields[3].text, QStringLiteral("other"));
}

TEST(FormFillingTest, TellsTheOtherPagesOnWhichTheFieldIsShown)
{
    FormFile file;
    const auto widgets = file.addWithWidgets("/FT/Tx/T(name)", {"", ""});
    const int second = file.writer().addPage({}, "/Annots[" + QByteArray::number(widgets[1]) + " 0 R]");
    file.writer().replace(
        widgets[1], "<</Subtype/Widget/Rect[0 0 90 20]/Parent " + QByteArray::number(widgets[0] - 1) +
                        " 0 R/P " + QByteArray::number(second) + " 0 R>>");
    // The writer puts the second page first.
    const auto fields = file.document()->page(1)->formFields();
    ASSERT_TRUE(fields);
    const auto pages = file.document()->setFormValue(fields->front().widget, text("both"));
    ASSERT_TRUE(pages);
    EXPECT_THAT(*pages, testing::UnorderedElementsAre(0, 1));
}

TEST(FormFillingTest, ACheckBoxGoesOnAndOff)
{
    FormFile file;
    file.add("/FT/Btn/T(box)/Rect[10 10 30 30]/MK<</BC[0]/CA(4)>>");
    const int empty = darkPixels(file.picture());
    ASSERT_TRUE(file.set("box", FormValue(true)));
    EXPECT_TRUE(file.field("box").isOn);
    EXPECT_GT(darkPixels(file.picture()), empty + 20);
    ASSERT_TRUE(file.set("box", FormValue(false)));
    EXPECT_FALSE(file.field("box").isOn);
}

TEST(FormFillingTest, ACheckBoxIsDrawnAnewWhereItsAppearanceCannotBeShown)
{
    FormFile file;
    const int stream = file.writer().addStream("0 0 20 20 re f", "/Subtype/Form");
    file.add(
        "/FT/Btn/T(box)/Rect[10 10 30 30]/AS/Off/AP<</N<</On " + QByteArray::number(stream) + " 0 R>>>>");
    ASSERT_TRUE(file.set("box", FormValue(true)));
    EXPECT_EQ(file.field("box").onState, QByteArray("On"));
    EXPECT_GT(darkPixels(file.picture()), 20);
}

TEST(FormFillingTest, CheckBoxesOfOneNameGoTogetherWhereTheirStatesAreAlike)
{
    FormFile file;
    file.add("/FT/Btn/T(box)/AP<</N<</A null>>>>/AS/Off");
    file.add("/FT/Btn/T(box)/AP<</N<</A null>>>>/AS/Off");
    file.add("/FT/Btn/T(box)/AP<</N<</B null>>>>/AS/B/V/B");
    ASSERT_TRUE(file.set("box", FormValue(true)));
    EXPECT_THAT(statesOf(file), ElementsAre(true, true, false));
}

TEST(FormFillingTest, ARadioButtonTurnsTheOthersOff)
{
    FormFile file;
    file.addWithWidgets(
        QByteArray("/FT/Btn/T(radio)/V/A") + radioFlags,
        {"/AS/A/AP<</D<</A null>>>>", "/AS/Off/AP<</D<</B null>>>>", "/AS/Off/AP<</D<</C null>>>>"});
    ASSERT_TRUE(file.document()->setFormValue(file.fields()[2].widget, FormValue(true)));
    EXPECT_THAT(statesOf(file), ElementsAre(false, false, true));
}

TEST(FormFillingTest, ARadioButtonStaysOnWhereTheGroupWantsOne)
{
    FormFile file;
    file.addWithWidgets(QByteArray("/FT/Btn/T(radio)") + radioFlags, {"/AS/A/AP<</D<</A null>>>>"});
    expectRefusal(file.set("radio", FormValue(false)));
    FormFile other;
    other.addWithWidgets(QByteArray("/FT/Btn/T(radio)") + freeRadioFlags, {"/AS/A/AP<</D<</A null>>>>"});
    ASSERT_TRUE(other.set("radio", FormValue(false)));
    EXPECT_THAT(statesOf(other), ElementsAre(false));
}

TEST(FormFillingTest, RadioButtonsWithOneStateGoTogetherOnlyInUnison)
{
    const std::vector<QByteArray> widgets = {
        "/AS/Off/AP<</D<</A null>>>>", "/AS/Off/AP<</D<</A null>>>>", "/AS/Off/AP<</D<</B null>>>>"};
    FormFile apart;
    apart.addWithWidgets(QByteArray("/FT/Btn/T(radio)") + freeRadioFlags, widgets);
    ASSERT_TRUE(apart.set("radio", FormValue(true)));
    EXPECT_THAT(statesOf(apart), ElementsAre(true, false, false));

    FormFile together;
    together.addWithWidgets(QByteArray("/FT/Btn/T(radio)") + unisonFlags, widgets);
    ASSERT_TRUE(together.set("radio", FormValue(true)));
    EXPECT_THAT(statesOf(together), ElementsAre(true, true, false));
}

TEST(FormFillingTest, AComboBoxTakesItsOptionsAndOnlyAnEditableOneOtherTexts)
{
    FormFile file;
    file.add("/FT/Ch/Ff 131072/T(fixed)/Opt[[(s)(Small)][(l)(Large)]]");
    file.add("/FT/Ch/Ff 393216/T(free)/Opt[[(s)(Small)][(l)(Large)]]");
    ASSERT_TRUE(file.set("fixed", FormValue(std::vector<int>{1})));
    EXPECT_EQ(file.field("fixed").text, QStringLiteral("Large"));
    ASSERT_TRUE(file.set("fixed", text("Small")));
    EXPECT_THAT(file.field("fixed").selection, ElementsAre(0));
    expectRefusal(file.set("fixed", text("Medium")));
    expectRefusal(file.set("fixed", FormValue(std::vector<int>{2})));
    expectRefusal(file.set("fixed", FormValue(std::vector<int>{0, 1})));
    ASSERT_TRUE(file.set("free", text("Medium")));
    EXPECT_EQ(file.field("free").text, QStringLiteral("Medium"));
    EXPECT_THAT(file.field("free").selection, IsEmpty());
}

TEST(FormFillingTest, AListBoxTakesSeveralOptionsOnlyWhereItMay)
{
    FormFile file;
    file.add("/FT/Ch/T(one)/Opt[(A)(B)(C)]/Rect[0 0 100 60]");
    file.add("/FT/Ch/Ff 2097152/T(many)/Opt[(A)(Same)(Same)]/Rect[0 100 100 160]");
    ASSERT_TRUE(file.set("one", FormValue(std::vector<int>{2})));
    EXPECT_THAT(file.field("one").selection, ElementsAre(2));
    expectRefusal(file.set("one", FormValue(std::vector<int>{0, 1})));
    ASSERT_TRUE(file.set("many", FormValue(std::vector<int>{2, 0, 2})));
    EXPECT_THAT(file.field("many").selection, ElementsAre(0, 2));
    ASSERT_TRUE(file.set("many", FormValue(std::vector<int>())));
    EXPECT_THAT(file.field("many").selection, IsEmpty());
}

TEST(FormFillingTest, ATextTooWideForItsFieldIsMadeSmallerWhereTheSizeIsAutomatic)
{
    FormFile file;
    file.add("/FT/Tx/T(auto)/DA(/Helv 0 Tf 0 g)");
    file.add("/FT/Tx/T(fixed)/DA(/Helv 12 Tf 0 g)/Rect[100 200 200 220]");
    const char* wide = "mmmmmmmmmmmmmmmmmmmmmmm|";
    ASSERT_TRUE(file.set("auto", text(wide)));
    ASSERT_TRUE(file.set("fixed", text(wide)));
    const auto rightEdge = [&](const char* name) {
        const QImage image = file.pictureOf(file.field(name));
        return darkPixels(image.copy(image.width() - 8, 0, 6, image.height()));
    };
    // What does not fit is cut off at the edge; what fits leaves the edge free but for the bar at its end.
    EXPECT_LT(rightEdge("auto"), rightEdge("fixed"));
}

TEST(FormFillingTest, TextStandsWhereTheAlignmentPutsIt)
{
    const auto middleOfInk = [](const QByteArray& quadding) {
        FormFile file;
        file.add("/FT/Tx/T(a)/DA(/Helv 12 Tf 0 g)/Q " + quadding);
        EXPECT_TRUE(file.set("a", FormValue(QStringLiteral("II"))));
        const QImage image = file.pictureOf(file.field("a"));
        qint64 sum = 0;
        int count = 0;
        for (int x = 0; x < image.width(); ++x) {
            const int ink = darkPixels(image.copy(x, 0, 1, image.height()));
            sum += x * ink;
            count += ink;
        }
        return count == 0 ? -1 : static_cast<int>(sum / count);
    };
    EXPECT_NEAR(middleOfInk("0"), 5, 3);
    EXPECT_NEAR(middleOfInk("1"), 50, 3);
    EXPECT_NEAR(middleOfInk("2"), 95, 3);
}

TEST(FormFillingTest, CharactersOfACombStandInTheirCells)
{
    FormFile file;
    file.add("/FT/Tx/T(zip)/Ff 16777216/MaxLen 4/DA(/Helv 12 Tf 0 g)");
    ASSERT_TRUE(file.set("zip", text("I I")));
    const QImage image = file.pictureOf(file.field("zip"));
    EXPECT_GT(darkPixels(image.copy(9, 0, 8, 20)), 3);
    EXPECT_EQ(darkPixels(image.copy(25, 0, 25, 20)), 0);
    EXPECT_GT(darkPixels(image.copy(59, 0, 8, 20)), 3);
    EXPECT_EQ(darkPixels(image.copy(75, 0, 25, 20)), 0);
}

TEST(FormFillingTest, APasswordIsShownAsBullets)
{
    FormFile file;
    file.add("/FT/Tx/Ff 8192/T(one)/DA(/Helv 12 Tf 0 g)");
    file.add("/FT/Tx/Ff 8192/T(two)/DA(/Helv 12 Tf 0 g)/Rect[100 200 200 220]");
    ASSERT_TRUE(file.set("one", text("iii")));
    ASSERT_TRUE(file.set("two", text("WWW")));
    EXPECT_EQ(file.pictureOf(file.field("one")), file.pictureOf(file.field("two")));
    EXPECT_GT(darkPixels(file.pictureOf(file.field("one"))), 10);
}

TEST(FormFillingTest, LongTextIsWrappedInAFieldOfSeveralLines)
{
    FormFile file;
    file.add("/FT/Tx/Ff 4096/T(a)/DA(/Helv 10 Tf 0 g)/Rect[100 100 200 160]");
    ASSERT_TRUE(file.set("a", text("several words that do not fit into one line\nend")));
    const QImage image = file.pictureOf(file.field("a"));
    int rowsOfText = 0;
    bool wasInk = false;
    for (int y = 0; y < image.height(); ++y) {
        const bool isInk = darkPixels(image.copy(0, y, image.width(), 1)) > 0;
        rowsOfText += isInk && !wasInk;
        wasInk = isInk;
    }
    EXPECT_GE(rowsOfText, 3);
}

TEST(FormFillingTest, BackgroundAndBorderStay)
{
    FormFile file;
    file.add("/FT/Tx/T(a)/MK<</BG[1 1 0]/BC[1 0 0]>>/BS<</W 2>>");
    ASSERT_TRUE(file.set("a", text("")));
    ASSERT_TRUE(file.set("a", text("x")));
    const QImage image = file.pictureOf(file.field("a"));
    EXPECT_EQ(QColor(image.pixel(1, 10)), QColor(Qt::red));
    EXPECT_EQ(QColor(image.pixel(80, 10)), QColor(Qt::yellow));
}

TEST(FormFillingTest, AFieldThatIsTurnedIsReadFromTheSide)
{
    FormFile file;
    file.add("/FT/Tx/T(a)/DA(/Helv 12 Tf 0 g)/MK<</R 90>>/Rect[100 100 120 200]");
    ASSERT_TRUE(file.set("a", text("Upwards")));
    const QImage image = file.pictureOf(file.field("a"));
    // The text begins at the lower end.
    EXPECT_GT(darkPixels(image.copy(0, 60, 20, 40)), 20);
    EXPECT_EQ(darkPixels(image.copy(0, 0, 20, 40)), 0);
}

TEST(FormFillingTest, PutsNothingIntoTheFormThatIsNoField)
{
    FormFile file;
    const int stream = file.writer().addStream("q Q", "/T(no field)");
    const int field = file.add("/T(field)/FT/Tx/Parent " + QByteArray::number(stream) + " 0 R");
    EXPECT_EQ(file.field("field").name, QStringLiteral("field"));
    ASSERT_TRUE(file.set("field", text("typed")));
    const TestFolder folder;
    const QString saved = folder.path(QStringLiteral("saved.pdf"));
    ASSERT_TRUE(file.document()->write(saved));
    const QByteArray bytes = readFile(saved);
    const auto fields = bytes.mid(bytes.lastIndexOf("/Fields["));
    EXPECT_EQ(fields.left(fields.indexOf(']')), "/Fields[" + QByteArray::number(field) + " 0 R");
}

TEST(FormFillingTest, LeavesScriptsAlone)
{
    FormFile file;
    file.add("/FT/Tx/T(source)/AA<</V<</S/JavaScript/JS(event.rc=false;)>>/K<</S/JavaScript/"
             "JS(event.rc=false)>>>>");
    file.add("/FT/Tx/T(sum)/V(1)/AA<</C<</S/JavaScript/JS(event.value=2;)>>>>");
    ASSERT_TRUE(file.set("source", text("5")));
    EXPECT_EQ(file.field("source").text, QStringLiteral("5"));
    EXPECT_EQ(file.field("sum").text, QStringLiteral("1"));
}

} // namespace
} // namespace pdf
