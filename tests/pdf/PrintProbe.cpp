// SPDX-License-Identifier: AGPL-3.0-or-later
// Prints the first pages of one file into another, as a process of its own, and compares the first page with
// its sheet. Ends with 0 when that is done and with 1 when printing was refused, after one line: processor
// time in milliseconds, peak memory in megabytes, sheets, damaged pages, and how many of ten thousand pixels
// differ.

#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"

#include <QGuiApplication>

#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <numeric>
#include <optional>
#include <utility>

namespace {

constexpr int pagesToPrint = 5;
constexpr double scale = 0.5;
constexpr int maximumSide = 2000;
// A sheet stands a fraction of a pixel elsewhere, so edges have other shades.
constexpr int visibleDifference = 64;

QImage pictureOf(pdf::PDFPage& page)
{
    QImage image(
        pdf::pixelSize(page.displaySize(), scale).boundedTo({maximumSide, maximumSide}),
        QImage::Format_RGB32);
    image.fill(Qt::white);
    for (const auto& list : {page.contentDisplayList(), page.annotationDisplayList()}) {
        if (list)
            (void)list->draw(image, {}, scale);
    }
    return image;
}

int difference(const QImage& a, const QImage& b)
{
    const QSize size = a.size().boundedTo(b.size());
    qint64 different = 0;
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            different += std::abs(qGray(a.pixel(x, y)) - qGray(b.pixel(x, y))) > visibleDifference;
    }
    return static_cast<int>(10'000 * different / std::max(1, size.width() * size.height()));
}

struct Figures
{
    pdf::PrintOutcome outcome;
    int difference = 0;
};

/// On paper that is as big as the first page, which is drawn into the image.
std::optional<pdf::PrintOutcome> print(const QString& source, const QString& target, QImage& first)
{
    const auto document = pdf::PDFDocument::open(source);
    if (!document)
        return std::nullopt;
    pdf::PrintLayout layout;
    if (const auto page = (*document)->page(0)) {
        layout.paper = page->displaySize();
        first = pictureOf(*page);
    }
    layout.pages.resize(static_cast<std::size_t>(std::min((*document)->pageCount(), pagesToPrint)));
    std::iota(layout.pages.begin(), layout.pages.end(), 0);
    auto outcome = (*document)->writePrintable(target, layout);
    return outcome ? std::optional(*std::move(outcome)) : std::nullopt;
}

/// Between the image and the first sheet of the file.
int differenceFrom(const QImage& first, const QString& target)
{
    const auto printed = pdf::PDFDocument::open(target);
    const auto sheet = printed ? (*printed)->page(0) : nullptr;
    return sheet && !first.isNull() ? difference(first, pictureOf(*sheet)) : 0;
}

long milliseconds(const timeval& time)
{
    return time.tv_sec * 1000 + time.tv_usec / 1000;
}

} // namespace

int main(int argc, char* argv[])
{
    // Annotations are drawn with fonts.
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    if (arguments.size() != 3)
        return 2;
    QImage first;
    const auto outcome = print(arguments[1], arguments[2], first);
    const int different = outcome ? differenceFrom(first, arguments[2]) : 0;
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    std::printf(
        "%ld %ld %d %zu %d\n", milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime),
        usage.ru_maxrss / 1024, outcome ? outcome->sheets : 0,
        outcome ? outcome->damagedPages.size() : std::size_t{0}, different);
    return outcome ? 0 : 1;
}
