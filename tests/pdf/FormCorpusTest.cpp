// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/FilledForm.h"
#include "pdf/FormPictures.h"
#include "pdf/Tools.h"
#include "support/Corpus.h"
#include "support/PDFWriter.h"
#include "support/Printing.h"

#include <gtest/gtest.h>

#include <iostream>
#include <set>

namespace pdf {
namespace {

// Of a file; forms are not longer.
constexpr int pages = 50;

struct Tally
{
    int files = 0;
    std::size_t fields = 0;
    int readByQpdf = 0;
    int readByPoppler = 0;
    int drawnByPoppler = 0;
    int drawnByPDFium = 0;
};

/// The forms among every eighth file.
class FormCorpusTest : public testing::TestWithParam<int>
{
protected:
    void check(const QString& path)
    {
        const auto document = PDFDocument::open(path);
        if (!document)
            return;
        const auto fields = fillForm(**document, pages);
        if (fields.empty())
            return;
        const QString saved = m_folder.path(QStringLiteral("saved.pdf"));
        ASSERT_TRUE((*document)->write(saved, Overwrite::always));
        ++m_tally.files;
        m_tally.fields += fields.size();
        EXPECT_EQ(programsLost(path, saved), QStringList());
        if (expectValuesForQpdf(saved, fields))
            m_tally.readByQpdf += static_cast<int>(fields.size());
        m_tally.readByPoppler += expectTextsForPoppler(saved, fields);
        std::set<int> filledPages;
        for (const auto& [before, after] : fields)
            filledPages.insert(after.widget.page);
        for (const int page : filledPages) {
            m_tally.drawnByPoppler += look(Renderer::poppler, path, saved, page, fields);
            m_tally.drawnByPDFium += look(Renderer::pdfium, path, saved, page, fields);
        }
    }

    static int look(
        Renderer renderer, const QString& path, const QString& saved, int page,
        const std::vector<FilledField>& fields)
    {
        SCOPED_TRACE(renderer == Renderer::poppler ? "Poppler" : "PDFium");
        const FormPicture picture(renderer, path, page);
        return picture.isDrawn() ? picture.expectFilled(saved, fields) : 0;
    }

    TestFolder m_folder;
    Tally m_tally;
};

TEST_P(FormCorpusTest, FilledFormsAreReadByOtherPrograms)
{
    const QStringList files = corpusFiles();
    if (files.isEmpty())
        GTEST_SKIP() << "there are no files at " QUILLO_CORPUS;
    for (int i = GetParam(); i < files.size(); i += 8) {
        SCOPED_TRACE(files[i].toStdString());
        check(files[i]);
    }
    std::cout << m_tally.files << " forms, " << m_tally.fields << " fields filled; values read by qpdf "
              << m_tally.readByQpdf << ", texts by pdftotext " << m_tally.readByPoppler
              << ", fields seen in Poppler " << m_tally.drawnByPoppler << ", in PDFium "
              << m_tally.drawnByPDFium << "\n";
}

INSTANTIATE_TEST_SUITE_P(Eighths, FormCorpusTest, testing::Range(0, 8));

} // namespace
} // namespace pdf
