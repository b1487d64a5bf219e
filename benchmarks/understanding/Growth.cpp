// SPDX-License-Identifier: AGPL-3.0-or-later
#include "Growth.h"

#include "Timing.h"
#include "understanding/ExtractionReference.h"
#include "understanding/HostileTexts.h"
#include "understanding/InformationExtraction.h"

#include <algorithm>
#include <cstdio>
#include <functional>
#include <limits>
#include <malloc.h>
#include <sys/resource.h>
#include <vector>

namespace quillo::benchmark {
namespace {

constexpr int rounds = 5;
constexpr qsizetype million = 1'000'000;
// The plain loop takes minutes for more of some shapes.
constexpr qsizetype slices[] = {5'000, 20'000};

double nanosecondsPerUnit(double seconds, qsizetype size)
{
    return seconds * 1e9 / static_cast<double>(size);
}

long pageFaults()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_minflt;
}

/// The pages of memory that one extraction needs where none is at hand, by 1,000 units.
double freshPages(const QString& text)
{
    malloc_trim(0);
    const long before = pageFaults();
    extractItems(text, 0);
    return static_cast<double>(pageFaults() - before) * 1000.0 / static_cast<double>(text.size());
}

void measureShape(const char* name, const std::function<QString(qsizetype)>& textOf)
{
    std::printf("%-24s", name);
    double least = 0;
    double most = 0;
    std::vector<double> pages;
    for (const qsizetype size : {1 * million, 2 * million, 4 * million, 8 * million}) {
        const QString text = textOf(size);
        pages.push_back(freshPages(text));
        const double time = nanosecondsPerUnit(secondsOf(rounds, [&] { extractItems(text, 0); }), size);
        std::printf(" %7.2f", time);
        least = least == 0 ? time : std::min(least, time);
        most = std::max(most, time);
    }
    std::printf(" %7.2f %8.2f %8.2f", most / least, pages.front(), pages.back());
    for (const qsizetype size : slices) {
        const QString text = textOf(size);
        const double time = nanosecondsPerUnit(secondsOf(1, [&] { reference::extractItems(text, 0); }), size);
        std::printf(" %10.0f", time);
    }
    std::printf("\n");
    std::fflush(stdout);
}

} // namespace

void measureGrowth(const QString& ordinaryText)
{
    // Between the rounds the allocator would give memory back to the system where the items are many, and
    // keep it where they are few: the long texts would pay for fresh pages in every round, the short ones in
    // none. So it keeps all of it here, and the pages are counted by themselves.
    mallopt(M_MMAP_MAX, 0);
    mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
    std::printf("\nGrowth: nanoseconds per UTF-16 unit by millions of units, in memory that is at hand; "
                "fresh pages of "
                "memory per\n1,000 units, where it is not, for 1 and 8 millions; plain ICU on slices of "
                "5,000 and 20,000 "
                "units.\n\n");
    std::printf(
        "%-24s %7s %7s %7s %7s %7s %8s %8s %10s %10s\n", "shape", "1 M", "2 M", "4 M", "8 M", "max/min",
        "pages 1M", "pages 8M", "ICU 5 k", "ICU 20 k");
    measureShape("ordinary text", [&](qsizetype size) { return ordinaryText.left(size); });
    for (const HostileShape& shape : hostileShapes())
        measureShape(shape.name, shape.text);
}

} // namespace quillo::benchmark
