// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/FilledForm.h"
#include "pdf/FormFile.h"
#include "pdf/FormPictures.h"
#include "pdf/Tools.h"
#include "support/Printing.h"

#include <gtest/gtest.h>

// A form that was filled and saved has to be right for every other program.

namespace pdf {
namespace {

/// The sample form, which has fields of every kind.
QByteArray sampleForm()
{
    return readFile(QStringLiteral(QUILLO_SOURCE_DIR "/samples/form.pdf"));
}

/// What the sample form has not.
QByteArray specialForm()
{
    FormFile file;
    const auto place = [](int row, int height) {
        const int bottom = 720 - row * 40;
        return "/Rect[60 " + QByteArray::number(bottom) + " 260 " + QByteArray::number(bottom + height) + "]";
    };
    const QByteArray look = "/F 4/DA(/Helv 12 Tf 0 0 0.5 rg)/MK<</BC[0.5]/BG[1 1 0.9]>>";
    file.add("/FT/Tx/T(centred)/Q 1" + look + place(0, 20));
    file.add("/FT/Tx/T(right)/Q 2" + look + place(1, 20));
    file.add("/FT/Tx/T(fitted)/F 4/DA(/Helv 0 Tf 0 g)" + place(2, 26));
    file.add("/FT/Tx/T(fitted lines)/Ff 4096/F 4/DA(/TiRo 0 Tf 0 g)" + place(3, 32));
    file.add("/FT/Tx/T(short)/MaxLen 3" + look + place(4, 20));
    file.add("/FT/Tx/T(inset)/F 4/DA(/Cour 12 Tf 0 g)/MK<</BC[0]>>/BS<</W 2/S/I>>" + place(5, 24));
    file.add("/FT/Tx/T(read only)/Ff 1/V(as it is)" + look + place(6, 20));
    file.add("/FT/Tx/T(turned)/F 4/DA(/Helv 12 Tf 0 g)/MK<</R 90/BC[0]>>/Rect[300 600 320 700]");
    file.add("/FT/Ch/T(one of a list)/Opt[(One)(Two)(Three)]/F 4/DA(/Helv 12 Tf 0 g)/Rect[340 600 440 660]");
    file.add("/FT/Btn/T(cross)/F 4/MK<</BC[0]/CA(8)>>/Rect[300 560 316 576]");
    file.addWithWidgets(
        "/FT/Btn/Ff 49152/T(radio)/DA(/ZaDb 0 Tf 0 g)",
        {"/F 4/AS/Off/MK<</BC[0]>>/AP<</D<</A null>>>>/Rect[300 520 316 536]",
         "/F 4/AS/Off/MK<</BC[0]/CA(n)>>/AP<</D<</B null>>>>/Rect[330 520 346 536]"});
    file.addWithWidgets(
        "/FT/Tx/T(twice)/DA(/Helv 10 Tf 0 g)", {"/F 4/Rect[60 400 160 420]", "/F 4/Rect[180 400 280 420]"});
    return file.bytes();
}

/// A file whose cross-reference table is not where it says is repaired, and then written anew as a whole.
QByteArray inNeedOfRepair(QByteArray file)
{
    const auto place = file.lastIndexOf("startxref");
    return file.left(place) + "startxref\n7\n%%EOF\n";
}

struct Form
{
    const char* name;
    QByteArray (*bytes)();
    bool isRepaired;
};

void PrintTo(const Form& form, std::ostream* stream)
{
    *stream << form.name;
}

class FormSavingTest : public testing::TestWithParam<Form>
{
protected:
    void SetUp() override
    {
        const QByteArray bytes = GetParam().bytes();
        m_original = m_folder.write(
            QStringLiteral("original.pdf"), GetParam().isRepaired ? inNeedOfRepair(bytes) : bytes);
    }

    /// Fills every second field and saves the form.
    void fillAndSave(int remainder)
    {
        const auto document = PDFDocument::open(m_original);
        ASSERT_TRUE(document);
        m_fields = fillForm(**document, 1, [&](int number) { return number % 2 == remainder; });
        ASSERT_TRUE((*document)->write(m_saved));
        EXPECT_EQ(readFile(m_saved).startsWith(readFile(m_original)), !GetParam().isRepaired);
    }

    TestFolder m_folder;
    QString m_original;
    QString m_saved = m_folder.path(QStringLiteral("saved.pdf"));
    std::vector<FilledField> m_fields;
};

TEST_P(FormSavingTest, OtherProgramsReadTheValuesAndSeeThem)
{
    const FormPicture byPoppler(Renderer::poppler, m_original, 0);
    const FormPicture byPDFium(Renderer::pdfium, m_original, 0);
    for (const int remainder : {0, 1}) {
        SCOPED_TRACE(remainder == 0 ? "the first half of the fields" : "the other half");
        fillAndSave(remainder);
        ASSERT_FALSE(m_fields.empty());
        expectValuesForQpdf(m_saved, m_fields);
        expectTextsForPoppler(m_saved, m_fields);
        if (byPoppler.isDrawn()) {
            SCOPED_TRACE("Poppler");
            byPoppler.expectFilled(m_saved, m_fields);
        }
        if (byPDFium.isDrawn()) {
            SCOPED_TRACE("PDFium");
            byPDFium.expectFilled(m_saved, m_fields);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Forms, FormSavingTest,
    testing::Values(
        Form{"Sample", sampleForm, false}, Form{"SampleRepaired", sampleForm, true},
        Form{"Special", specialForm, false}),
    [](const auto& form) { return std::string(form.param.name); });

} // namespace
} // namespace pdf
