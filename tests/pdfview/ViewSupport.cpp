// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/ViewSupport.h"

#include "pdf/PDFDocument.h"

#include <QSignalSpy>
#include <QTest>

#include <algorithm>
#include <array>

namespace pdf {
namespace {

bool isNearly(QColor a, QColor b)
{
    return std::abs(a.red() - b.red()) <= 2 && std::abs(a.green() - b.green()) <= 2 &&
           std::abs(a.blue() - b.blue()) <= 2;
}

} // namespace

void addColouredPage(PDFWriter& writer, QColor color, QSize size, const QByteArray& entries)
{
    const QByteArray fill = QByteArray::number(color.redF()) + ' ' + QByteArray::number(color.greenF()) +
                            ' ' + QByteArray::number(color.blueF()) + " rg 0 0 " +
                            QByteArray::number(size.width()) + ' ' + QByteArray::number(size.height()) +
                            " re f";
    const QByteArray box =
        "/MediaBox[0 0 " + QByteArray::number(size.width()) + ' ' + QByteArray::number(size.height()) + ']';
    writer.addPage(fill, box + entries);
}

QColor colorOfPage(int page)
{
    static const std::array<QColor, 5> colors{
        QColor(255, 0, 0), QColor(0, 255, 0), QColor(0, 0, 255), QColor(255, 255, 0), QColor(0, 255, 255)};
    return colors[static_cast<std::size_t>(page) % colors.size()];
}

QByteArray colouredDocument(int pageCount, QSize size)
{
    PDFWriter writer;
    for (int page = 0; page < pageCount; ++page)
        addColouredPage(writer, colorOfPage(page), size);
    return writer.bytes();
}

void addEndlessPage(PDFWriter& writer)
{
    QByteArray content = "0.5 w\n";
    const QByteArray curve = "0 0 m 600 10 10 700 600 790 c 10 600 700 10 0 0 c B*\n";
    for (int i = 0; i < 60000; ++i)
        content += curve;
    writer.addPage(content);
}

void addPageWithSlowAnnotation(PDFWriter& writer)
{
    QByteArray lines = "0 0 200 200 re f ";
    for (int i = 0; i < 100; ++i)
        lines +=
            QByteArray::number(i % 190) + " 0 m 0 200 200 200 " + QByteArray::number(i % 170) + " 0 c S ";
    const int picture = writer.addStream(lines, "/Subtype/Form/BBox[0 0 200 200]");
    const int square = writer.add(
        "<</Type/Annot/Subtype/Square/F 4/Rect[0 0 200 200]/AP<</N " + QByteArray::number(picture) +
        " 0 R>>>>");
    writer.addPage({}, "/MediaBox[0 0 400 400]/Annots[" + QByteArray::number(square) + " 0 R]");
}

int largestDifference(const QImage& a, const QImage& b)
{
    if (a.size() != b.size())
        return 255;
    int largest = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QColor left = a.pixelColor(x, y);
            const QColor right = b.pixelColor(x, y);
            largest = std::max(
                {largest, std::abs(left.red() - right.red()), std::abs(left.green() - right.green()),
                 std::abs(left.blue() - right.blue())});
        }
    }
    return largest;
}

ShownDocument PDFViewFixture::opened(const QString& path)
{
    const auto document = PDFDocument::open(path);
    if (!document) {
        ADD_FAILURE() << document.error().message.toStdString();
        return {};
    }
    return {*document, (*document)->pageCount(), std::make_shared<TileRenderer>(*document)};
}

ShownDocument PDFViewFixture::documentOf(const QByteArray& bytes)
{
    static int number = 0;
    return opened(m_folder.write(QStringLiteral("view %1.pdf").arg(++number), bytes));
}

void PDFViewFixture::show(const QByteArray& bytes, QSize size)
{
    show(documentOf(bytes), size);
}

void PDFViewFixture::show(const ShownDocument& document, QSize size)
{
    m_view = std::make_unique<PDFView>();
    m_view->resize(size);
    QSignalSpy shown(m_view.get(), &PDFView::firstPagesShown);
    m_view->setDocument(document);
    m_view->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(m_view.get()));
    ASSERT_TRUE(!shown.isEmpty() || shown.wait());
}

QColor PDFViewFixture::colorAt(QPointF place)
{
    const QImage picture = m_view->viewport()->grab().toImage();
    return picture.pixelColor((place * picture.devicePixelRatio()).toPoint());
}

bool PDFViewFixture::becomes(QPointF place, QColor color)
{
    return QTest::qWaitFor([&] { return isNearly(colorAt(place), color); });
}

bool PDFViewFixture::isVisible(int page)
{
    return m_view->pageRect(page).intersects(m_view->viewport()->rect());
}

} // namespace pdf
