// SPDX-License-Identifier: AGPL-3.0-or-later
// Measures the page view on a book and on scanned pages: scrolling from end to end, jumping to a page far
// away, searching, moving an annotation among many, saving. What other programs do as well is timed beside it
// in the same rounds.
//
//     view_benchmark [rounds]
//     view_benchmark --moving                  moving annotations alone
//     view_benchmark --save SOURCE TARGET      one saving, for the rounds

#include "support/Book.h"
#include "support/Race.h"
#include "view/Jumping.h"
#include "view/MainThreadWatch.h"
#include "view/Moving.h"
#include "view/Saving.h"
#include "view/Scans.h"
#include "view/Scrolling.h"
#include "view/Searching.h"

#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>
#include <iterator>
#include <malloc.h>

namespace quillo::benchmark {
namespace {

constexpr int usualRounds = 15;
constexpr int annotationCounts[] = {20, 2'000, 20'000};

void printHeading(const char* text)
{
    QTextStream(stdout) << "\n" << text << "\n";
}

bool measureAnnotations()
{
    printHeading("Annotations of one page");
    const QTemporaryDir folder;
    return std::all_of(std::begin(annotationCounts), std::end(annotationCounts), [&](int count) {
        return measureMoving(folder.path(), count);
    });
}

int measure(int rounds)
{
    const QTemporaryDir folder;
    const Subject book = {QStringLiteral("Book"), folder.filePath(QStringLiteral("book.pdf")), 352};
    const Subject scans = {QStringLiteral("Scans"), folder.filePath(QStringLiteral("scans.pdf")), 500};
    if (!writeFile(book.path, makeBook(book.pageCount)) ||
        !writeFile(scans.path, makeScans(scans.pageCount))) {
        QTextStream(stderr) << "the documents cannot be written\n";
        return 1;
    }
    // The documents have taken much memory, which is not the view's.
    malloc_trim(0);
    printHeading("Scrolling end to end");
    bool isDone = measureScrolling(book) && measureScrolling(scans);
    printHeading("A jump to another page");
    isDone = isDone && measureJumping(book, rounds) && measureJumping(scans, rounds);
    printHeading("Searching");
    isDone = isDone && measureSearching(book, rounds);
    isDone = isDone && measureAnnotations();
    printHeading("Saving after a page was turned");
    isDone = isDone && measureSaving(book, rounds) && measureSaving(scans, rounds);
    return isDone ? 0 : 1;
}

} // namespace
} // namespace quillo::benchmark

int main(int argc, char* argv[])
{
    using namespace quillo::benchmark;
    if (argc == 4 && qstrcmp(argv[1], "--save") == 0)
        return saveTurned(QString::fromLocal8Bit(argv[2]), QString::fromLocal8Bit(argv[3])) ? 0 : 1;
    const MainThreadWatch application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments == QStringList(QStringLiteral("--moving")))
        return measureAnnotations() ? 0 : 1;
    const int rounds = arguments.isEmpty() ? usualRounds : arguments.front().toInt();
    if (arguments.size() > 1 || rounds < 1) {
        QTextStream(stderr) << "usage: view_benchmark [rounds | --moving]\n";
        return 2;
    }
    return measure(rounds);
}
