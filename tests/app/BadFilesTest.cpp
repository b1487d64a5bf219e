// SPDX-License-Identifier: AGPL-3.0-or-later
#include "app/DocumentVisit.h"
#include "pdf/PDFDocument.h"
#include "pdf/Tools.h"
#include "support/PDFWriter.h"
#include "support/Printing.h"

#include <gtest/gtest.h>

#include <QFile>

#include <functional>

namespace quillo {
namespace {

/// A document of pages with text and a form field, so that there is something to do on it.
QByteArray soundDocument(int pages, const QByteArray& pageEntries = {}, const QByteArray& catalog = {})
{
    PDFWriter writer;
    const int field =
        writer.add("<</Type/Annot/Subtype/Widget/FT/Tx/T(name)/DA(/F1 12 Tf 0 g)/Rect[72 600 300 620]>>");
    const QByteArray reference = QByteArray::number(field) + " 0 R";
    for (int page = 0; page < pages; ++page) {
        writer.addPage(
            showText(72, 700, "Sentence on page " + QByteArray::number(page + 1)),
            pageEntries + (page == 0 ? "/Annots[" + reference + "]" : QByteArray()));
    }
    writer.setCatalog("/AcroForm<</Fields[" + reference + "]>>" + catalog);
    return writer.bytes();
}

/// What qpdf makes of a sound document.
QByteArray encryptedDocument(const QString& password)
{
    const TestFolder folder;
    const QString plain = folder.write(QStringLiteral("plain.pdf"), soundDocument(2));
    const QString encrypted = folder.path(QStringLiteral("encrypted.pdf"));
    const auto result = runTool(
        QStringLiteral("qpdf"), {QStringLiteral("--encrypt"), password, QStringLiteral("owner"),
                                 QStringLiteral("256"), QStringLiteral("--"), plain, encrypted});
    return result ? readFile(encrypted) : QByteArray();
}

/// Hebrew, by a font that says what its letters are.
QByteArray rightToLeftDocument()
{
    PDFWriter writer;
    const int unicode =
        writer.addStream("/CIDInit /ProcSet findresource begin 12 dict begin begincmap\n"
                         "1 begincodespacerange <00> <FF> endcodespacerange\n"
                         "2 beginbfrange <20> <40> <0020> <41> <5A> <05D0> endbfrange\nendcmap end end");
    const int font = writer.add(
        "<</Type/Font/Subtype/Type1/BaseFont/Courier/ToUnicode " + QByteArray::number(unicode) + " 0 R>>");
    writer.setFonts("/F2 " + QByteArray::number(font) + " 0 R");
    writer.setCatalog("/ViewerPreferences<</Direction/R2L>>");
    for (int page = 0; page < 3; ++page)
        writer.addPage("BT /F2 10 Tf 400 700 Td (MOLA DCBA) Tj ET");
    return writer.bytes();
}

QByteArray withBoxes(const QByteArray& boxes)
{
    return soundDocument(3, boxes);
}

struct BadFile
{
    const char* name;
    std::function<QByteArray()> bytes;
    /// Whether it is shown or refused; absent where either is good enough.
    std::optional<bool> isShown;
};

void PrintTo(const BadFile& file, std::ostream* stream)
{
    *stream << file.name;
}

const std::vector<BadFile>& badFiles()
{
    static const std::vector<BadFile> files{
        {"Empty", [] { return QByteArray(); }, false},
        {"OfZeros", [] { return QByteArray(10'000, '\0'); }, false},
        {"HeaderOnly", [] { return QByteArray("%PDF-1.7\n"); }, false},
        {"WithoutPages", [] { return PDFWriter().bytes(); }, {}},
        {"WithBytesInFront", [] { return QByteArray(500, 'x') + '\n' + soundDocument(2); }, true},
        {"ZeroSizedPages", [] { return withBoxes("/MediaBox[0 0 0 0]"); }, true},
        {"PagesWithoutHeight", [] { return withBoxes("/MediaBox[0 0 600 0]"); }, true},
        {"PagesOfAHair", [] { return withBoxes("/MediaBox[0 0 0.001 700]"); }, true},
        {"BoxesUpsideDown", [] { return withBoxes("/MediaBox[600 700 0 0]"); }, true},
        {"BoxesWithoutMeasure", [] { return withBoxes("/MediaBox[-1e9 -1e9 1e9 1e9]"); }, true},
        {"BoxesBeyondNumbers",
         [] { return withBoxes("/MediaBox[0 0 99999999999999999999999999999999999999999 1e99]"); }, true},
        {"BoxesOfWords", [] { return withBoxes("/MediaBox[(a)/b null true]"); }, true},
        {"BoxesTooShort", [] { return withBoxes("/MediaBox[0 0]"); }, true},
        {"CropBoxElsewhere", [] { return withBoxes("/MediaBox[0 0 600 700]/CropBox[5000 5000 6000 6000]"); },
         true},
        {"CropBoxOfNothing", [] { return withBoxes("/MediaBox[0 0 600 700]/CropBox[300 300 300 300]"); },
         true},
        {"HugeUnits", [] { return withBoxes("/UserUnit 1e30"); }, true},
        {"NegativeUnits", [] { return withBoxes("/UserUnit -5"); }, true},
        {"AThousandPages", [] { return soundDocument(1000); }, true},
        {"RightToLeft", [] { return rightToLeftDocument(); }, true},
        {"TurnedRight", [] { return withBoxes("/Rotate 90"); }, true},
        {"TurnedLeft", [] { return withBoxes("/Rotate -90"); }, true},
        {"TurnedOver", [] { return withBoxes("/Rotate 540"); }, true},
        {"TurnedALittle", [] { return withBoxes("/Rotate 37"); }, true},
        {"EncryptedWithoutPassword", [] { return encryptedDocument(QString()); }, true},
        {"EncryptedWithPassword", [] { return encryptedDocument(QStringLiteral("secret")); }, false},
    };
    return files;
}

class BadFilesTest : public testing::Test
{
protected:
    /// Does everything with the file that is on the screen, and saves it.
    void use()
    {
        m_visit.scrollThrough(0.5, 10);
        m_visit.scrollThrough(2.5, 10);
        m_visit.search();
        m_visit.typeIntoFields(2);
        m_saved = m_folder.path(QStringLiteral("saved.pdf"));
        const auto written = m_visit.save(m_saved);
        EXPECT_TRUE(written) << written.error().message.toStdString();
    }

    TestFolder m_folder;
    DocumentVisit m_visit;
    QString m_saved;
};

class BadFileTest : public BadFilesTest, public testing::WithParamInterface<BadFile>
{
};

TEST_P(BadFileTest, IsShownAndSavedOrRefused)
{
    const QByteArray bytes = GetParam().bytes();
    const QString path = m_folder.write(QStringLiteral("bad.pdf"), bytes);
    const bool isShown = m_visit.open(path);
    EXPECT_EQ(isShown, GetParam().isShown.value_or(isShown));
    if (!isShown)
        return;
    use();
    EXPECT_EQ(programsLost(path, m_saved).join(u' '), QString());
    EXPECT_EQ(readFile(path), bytes) << "the file itself is left alone";
}

INSTANTIATE_TEST_SUITE_P(Every, BadFileTest, testing::ValuesIn(badFiles()), [](const auto& parameter) {
    return std::string(parameter.param.name);
});

TEST_F(BadFilesTest, AFileThatBreaksOffIsShownAsFarAsItGoesAndSaved)
{
    const QByteArray whole = soundDocument(10);
    int shown = 0;
    for (int tenth = 1; tenth < 10; ++tenth) {
        SCOPED_TRACE(tenth);
        const QString name = QStringLiteral("cut %1.pdf").arg(tenth);
        const QString path = m_folder.write(name, whole.first(whole.size() * tenth / 10));
        if (!m_visit.open(path))
            continue;
        ++shown;
        use();
        EXPECT_EQ(programsLost(path, m_saved).join(u' '), QString());
    }
    EXPECT_GE(shown, 3);
}

TEST_F(BadFilesTest, AFileThatNobodyMayWriteIsShownAndSavedElsewhere)
{
    const QString path = m_folder.write(QStringLiteral("read only.pdf"), soundDocument(2));
    QFile::setPermissions(path, QFile::ReadOwner);
    ASSERT_TRUE(m_visit.open(path));
    use();
    EXPECT_EQ(programsAgainst(m_saved).join(u' '), QString());
}

struct Change
{
    const char* name;
    std::function<void(const QString& path)> make;
};

void PrintTo(const Change& change, std::ostream* stream)
{
    *stream << change.name;
}

class ChangedFileTest : public BadFilesTest, public testing::WithParamInterface<Change>
{
};

TEST_P(ChangedFileTest, DoesNoHarm)
{
    const QString path = m_folder.write(QStringLiteral("changing.pdf"), soundDocument(200));
    ASSERT_TRUE(m_visit.open(path));
    GetParam().make(path);
    const bool isThere = QFile::exists(path);
    const QByteArray changed = isThere ? readFile(path) : QByteArray();

    m_visit.scrollThrough(0.5, 10);
    m_visit.typeIntoFields(1);
    const QString copy = m_folder.path(QStringLiteral("copy.pdf"));
    // What was opened is saved whole, or it is said that it cannot be.
    if (const auto written = m_visit.save(copy)) {
        EXPECT_EQ(programsAgainst(copy).join(u' '), QString());
        const auto again = pdf::PDFDocument::open(copy);
        ASSERT_TRUE(again);
        EXPECT_EQ((*again)->pageCount(), 200);
    } else {
        EXPECT_NE(written.error().message, QString());
        EXPECT_FALSE(QFile::exists(copy));
    }
    EXPECT_EQ(QFile::exists(path), isThere);
    if (isThere) {
        EXPECT_EQ(readFile(path), changed) << "what somebody else has written stays";
    }
}

INSTANTIATE_TEST_SUITE_P(
    Every, ChangedFileTest,
    testing::Values(
        Change{"Removed", [](const QString& path) { EXPECT_TRUE(QFile::remove(path)); }},
        Change{
            "CutShort",
            [](const QString& path) { EXPECT_TRUE(QFile::resize(path, QFile(path).size() / 2)); }},
        Change{"Emptied", [](const QString& path) { EXPECT_TRUE(QFile::resize(path, 0)); }},
        Change{
            "Overwritten",
            [](const QString& path) {
                QFile file(path);
                EXPECT_TRUE(file.open(QIODevice::ReadWrite));
                file.write(QByteArray(static_cast<int>(file.size()), 'x'));
            }},
        Change{
            "Replaced",
            [](const QString& path) {
                QFile file(path);
                EXPECT_TRUE(file.remove() && file.open(QIODevice::WriteOnly));
                file.write(soundDocument(3));
            }},
        Change{
            "Lengthened",
            [](const QString& path) {
                QFile file(path);
                EXPECT_TRUE(file.open(QIODevice::Append));
                file.write("more of it\n");
            }}),
    [](const auto& parameter) { return std::string(parameter.param.name); });

} // namespace
} // namespace quillo
