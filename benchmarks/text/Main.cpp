// SPDX-License-Identifier: AGPL-3.0-or-later
// Times the text of a book with the boxes of its words against MuPDF's own tool, both as programs of their
// own, one after the other in every round, and prints the medians and their ratios. Each extracts the text of
// all pages; the tool prints it to nowhere.
//
//     text_benchmark [rounds]
//     text_benchmark --extract FILE      one extraction, for the rounds

#include "document/PDFTextExtractor.h"
#include "support/Book.h"
#include "support/Race.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <QTextStream>
#include <QThread>

#include <vector>

namespace quillo::benchmark {
namespace {

constexpr int pageCount = 352;
constexpr int usualRounds = 15;

using Reading = PDFTextExtractor::Reading;

std::optional<Reading> extract(const QString& path)
{
    auto reading = PDFTextExtractor::readDocument(path, std::nullopt, {});
    if (!reading)
        return std::nullopt;
    return *std::move(reading);
}

int compare(int rounds)
{
    QTextStream out(stdout);
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("book.pdf"));
    const std::string book = makeBook(pageCount);
    if (!writeFile(path, book)) {
        QTextStream(stderr) << "the book cannot be written\n";
        return 1;
    }

    const auto reading = extract(path);
    qsizetype characters = 0;
    std::size_t boxes = 0;
    for (const PageText& page : reading ? reading->pageTexts : PageTexts()) {
        characters += page.text.size();
        boxes += page.boundingBoxes ? page.boundingBoxes->size() : 0;
    }
    out << pageCount << " pages, " << characters << " characters, " << boxes << " word boxes, "
        << book.size() / 1024 << " KB; " << QThread::idealThreadCount() << " processors, " << rounds
        << " rounds\n";

    const auto tool = [path](const char* format) {
        return [path, format] {
            return runProgram(
                QStringLiteral("mutool"),
                {QStringLiteral("draw"), QStringLiteral("-F"), QLatin1String(format), path});
        };
    };
    std::vector<Contestant> contestants = {
        {QStringLiteral("mutool draw -F text"), tool("text")},
        {QStringLiteral("mutool draw -F stext"), tool("stext")},
        {QStringLiteral("Quillo, a program of its own"),
         [path] {
             return runProgram(QCoreApplication::applicationFilePath(), {QStringLiteral("--extract"), path});
         }},
        {QStringLiteral("Quillo, within a program"), [path] { return extract(path).has_value(); }},
    };
    if (!race(contestants, rounds))
        return 1;
    out.flush();
    printRace(contestants);
    return 0;
}

} // namespace
} // namespace quillo::benchmark

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments.size() == 2 && arguments.front() == QStringLiteral("--extract"))
        return quillo::benchmark::extract(arguments.back()) ? 0 : 1;
    const int rounds = arguments.isEmpty() ? quillo::benchmark::usualRounds : arguments.front().toInt();
    if (arguments.size() > 1 || rounds < 1) {
        QTextStream(stderr) << "usage: text_benchmark [rounds]\n";
        return 2;
    }
    return quillo::benchmark::compare(rounds);
}
