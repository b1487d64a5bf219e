// SPDX-License-Identifier: AGPL-3.0-or-later
#include "view/Scans.h"

#include "writer/Document.h"

#include <QBuffer>
#include <QImage>

#include <random>
#include <vector>

namespace quillo::benchmark {
namespace {

constexpr QSize pixels(1654, 2339);
constexpr int margin = 200;
constexpr int lineHeight = 46;
constexpr int letterHeight = 22;
// Pages differ, but need not all.
constexpr int differentPages = 16;

/// Paper with noise, and lines of dark marks in the size of letters.
QImage scannedPage(unsigned seed)
{
    std::mt19937 random(seed);
    QImage image(pixels, QImage::Format_Grayscale8);
    for (int y = 0; y < image.height(); ++y) {
        uchar* line = image.scanLine(y);
        const bool isInLine = y > margin && y < image.height() - margin && y % lineHeight < letterHeight;
        for (int x = 0; x < image.width(); ++x) {
            const bool isInk = isInLine && x > margin && x < image.width() - margin && random() % 3 == 0;
            line[x] = static_cast<uchar>((isInk ? 30 : 235) + random() % 20);
        }
    }
    return image;
}

std::string packed(const QImage& image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "JPEG", 60);
    return bytes.toStdString();
}

} // namespace

std::string makeScans(int pageCount)
{
    std::vector<std::string> pictures;
    for (unsigned i = 0; i < differentPages; ++i)
        pictures.push_back(packed(scannedPage(i)));

    samples::Document document({"Scanned pages", "Scanner", "en"});
    for (int i = 0; i < pageCount; ++i) {
        samples::Page& page = document.addPage(samples::a4);
        page.objects.emplace_back(
            "Scan", document.file().addStream(
                        "/Type/XObject/Subtype/Image/ColorSpace/DeviceGray/BitsPerComponent "
                        "8/Filter/DCTDecode/Width " +
                            std::to_string(pixels.width()) + "/Height " + std::to_string(pixels.height()),
                        pictures[static_cast<std::size_t>(i) % pictures.size()],
                        samples::PdfFile::Compression::none));
        page.canvas.raw(
            "q " + samples::number(page.size.width) + " 0 0 " + samples::number(page.size.height) +
            " 0 0 cm /Scan Do Q");
    }
    return document.finish();
}

} // namespace quillo::benchmark
