// SPDX-License-Identifier: AGPL-3.0-or-later
// Draws pages of one file as the page view does, from tiles, and compares the pixels with a picture that
// another program has drawn:
//
//   compare_pages FILE PAGES FIRST STEP
//
// PAGES is how many pages are looked at. There are twelve ways to turn and scale a page; each page is
// compared in every STEP-th of them, beginning with FIRST. Says one line for each picture:
//
//   PAGE SCALE ROTATION OUTCOME SHARE LARGEST SECONDS
//
// OUTCOME is "compared"; "too-big", which is not even tried; "missing" where only the other program draws the
// page, "alone" where only the view does, "neither". SHARE of the pixels differ by more than a shade, LARGEST
// is the largest difference, SECONDS is what the view's drawing took. Ends with 1 when the file is refused.

#include "pdf/PDFDisplayList.h"
#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"
#include "pdfview/RenderThreads.h"
#include "pdfview/TileRenderer.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QPainter>
#include <QProcess>
#include <QTemporaryDir>

#include <sys/resource.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

constexpr std::array<double, 3> scales{0.5, 1.0, 2.25};
constexpr std::array<int, 4> rotations{0, 90, 180, 270};

// More pixels than any screen shows of one page.
constexpr qint64 mostPixels = 20'000'000;

// What the other program may use for one page.
constexpr rlim_t referenceSeconds = 8;
constexpr rlim_t referenceBytes = rlim_t{2} << 30;

// Slanted edges are smoothed in 16 steps, which may be rounded differently in a tile and in the whole page.
constexpr int shade = 2 * 16;

struct Way
{
    double scale = 1.0;
    /// Clockwise, added to the page's own.
    int rotation = 0;
};

std::vector<Way> everyNthWay(std::size_t first, std::size_t step)
{
    std::vector<Way> ways;
    for (std::size_t i = first; i < scales.size() * rotations.size(); i += step)
        ways.push_back({scales[i % scales.size()], rotations[i / scales.size()]});
    return ways;
}

/// The page from the view's tiles; null when the view would say that it cannot be shown.
QImage drawFromTiles(const std::shared_ptr<pdf::PDFDocument>& document, int page, QSize pixels, double scale)
{
    pdf::TileRenderer renderer(document);
    renderer.want(pdf::tilesIn(QRect(QPoint(0, 0), pixels), page, scale, pixels));
    pdf::RenderThreads::shared().waitUntilIdle(std::chrono::minutes(5));
    QImage image(pixels, QImage::Format_RGB32);
    // A tile that is missing without an excuse is seen.
    image.fill(Qt::magenta);
    QPainter painter(&image);
    for (const auto& result : renderer.takeResults()) {
        if (std::holds_alternative<pdf::TileRenderer::PageFailed>(result))
            return {};
        if (const auto* drawn = std::get_if<pdf::TileRenderer::TileDrawn>(&result))
            painter.drawImage(pdf::tileRect(drawn->tile, pixels).topLeft(), drawn->image);
    }
    return image;
}

/// The page as the other program draws it; null when it does not.
QImage drawReference(const QString& path, int page, double scale)
{
    QProcess process;
    process.setChildProcessModifier([] {
        const rlimit time{referenceSeconds, referenceSeconds};
        const rlimit memory{referenceBytes, referenceBytes};
        setrlimit(RLIMIT_CPU, &time);
        setrlimit(RLIMIT_AS, &memory);
    });
    // The screen shows every ink by itself; how they print over one another is simulated by neither.
    process.start(
        QStringLiteral("mutool"),
        {QStringLiteral("draw"), QStringLiteral("-q"), QStringLiteral("-O"), QStringLiteral("0"),
         QStringLiteral("-c"), QStringLiteral("rgb"), QStringLiteral("-r"), QString::number(72.0 * scale),
         QStringLiteral("-F"), QStringLiteral("pnm"), QStringLiteral("-o"), QStringLiteral("-"), path,
         QString::number(page + 1)});
    process.waitForFinished(-1);
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return {};
    QImage image;
    image.loadFromData(process.readAllStandardOutput(), "ppm");
    return image.convertToFormat(QImage::Format_RGB32);
}

struct Difference
{
    double share = 0.0;
    int largest = 0;
};

