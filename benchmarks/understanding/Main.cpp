// SPDX-License-Identifier: AGPL-3.0-or-later
// Times the analysers on the texts of real files, joined and repeated to 100 MB, beside the plain loop over
// ICU and grep, and their growth on texts that drive a backtracking engine into quadratic time.
//
//   understanding_benchmark [FOLDER] [MEGABYTES]
//
// FOLDER holds PDF files.

#include "Growth.h"
#include "Throughput.h"
#include "document/PDFTextExtractor.h"

#include <QCoreApplication>
#include <QDirIterator>

#include <algorithm>
#include <chrono>
#include <cstdio>

namespace quillo::benchmark {
namespace {

constexpr qsizetype growthUnits = 8'000'000;

/// The texts of all files of a folder, in the order of their names.
QString textsIn(const QString& folder)
{
    QStringList paths;
    QDirIterator files(folder, {QStringLiteral("*.pdf")}, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext())
        paths.append(files.next());
    paths.sort();

    QString text;
    for (const QString& path : paths) {
        const auto reading = PDFTextExtractor::readDocument(
            path, std::nullopt, pdf::Cancellation::after(std::chrono::seconds(10)));
        if (reading)
            text += PDFTextExtractor::getAllText(reading->pageTexts) + QStringLiteral("\n\n");
    }
    return text;
}

} // namespace
} // namespace quillo::benchmark

int main(int argc, char** argv)
{
    using namespace quillo::benchmark;
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const QString folder = arguments.value(1, QStringLiteral(QUILLO_CORPUS));
    const double megabytes = arguments.value(2, QStringLiteral("100")).toDouble();

    const QString texts = textsIn(folder);
    if (texts.isEmpty()) {
        std::fprintf(stderr, "understanding_benchmark: no text in %s\n", qPrintable(folder));
        return 1;
    }
    const double once = static_cast<double>(texts.toUtf8().size()) / 1e6;
    std::printf("%.2f MB of text in the files, repeated.\n", once);
    measureThroughput(texts.repeated(std::max<qsizetype>(1, static_cast<qsizetype>(megabytes / once))));
    measureGrowth(texts.repeated(growthUnits / texts.size() + 1));
    return 0;
}
