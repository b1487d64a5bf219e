// SPDX-License-Identifier: AGPL-3.0-or-later
// Measures the page view on a book and on scanned pages: scrolling from end to end, jumping to a page far
// away, searching, moving an annotation among many, saving. What other programs do as well is timed beside it
// in the same rounds.
//
//     view_benchmark [rounds [scrolling|jumping|searching|moving|saving]]
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
#include <functional>
#include <iterator>
#include <malloc.h>

namespace quillo::benchmark {
namespace {

constexpr int usualRounds = 15;
constexpr int annotationCounts[] = {20, 2'000, 20'000};

bool measureMoving(const QString& folder)
{
    return std::all_of(std::begin(annotationCounts), std::end(annotationCounts), [&](int count) {
        return benchmark::measureMoving(folder, count);
    });
}

/// The part that is named, or all where none is.
int measure(int rounds, const QString& part)
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
    const struct
    {
        QString name;
        const char* heading;
        std::function<bool()> isDone;
    } parts[] = {
        {QStringLiteral("scrolling"), "Scrolling end to end",
         [&] { return measureScrolling(book) && measureScrolling(scans); }},
        {QStringLiteral("jumping"), "A jump to another page",
         [&] { return measureJumping(book, rounds) && measureJumping(scans, rounds); }},
        {QStringLiteral("searching"), "Searching", [&] { return measureSearching(book, rounds); }},
        {QStringLiteral("moving"), "Moving an annotation among many",
         [&] { return measureMoving(folder.path()); }},
        {QStringLiteral("saving"), "Saving after a page was turned",
         [&] { return measureSaving(book, rounds) && measureSaving(scans, rounds); }},
    };
    const bool isKnown =
        part.isEmpty() || std::any_of(std::begin(parts), std::end(parts), [&](const auto& known) {
            return known.name == part;
        });
    if (!isKnown) {
        QTextStream(stderr) << "there is no part " << part << "\n";
        return 2;
    }
    for (const auto& [name, title, isDone] : parts) {
        if (!part.isEmpty() && part != name)
            continue;
        QTextStream(stdout) << "\n" << title << "\n";
        if (!isDone())
            return 1;
    }
    return 0;
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
    const int rounds = arguments.isEmpty() ? usualRounds : arguments.front().toInt();
    if (arguments.size() > 2 || rounds < 1) {
        QTextStream(stderr) << "usage: view_benchmark [rounds [scrolling|jumping|searching|moving|saving]]\n";
        return 2;
    }
    return measure(rounds, arguments.value(1));
}
