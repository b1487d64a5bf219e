// SPDX-License-Identifier: AGPL-3.0-or-later
#include "documents/Samples.h"

#include "support/Printing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

#include <ostream>

namespace samples {

void PrintTo(const Sample& sample, std::ostream* stream)
{
    *stream << sample.name;
}

namespace {

using testing::ContainsRegex;
using testing::HasSubstr;

constexpr qint64 maximumBytesOfAll = 1'000'000;

QString committed(std::string_view name)
{
    return QStringLiteral(QUILLO_SOURCE_DIR "/samples/") +
           QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly))
        << path.toStdString() << ": " << file.errorString().toStdString();
    return file.readAll();
}

struct Outcome
{
    int status = -1;
    std::string output;
    std::string errors;
};

Outcome run(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(program, arguments);
    EXPECT_TRUE(process.waitForStarted()) << program.toStdString() << " is not installed";
    EXPECT_TRUE(process.waitForFinished(60'000)) << program.toStdString() << " does not end";
    return {
        process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
        process.readAllStandardOutput().toStdString(), process.readAllStandardError().toStdString()};
}

Outcome makeSamples(const QStringList& arguments)
{
    return run(QStringLiteral(MAKE_SAMPLES), arguments);
}

std::string textOf(std::string_view name)
{
    return run(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), committed(name), QStringLiteral("-")})
        .output;
}

class EverySampleTest : public testing::TestWithParam<Sample>
{
};

TEST_P(EverySampleTest, IsCommittedByteForByteAsItIsMade)
{
    const std::string made = GetParam().make();
    const QByteArray stored = contentOf(committed(GetParam().name));
    EXPECT_TRUE(made == stored.toStdString())
        << "made " << made.size() << " bytes, stored " << stored.size()
        << "; if the change is wanted, run make_samples on the samples folder and commit what it writes";
}

TEST_P(EverySampleTest, IsMadeAlikeTwice)
{
    EXPECT_TRUE(GetParam().make() == GetParam().make());
}

TEST_P(EverySampleTest, PassesTheStructureCheckOfAnotherReader)
{
    const Outcome check =
        run(QStringLiteral("qpdf"), {QStringLiteral("--check"), committed(GetParam().name)});
    EXPECT_EQ(check.status, 0) << check.output << check.errors;
    EXPECT_EQ(check.errors, "");
}

TEST_P(EverySampleTest, IsDrawnByAnotherReaderWithoutComplaint)
{
    const QTemporaryDir folder;
    const QString picture = folder.filePath(QStringLiteral("page"));
    const Outcome drawing =
        run(QStringLiteral("pdftoppm"), {QStringLiteral("-r"), QStringLiteral("40"), QStringLiteral("-png"),
                                         committed(GetParam().name), picture});
    EXPECT_EQ(drawing.status, 0);
    EXPECT_EQ(drawing.errors, "");
}

INSTANTIATE_TEST_SUITE_P(
    AllSamples, EverySampleTest, testing::ValuesIn(allSamples()), [](const auto& parameter) {
        const std::string_view name = parameter.param.name;
        return std::string(name.substr(0, name.find('.')));
    });

TEST(SamplesTest, AreSmall)
{
    qint64 sum = 0;
    for (const Sample& sample : allSamples())
        sum += contentOf(committed(sample.name)).size();
    EXPECT_LT(sum, maximumBytesOfAll);
}

TEST(SamplesTest, AreWrittenIntoAFolderByTheProgram)
{
    const QTemporaryDir folder;
    const Outcome result = makeSamples({folder.path()});
    EXPECT_EQ(result.status, 0) << result.errors;
    for (const Sample& sample : allSamples()) {
        const QString name =
            QString::fromUtf8(sample.name.data(), static_cast<qsizetype>(sample.name.size()));
        EXPECT_TRUE(contentOf(folder.filePath(name)) == contentOf(committed(sample.name))) << sample.name;
    }
}

TEST(SamplesTest, InvoiceAsksForAPaymentAndItsSumsAddUp)
{
    const std::string text = textOf("invoice.pdf");
    EXPECT_THAT(text, ContainsRegex("Invoice Number: +INV-204817"));
    EXPECT_THAT(text, ContainsRegex("Due Date: +04/19/2026"));
    EXPECT_THAT(text, ContainsRegex("Subtotal +\\$3,084.00"));
    EXPECT_THAT(text, ContainsRegex("Total amount +\\$3,339.97"));
    EXPECT_THAT(text, ContainsRegex("Amount due +\\$2,589.97"));
    EXPECT_THAT(text, HasSubstr("accounts@larkspur.example"));
    EXPECT_THAT(text, HasSubstr("(503) 555-0142"));
    EXPECT_THAT(text, HasSubstr("1420 Harbor View Road"));
}

TEST(SamplesTest, LetterAndContractSetLigaturesThatReadAsLetters)
{
    EXPECT_THAT(textOf("letter.pdf"), HasSubstr("in the fifties, and"));
    EXPECT_THAT(textOf("contract.pdf"), HasSubstr("fire, flood and tempest"));
    EXPECT_THAT(contentOf(committed("contract.pdf")).toStdString(), HasSubstr("\\001re, \\002ood"));
}

