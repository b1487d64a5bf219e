// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/PrintedPicture.h"

#include "pdf/ContentStream.h"
#include "pdf/Limits.h"
#include "pdf/PDFPage.h"

#include <QImage>

#include <algorithm>
#include <cmath>

namespace pdf {
namespace {

constexpr int pixelsPerStrip = 2 << 20;

/// At best speed, for a printer that waits; without the length that Qt puts before the data.
QByteArray deflated(const QByteArray& bytes)
{
    constexpr int fastest = 1;
    constexpr int lengthPrefix = 4;
    return qCompress(bytes, fastest).mid(lengthPrefix);
}

/// The image's pixels as three bytes each, without padding.
QByteArray samples(const QImage& image)
{
    const QImage rgb = image.convertToFormat(QImage::Format_RGB888);
    const qsizetype rowSize = qsizetype{3} * rgb.width();
    QByteArray bytes;
    bytes.reserve(rowSize * rgb.height());
    for (int y = 0; y < rgb.height(); ++y)
        bytes.append(reinterpret_cast<const char*>(rgb.constScanLine(y)), rowSize);
    return bytes;
}

int addImage(PrintFile& file, const QImage& image)
{
    const int number = file.newObject();
    file.addStream(
        number,
        "/Type /XObject /Subtype /Image /ColorSpace /DeviceRGB /BitsPerComponent 8 /Filter /FlateDecode "
        "/Width " +
            QByteArray::number(image.width()) + " /Height " + QByteArray::number(image.height()),
        deflated(samples(image)));
    return number;
}

QByteArray matrixEntry(const QTransform& transform)
{
    QByteArray result = "/Matrix [";
    for (const double value :
         {transform.m11(), transform.m12(), transform.m21(), transform.m22(), transform.dx(), transform.dy()})
        result += contentNumber(value) + ' ';
    return result + ']';
}

} // namespace

Result<int> addPicture(PrintFile& file, PDFPage& page, double scale, const Cancellation& cancellation)
{
    const auto list = page.contentDisplayList(cancellation);
    if (!list)
        return list.error();
    const QSizeF size = list->displaySize();
    const double most = std::sqrt(limits::printedPixels / (size.width() * size.height()));
    const double used = std::min(scale, most);
    const QSize pixels = pixelSize(size, used);
    const int rows = std::clamp(pixelsPerStrip / pixels.width(), 1, pixels.height());

    ContentStream content;
    QByteArray strips;
    for (int top = 0; top < pixels.height(); top += rows) {
        QImage image(pixels.width(), std::min(rows, pixels.height() - top), QImage::Format_RGB32);
        if (image.isNull())
            return PDFError{PDFError::Code::limitExceeded, QStringLiteral("the page is too big")};
        image.fill(Qt::white);
        if (auto drawn = list->draw(image, {0, top}, used, cancellation); !drawn)
            return drawn.error();
        const QByteArray name = "/S" + QByteArray::number(top);
        strips += name + ' ' + QByteArray::number(addImage(file, image)) + " 0 R ";
        // Display space grows downwards and a picture upwards, so it is turned over.
        const double bottom = (top + image.height()) / used;
        content.add({}, "q");
        content.add({image.width() / used, 0, 0, image.height() / -used, 0, bottom}, "cm");
        content.addRaw(name + " Do");
        content.add({}, "Q");
    }
    const int number = file.newObject();
    file.addStream(
        number,
        "/Type /XObject /Subtype /Form /BBox [0 0 " + contentNumber(size.width()) + ' ' +
            contentNumber(size.height()) + "] " + matrixEntry(page.pageToDisplay().inverted()) +
            " /Resources << /XObject << " + strips + ">> >>",
        content.bytes());
    return number;
}

} // namespace pdf
