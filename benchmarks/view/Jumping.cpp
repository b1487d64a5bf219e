// SPDX-License-Identifier: AGPL-3.0-or-later
#include "view/Jumping.h"

#include "pdfview/PDFView.h"
#include "support/Race.h"

#include <QTextStream>

namespace quillo::benchmark {
namespace {

/// Walks through all pages in steps that no prefetching foresees.
class FarPages
{
public:
    explicit FarPages(int pageCount)
        : m_pageCount(pageCount)
    {}

    int next()
    {
        m_page = (m_page + m_pageCount * 5 / 13) % m_pageCount;
        return m_page;
    }

private:
    const int m_pageCount;
    int m_page = 0;
};

} // namespace

bool measureJumping(const Subject& subject, int rounds)
{
    const auto view = show(subject);
    if (!view)
        return false;
    FarPages pages(subject.pageCount);
    FarPages samePages(subject.pageCount);
    // Points of the page are the view's at 100 %.
    const QString resolution = QString::number(72 * view->devicePixelRatioF());
    std::vector<Contestant> contestants = {
        {QStringLiteral("mutool draw, one page"),
         [&] {
             return runProgram(
                 QStringLiteral("mutool"),
                 {QStringLiteral("draw"), QStringLiteral("-r"), resolution, QStringLiteral("-o"),
                  QStringLiteral("/dev/null"), QStringLiteral("-F"), QStringLiteral("pam"), subject.path,
                  QString::number(samePages.next() + 1)});
         }},
        {QStringLiteral("jump until sharp"),
         [&] {
             view->goToPage(pages.next());
             return waitUntilSharp(*view);
         }},
    };
    if (!race(contestants, rounds))
        return false;
    QTextStream(stdout) << subject.name << ":\n";
    printRace(contestants);
    return true;
}

} // namespace quillo::benchmark