TEST(SamplesTest, FormHasFieldsOfEveryKind)
{
    const std::string form = contentOf(committed("form.pdf")).toStdString();
    for (const char* kind : {"/FT/Tx", "/FT/Btn", "/FT/Ch", "/FT/Sig"})
        EXPECT_THAT(form, HasSubstr(kind));
    EXPECT_THAT(form, HasSubstr("/T(garden.plans)/TU(Your plans and experience)/Ff 4096")) << "multi-line";
    EXPECT_THAT(form, HasSubstr("/Ff 8192")) << "password";
    EXPECT_THAT(form, HasSubstr("/Ff 16777216")) << "comb";
    EXPECT_THAT(form, HasSubstr("/T(plot.garden)/TU(Preferred garden)/Ff 131072")) << "combo box";
}

TEST(SamplesTest, ManualHasTwelvePagesAnOutlineAndLinks)
{
    const QString path = committed("manual.pdf");
    EXPECT_EQ(run(QStringLiteral("qpdf"), {QStringLiteral("--show-npages"), path}).output, "12\n");
    const std::string manual = contentOf(path).toStdString();
    EXPECT_THAT(manual, HasSubstr("/Type/Outlines"));
    EXPECT_THAT(manual, HasSubstr("/Subtype/Link/F 4/Border[0 0 0]/Rect[82 664 513 688]/Dest["));
    EXPECT_THAT(manual, HasSubstr("/URI(https://www.tern-weather.example/support)"));
}

TEST(SamplesTest, MultilingualTextReadsAsItWasWritten)
{
    const std::string text = textOf("multilingual.pdf");
    for (const char* words :
         {"Le petit déjeuner est servi", "Frühstück gibt es", "Śniadanie podajemy",
          "Hoş geldiniz! İyi günler", "Chào mừng quý khách", "Καλώς ήρθατε", "Добро пожаловать",
          "مرحبا بكم! الفطور من السابعة حتى العاشرة", "欢迎光临！早餐时间为七点至十点", "ようこそ", "☀☕🍳",
          "😀❤"})
        EXPECT_THAT(text, HasSubstr(words));
}

TEST(SamplesTest, ScanIsTwoPicturesWithoutText)
{
    const QString path = committed("scan.pdf");
    EXPECT_EQ(run(QStringLiteral("pdftotext"), {path, QStringLiteral("-")}).output, "\f\f");
    const std::string pictures = run(QStringLiteral("pdfimages"), {QStringLiteral("-list"), path}).output;
    EXPECT_THAT(pictures, ContainsRegex("1 +0 image +1652 +2338 +gray +1 +1 "));
    EXPECT_THAT(pictures, ContainsRegex("2 +1 image +1239 +1754 +gray +1 +4 "));
}

TEST(OneColourDocumentTest, HasAsManyPagesAsAskedForInABalancedTree)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("pages.pdf"));
    for (const QString& count : {QStringLiteral("1"), QStringLiteral("33"), QStringLiteral("20000")}) {
        const Outcome result =
            makeSamples({QStringLiteral("--one-colour"), count, QStringLiteral("ff8800"), path});
        EXPECT_EQ(result.status, 0) << result.errors;
        EXPECT_EQ(
            run(QStringLiteral("qpdf"), {QStringLiteral("--show-npages"), path}).output,
            count.toStdString() + "\n");
        EXPECT_EQ(run(QStringLiteral("qpdf"), {QStringLiteral("--check"), path}).status, 0);
    }
    const QByteArray file = contentOf(path);
    const int nodes = static_cast<int>(file.count("/Type/Pages"));
    EXPECT_EQ(nodes, 1 + 20 + 625) << "20,000 pages in nodes of at most 32 children";
}

TEST(OneColourDocumentTest, IsFilledWithTheColour)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("page.pdf"));
    const QString picture = folder.filePath(QStringLiteral("page"));
    makeSamples({QStringLiteral("--one-colour"), QStringLiteral("2"), QStringLiteral("12ABef"), path});
    run(QStringLiteral("pdftoppm"),
        {QStringLiteral("-png"), QStringLiteral("-r"), QStringLiteral("20"), QStringLiteral("-singlefile"),
         QStringLiteral("-f"), QStringLiteral("2"), path, picture});
    const QImage image(picture + QStringLiteral(".png"));
    ASSERT_FALSE(image.isNull());
    for (const QPoint& point :
         {QPoint(1, 1), image.rect().center(), image.rect().bottomRight() - QPoint(1, 1)})
        EXPECT_EQ(image.pixel(point), qRgb(0x12, 0xab, 0xef));
}

TEST(MakeSamplesTest, RefusesWhatItDoesNotUnderstand)
{
    const QString option = QStringLiteral("--one-colour");
    const QString colour = QStringLiteral("112233");
    const QString path = QStringLiteral("x.pdf");
    for (const QStringList& arguments :
         {QStringList(), QStringList({QStringLiteral("--nonsense")}),
          QStringList({option, QStringLiteral("3"), colour}),
          QStringList({option, QStringLiteral("0"), colour, path}),
          QStringList({option, QStringLiteral("-1"), colour, path}),
          QStringList({option, QStringLiteral("3x"), colour, path}),
          QStringList({option, QStringLiteral("3"), QStringLiteral("1122"), path}),
          QStringList({option, QStringLiteral("3"), QStringLiteral("red"), path})}) {
        const Outcome result = makeSamples(arguments);
        EXPECT_EQ(result.status, 2) << arguments.join(QLatin1Char(' ')).toStdString();
        EXPECT_THAT(result.errors, HasSubstr("usage: make_samples"));
    }
}

TEST(MakeSamplesTest, SaysWhatItCannotWrite)
{
    const Outcome result = makeSamples({QStringLiteral("/nonexistent/folder")});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr("/nonexistent/folder/contract.pdf: cannot be written"));
}

} // namespace
} // namespace samples
