// SPDX-License-Identifier: AGPL-3.0-or-later
#include "view/Searching.h"

#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"
#include "support/Race.h"

#include <QElapsedTimer>
#include <QSemaphore>
#include <QTextStream>

namespace quillo::benchmark {
namespace {

constexpr auto options = pdf::FindOption::caseInsensitive;

/// Searches until the last match is known.
std::size_t countMatches(pdf::PDFDocument& document, const QString& text)
{
    std::size_t count = 0;
    QSemaphore done;
    document.beginFindString(text, options, {}, [&](const std::vector<pdf::TextMatch>& matches, bool isLast) {
        count += matches.size();
        if (isLast)
            done.release();
    });
    done.acquire();
    return count;
}

} // namespace

bool measureSearching(const Subject& subject, int rounds)
{
    const auto opened = pdf::PDFDocument::open(subject.path);
    if (!opened)
        return false;
    pdf::PDFDocument& document = **opened;
    QTextStream out(stdout);

    QElapsedTimer timer;
    timer.start();
    const std::size_t letters = countMatches(document, QStringLiteral("e"));
    out << subject.name << ": first search, which reads the text of " << subject.pageCount
        << " pages: " << timer.elapsed() << " ms\n";

    // Three words in a row stand in few places.
    const QString passage = document.page(subject.pageCount / 2)
                                ->string()
                                .value_or(QString())
                                .simplified()
                                .section(QLatin1Char(' '), 20, 22);
    const struct
    {
        const char* what;
        QString text;
    } searches[] = {
        {"a letter", QStringLiteral("e")},
        {"a word", QStringLiteral("the")},
        {"a passage", passage},
        {"what is not there", QStringLiteral("zzyzx")},
    };
    std::vector<Contestant> contestants = {
        {QStringLiteral("mutool draw -F text"), [&] {
             return runProgram(
                 QStringLiteral("mutool"),
                 {QStringLiteral("draw"), QStringLiteral("-F"), QStringLiteral("text"), subject.path});
         }}};
    for (const auto& search : searches) {
        const std::size_t count = countMatches(document, search.text);
        contestants.push_back(
            {QStringLiteral("%1, %2 times").arg(QLatin1String(search.what)).arg(count),
             [&document, text = search.text, count] { return countMatches(document, text) == count; }});
    }
    if (letters == 0 || !race(contestants, rounds))
        return false;
    out.flush();
    printRace(contestants);
    return true;
}

} // namespace quillo::benchmark