Difference compare(const QImage& a, const QImage& b)
{
    // Of a row of pixels that the page covers by a thousandth only one program may think that it is there.
    const QSize common = a.size().boundedTo(b.size());
    if ((a.size() - common).width() > 1 || (a.size() - common).height() > 1 ||
        (b.size() - common).width() > 1 || (b.size() - common).height() > 1)
        return {1.0, 255};
    qint64 count = 0;
    Difference result;
    for (int y = 0; y < common.height(); ++y) {
        const auto* left = reinterpret_cast<const QRgb*>(a.constScanLine(y));
        const auto* right = reinterpret_cast<const QRgb*>(b.constScanLine(y));
        for (int x = 0; x < common.width(); ++x) {
            const int difference = std::max(
                {std::abs(qRed(left[x]) - qRed(right[x])), std::abs(qGreen(left[x]) - qGreen(right[x])),
                 std::abs(qBlue(left[x]) - qBlue(right[x]))});
            count += difference > shade;
            result.largest = std::max(result.largest, difference);
        }
    }
    // Of a page of a few pixels one alone would be a large share.
    result.share = double(count) / std::max(10'000.0, double(common.width()) * common.height());
    return result;
}

const char* outcomeOf(const QImage& own, const QImage& reference)
{
    if (own.isNull())
        return reference.isNull() ? "neither" : "missing";
    return reference.isNull() ? "alone" : "compared";
}

class Comparison
{
public:
    Comparison(std::shared_ptr<pdf::PDFDocument> document, const QString& path)
        : m_document(std::move(document))
        , m_path(path)
    {}

    void comparePage(int index, const std::vector<Way>& ways)
    {
        const auto page = m_document->page(index);
        if (!page)
            return;
        const int ownRotation = page->rotation();
        for (const Way& way : ways) {
            if (page->setRotation(ownRotation + way.rotation))
                compareWay(*page, way);
        }
        static_cast<void>(page->setRotation(ownRotation));
    }

private:
    void compareWay(const pdf::PDFPage& page, const Way& way)
    {
        const QSize pixels = pdf::pixelSize(page.displaySize(), way.scale);
        if (qint64(pixels.width()) * pixels.height() > mostPixels) {
            report(page.index(), way, "too-big", {}, 0.0);
            return;
        }
        QElapsedTimer time;
        time.start();
        const QImage own = drawFromTiles(m_document, page.index(), pixels, way.scale);
        const double seconds = double(time.elapsed()) / 1000.0;
        const QImage reference = drawTurnedReference(page.index(), way);
        const char* outcome = outcomeOf(own, reference);
        const bool isCompared = !own.isNull() && !reference.isNull();
        report(page.index(), way, outcome, isCompared ? compare(own, reference) : Difference(), seconds);
    }

    /// The other program can turn a page, too, but then it fits it into the pixels from another corner. So it
    /// gets a copy that was saved with the page turned.
    QImage drawTurnedReference(int page, const Way& way) const
    {
        if (way.rotation == 0)
            return drawReference(m_path, page, way.scale);
        const QString copy = m_folder.filePath(QStringLiteral("turned.pdf"));
        return m_document->write(copy) ? drawReference(copy, page, way.scale) : QImage();
    }

    static void
    report(int page, const Way& way, const char* outcome, const Difference& difference, double seconds)
    {
        std::printf(
            "%d %g %d %s %.6f %d %.2f\n", page + 1, way.scale, way.rotation, outcome, difference.share,
            difference.largest, seconds);
        // What comes before a crash is told.
        std::fflush(stdout);
    }

    const std::shared_ptr<pdf::PDFDocument> m_document;
    const QString m_path;
    const QTemporaryDir m_folder;
};

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    if (argc != 5)
        return 2;
    const QString path = QString::fromLocal8Bit(argv[1]);
    const auto document = pdf::PDFDocument::open(path);
    if (!document || (*document)->isLocked())
        return 1;
    Comparison comparison(*document, path);
    const auto ways = everyNthWay(std::strtoul(argv[3], nullptr, 10), std::strtoul(argv[4], nullptr, 10));
    const int pageCount = std::min((*document)->pageCount(), std::atoi(argv[2]));
    for (int page = 0; page < pageCount; ++page)
        comparison.comparePage(page, ways);
    return 0;
}
