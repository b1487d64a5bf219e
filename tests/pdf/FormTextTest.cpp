// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/FormFile.h"
#include "pdf/PDFAnnotation.h"
#include "pdf/Tools.h"
#include "support/Printing.h"

#include <gtest/gtest.h>

#include <QRegularExpression>

#include <memory>

// What is typed has to be found again by programs that read the text of a page, and by this one.

namespace pdf {
namespace {

struct Sample
{
    const char* name;
    const char* text;
    /// Poppler turns the letters of an Arabic ligature round, and loses a space where the direction changes.
    bool isForPoppler = true;
    /// A word that is read from right to left comes apart in a line that begins otherwise.
    bool isForOwn = true;
};

void PrintTo(const Sample& sample, std::ostream* stream)
{
    *stream << sample.name;
}

const Sample samples[] = {
    {"Greek", "Ελληνικά: Ωμέγα, μέτρα"},
    {"Cyrillic", "Кириллица, Ёж"},
    {"Chinese", "中文輸入一人用手"},
    {"ChineseRadicals", "⽂⼈"},
    {"Arabic", "مرحبا بالعالم"},
    {"ArabicLigatures", "سلام الله", false},
    {"Hebrew", "שלום עולם"},
    {"Accents", "Zażółć gęślą jaźń"},
    {"LooseAccents", "x\u0308 q\u0301"},
    {"BeyondTheFirstPlane", "\U00010400\U00010428"},
    {"Mixed", "Ωμέγα, 中文 и é"},
    {"MixedDirections", "Ωμέγα مرحبا 中文", false, false},
};

/// Without the marks that programs put around text that is read from right to left.
QString withoutMarks(QString text)
{
    static const QRegularExpression marks(QStringLiteral("[\u200E\u200F\u202A-\u202E\u2066-\u2069]"));
    return text.remove(marks).simplified();
}

class FormTextTest : public testing::TestWithParam<Sample>
{
protected:
    QString sample() const { return QString::fromUtf8(GetParam().text); }

    void expectTextIn(const QString& path)
    {
        if (GetParam().isForPoppler)
            expectTextFrom("pdftotext", {path, m_found});
        expectTextFrom(
            "mutool", {QStringLiteral("draw"), QStringLiteral("-q"), QStringLiteral("-F"),
                       QStringLiteral("text"), QStringLiteral("-o"), m_found, path});
        if (!GetParam().isForOwn)
            return;
        const auto document = PDFDocument::open(path);
        ASSERT_TRUE(document);
        const auto own = (*document)->page(0)->string();
        EXPECT_EQ(withoutMarks(own.value_or(QString())).toStdString(), sample().toStdString());
    }

    TestFolder m_folder;
    QString m_path = m_folder.path(QStringLiteral("saved.pdf"));

private:
    /// The program, if it is installed, writes what it reads to m_found.
    void expectTextFrom(const char* program, const QStringList& arguments)
    {
        const auto result = runTool(QString::fromLatin1(program), arguments);
        if (!result)
            return;
        EXPECT_EQ(result->exitCode, 0) << result->output.toStdString();
        EXPECT_EQ(withoutMarks(QString::fromUtf8(readFile(m_found))).toStdString(), sample().toStdString())
            << program;
    }

    QString m_found = m_folder.path(QStringLiteral("found.txt"));
};

TEST_P(FormTextTest, TextOfAFieldIsFound)
{
    FormFile file;
    file.add("/FT/Tx/T(name)/DA(/Helv 12 Tf 0 g)/Rect[50 100 500 120]");
    ASSERT_TRUE(file.set("name", sample()));
    ASSERT_TRUE(file.document()->write(m_path));
    expectTextIn(m_path);
}

TEST_P(FormTextTest, TextOfAFreeTextIsFound)
{
    FormFile file;
    file.endPage();
    const auto document = file.document();
    const auto note =
        std::make_shared<PDFAnnotation>(QRectF(50, 100, 450, 40), PDFAnnotation::Subtype::freeText);
    note->setContents(sample());
    document->page(0)->addAnnotation(note);
    ASSERT_TRUE(document->write(m_path));
    expectTextIn(m_path);
}

INSTANTIATE_TEST_SUITE_P(Scripts, FormTextTest, testing::ValuesIn(samples), [](const auto& sample) {
    return std::string(sample.param.name);
});

} // namespace
} // namespace pdf
