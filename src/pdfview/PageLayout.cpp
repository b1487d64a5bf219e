// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/PageLayout.h"

#include "pdf/PDFDisplayList.h"

#include <algorithm>

namespace pdf {
namespace {

// The largest page that PDF allows without a user unit is 14400 points wide and high.
constexpr double smallestSide = 1.0;
constexpr double largestSide = 20000.0;

} // namespace

PageLayout::PageLayout(int pageCount)
    : m_pageCount(std::max(pageCount, 0))
{}

void PageLayout::setScale(double scale)
{
    m_scale = scale;
    measure();
}

void PageLayout::setGap(int gap)
{
    m_gap = gap;
}

void PageLayout::setPageSize(int page, QSizeF points)
{
    if (page < 0 || page >= m_pageCount)
        return;
    const QSizeF size(
        std::clamp(points.width(), smallestSide, largestSide),
        std::clamp(points.height(), smallestSide, largestSide));
    if (m_known.empty())
        m_estimate = size;
    const auto place = firstKnownFrom(page);
    if (place != m_known.cend() && place->page == page)
        m_known[static_cast<std::size_t>(place - m_known.cbegin())].points = size;
    else
        m_known.insert(place, KnownPage{page, size, QSize(), 0});
    measure();
}

void PageLayout::measure()
{
    if (m_known.empty())
        return;
    m_estimatedPixels = pdf::pixelSize(m_estimate, m_scale);
    m_widest = 0;
    m_excess = 0;
    for (KnownPage& page : m_known) {
        page.pixels = pdf::pixelSize(page.points, m_scale);
        page.excessBefore = m_excess;
        m_excess += page.pixels.height() - m_estimatedPixels.height();
        m_widest = std::max(m_widest, page.pixels.width());
    }
}

std::vector<PageLayout::KnownPage>::const_iterator PageLayout::firstKnownFrom(int page) const
{
    return std::lower_bound(m_known.cbegin(), m_known.cend(), page, [](const KnownPage& entry, int number) {
        return entry.page < number;
    });
}

const PageLayout::KnownPage* PageLayout::known(int page) const
{
    const auto found = firstKnownFrom(page);
    return found != m_known.cend() && found->page == page ? &*found : nullptr;
}

bool PageLayout::isKnown(int page) const
{
    return known(page) != nullptr;
}

QSizeF PageLayout::pageSize(int page) const
{
    const KnownPage* entry = known(page);
    return entry ? entry->points : m_estimate;
}

QSize PageLayout::pixelSize(int page) const
{
    const KnownPage* entry = known(page);
    return entry ? entry->pixels : m_estimatedPixels;
}

qint64 PageLayout::top(int page) const
{
    const auto next = firstKnownFrom(page);
    const qint64 excess = next == m_known.cend() ? m_excess : next->excessBefore;
    return m_gap + qint64(page) * (m_estimatedPixels.height() + m_gap) + excess;
}

qint64 PageLayout::height() const
{
    return hasSizes() ? top(m_pageCount) : 0;
}

int PageLayout::width() const
{
    return hasSizes() ? m_widest + 2 * m_gap : 0;
}

int PageLayout::pageAt(qint64 y) const
{
    int first = 0;
    int last = m_pageCount - 1;
    while (first < last) {
        const int middle = first + (last - first) / 2;
        if (bottom(middle) > y)
            last = middle;
        else
            first = middle + 1;
    }
    return last;
}

} // namespace pdf
